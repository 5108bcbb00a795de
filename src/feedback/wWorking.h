#pragma once

#include <QWidget>

class QLabel;

// A small floating window at the bottom right of the main screen that says what long work is
// going on. It takes its two lines from the application object when it opens.
class wWorking final : public QWidget {
public:
    // The open window, made and opened when there is none.
    static wWorking& instance();

    QLabel* stt1() const { return m_stt1; }
    QLabel* stt2() const { return m_stt2; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    wWorking();
    void Event_Open();
    void sGetWindowPosition();

    QLabel* m_stt1;
    QLabel* m_stt2;
};

namespace mCodeBaseStd {
// Puts up the working window with two lines; it is on the screen when this returns. From any
// thread: the window itself is always made on the GUI thread.
void sDisplayWorkingMessage(const QString& text1, const QString& text2);
} // namespace mCodeBaseStd
