#include "search/IndexDeletion.h"

#include "search/TextIndex.h"

#include <QFile>
#include <QMessageBox>
#include <QPushButton>

void offerToDeleteIndex(const QString& path) {
    if (!QFile::exists(path)) {
        return;
    }
    auto* box =
        new QMessageBox(QMessageBox::Question, QString(),
                        QStringLiteral("Delete the Text Read From the Pictures?"), QMessageBox::NoButton);
    box->setObjectName(QStringLiteral("deleteIndexQuestion"));
    box->setInformativeText(QStringLiteral("It is kept in %1.").arg(path));
    QPushButton* remove = box->addButton(QStringLiteral("Delete"), QMessageBox::DestructiveRole);
    box->addButton(QStringLiteral("Keep"), QMessageBox::RejectRole);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QMessageBox::finished, box, [box, remove, path] {
        if (box->clickedButton() == remove) {
            removeIndex(path);
        }
    });
    box->open();
}
