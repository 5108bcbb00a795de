#include "support/TextPicture.h"

#include <QProcess>
#include <QTemporaryDir>

QImage textPicture(QSize size, const std::vector<TextLine>& lines) {
    const QTemporaryDir folder;
    const QString out = folder.filePath("text.png");
    QStringList arguments{"-size", QStringLiteral("%1x%2").arg(size.width()).arg(size.height()), "xc:white",
                          "-fill", "black"};
    for (const TextLine& line : lines) {
        arguments << "-font" << line.font << "-pointsize" << QString::number(line.pixels) << "-annotate"
                  << QStringLiteral("+%1+%2").arg(line.at.x()).arg(line.at.y()) << line.text;
    }
    arguments << out;
    return QProcess::execute("convert", arguments) == 0 ? QImage(out) : QImage();
}

QStringList knownWords() {
    return QStringLiteral("invoice harbour lantern meadow copper violin garden window yellow marble "
                          "kitchen planet silver winter forest bridge candle pocket rabbit shadow "
                          "thunder orange pencil castle dragon engine falcon glacier hammer island "
                          "jacket ladder mirror needle office parrot quarter ribbon saddle tunnel")
        .split(' ');
}
