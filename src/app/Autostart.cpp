#include "app/Autostart.h"

#include "base/mProgramInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

namespace {
// An Exec key's argument: quoted where it holds more than plain characters, with the characters
// that the quotes do not protect escaped, then escaped once more as a string value.
QString execArgument(QString argument) {
    static const QString kReserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    argument.replace('%', QStringLiteral("%%")); // field codes start with %
    if (std::none_of(argument.begin(), argument.end(), [](QChar c) { return kReserved.contains(c); })) {
        return argument;
    }
    QString quoted;
    for (const QChar c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    quoted.replace('\\', QStringLiteral("\\\\"));
    return '"' + quoted + '"';
}
} // namespace

QString autostartEntryPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/autostart/" +
           mProgramInfo::kDesktopId + ".desktop";
}

bool autostartEnabled() {
    return QFileInfo::exists(autostartEntryPath());
}

bool setAutostart(bool on) {
    const QString path = autostartEntryPath();
    if (!on) {
        return !QFileInfo::exists(path) || QFile::remove(path);
    }
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(autostartEntry(QCoreApplication::applicationFilePath()).toUtf8());
    return file.commit();
}

QString autostartEntry(const QString& executable) {
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=%1\n"
                          "Comment=%2\n"
                          "Exec=%3\n"
                          "Icon=%4\n"
                          "X-GNOME-Autostart-enabled=true\n")
        .arg(mProgramInfo::pProgramName, mProgramInfo::pSubName, execArgument(executable),
             mProgramInfo::kDesktopId);
}
