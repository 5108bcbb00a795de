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

protected:
    void setDefaultButton(QPushButton* button);
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_defaultButton = nullptr;
};

// Shows a window, brings it in front of the others and gives it the keyboard.
void bringToFront(QWidget* window);
