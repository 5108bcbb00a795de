#include "base/DialogPresenter.h"

#include "base/GuiThread.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <chrono>
#include <cstdio>
#include <future>
#include <memory>

namespace {
void showDialog(MessageKind kind, const QString& heading, const QString& text) {
    QMessageBox box(kind == MessageKind::Warning ? QMessageBox::Warning : QMessageBox::Information, QString(),
                    heading, QMessageBox::Ok);
    box.setInformativeText(text);
    box.exec();
}
} // namespace

void DialogPresenter::showUnlessShown(MessageKind kind, const QString& heading, const QString& text) {
    const QString message = heading + '\n' + text;
    if (m_onScreen.contains(message)) {
        return;
    }
    m_onScreen.insert(message);
    showDialog(kind, heading, text);
    m_onScreen.remove(message);
}

void DialogPresenter::present(MessageKind kind, const QString& heading, const QString& text) {
    if (onGuiThread()) {
        showUnlessShown(kind, heading, text);
        return;
    }
    if (m_stopped || QCoreApplication::instance() == nullptr) {
        std::fprintf(stderr, "%s %s\n", qPrintable(heading), qPrintable(text));
        return;
    }
    auto answered = std::make_shared<std::promise<void>>();
    std::future<void> answer = answered->get_future();
    postToGuiThread([=, this] {
        showUnlessShown(kind, heading, text);
        answered->set_value();
    });
    // A dialog that never comes up (the event loop has ended) leaves a broken promise: ready too.
    while (answer.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
        if (m_stopped) {
            return;
        }
    }
}
