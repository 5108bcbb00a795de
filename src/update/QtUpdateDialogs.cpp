#include "update/QtUpdateDialogs.h"

#include "base/UnhandledException.h"

#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

void QtUpdateDialogs::ask(QWidget* parent, const UpdateQuestion& question,
                          std::function<void(bool)> answered) {
    auto* box =
        new QMessageBox(QMessageBox::Information, QString(), question.message, QMessageBox::NoButton, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(question.explanation);
    // Words from the server are shown as they stand: a tag in them is text, never markup or a link.
    for (QLabel* label : box->findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
    }
    QPushButton* action = box->addButton(question.actionCaption, QMessageBox::AcceptRole);
    if (!question.cancelCaption.isEmpty()) {
        box->addButton(question.cancelCaption, QMessageBox::RejectRole);
    }
    box->setDefaultButton(action);
    QObject::connect(box, &QMessageBox::finished, box, [box, action, answered = std::move(answered)] {
        runGuarded([&] { answered(box->clickedButton() == action); });
    });
    box->open();
}

void QtUpdateDialogs::chooseSaveFile(QWidget* parent, const SaveFileRequest& request,
                                     std::function<void(std::optional<QString>)> chosen) {
    auto* dialog = new QFileDialog(parent, request.prompt, request.initialDirectory);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(request.suggestedFileName);
    QObject::connect(dialog, &QFileDialog::finished, dialog,
                     [dialog, chosen = std::move(chosen)](int result) {
                         const QStringList files = dialog->selectedFiles();
                         std::optional<QString> file;
                         if (result == QDialog::Accepted && !files.isEmpty()) {
                             file = files.first();
                         }
                         runGuarded([&] { chosen(file); });
                     });
    dialog->open();
}
