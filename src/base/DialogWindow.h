#pragma once

#include <QWidget>

class QPushButton;

// The frame of the program's own windows beside the main one: a title and a close box, a fixed
// size, no minimize or maximize. Return presses the default button wherever the focus is, and
// Escape does nothing, since the way out is always through a button that clears the busy flag.
// Each window goes when it is closed, so its accessor makes a fresh one.
class DialogWindow : public QWidget {
    Q_OBJECT

public:
    DialogWindow(const QString& title, QSize size);

    // Closed and on its way out; the accessor makes a new window rather than hand this one out.
    bool isClosed() const { return m_closed; }

protected:
    void setDefaultButton(QPushButton* button);
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QPushButton* m_defaultButton = nullptr;
    bool m_closed = false;
};

// Shows a window, brings it in front of the others and gives it the keyboard.
void bringToFront(QWidget* window);
