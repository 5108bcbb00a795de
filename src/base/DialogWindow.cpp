#include "base/DialogWindow.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>

DialogWindow::DialogWindow(const QString& title, QSize size)
    : QWidget(nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setFixedSize(size);
}

void DialogWindow::setDefaultButton(QPushButton* button) {
    m_defaultButton = button;
    button->setDefault(true);
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier && m_defaultButton != nullptr) {
        m_defaultButton->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

void DialogWindow::closeEvent(QCloseEvent* event) {
    m_closed = true;
    QWidget::closeEvent(event);
}

void bringToFront(QWidget* window) {
    window->show();
    window->raise();
    window->activateWindow();
}
