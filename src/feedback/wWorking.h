#pragma once

#include "feedback/CloseAfterEffect.h"

#include <QWidget>

#include <functional>
#include <vector>

class QLabel;

// A small floating window at the bottom right of the main screen that says what long work is
// going on. It takes its two lines when it opens. The messages of WorkingMessages.h put it up and
// take it down.
class wWorking final : public QWidget {
    Q_OBJECT

public:
    // The open window, made and opened with these lines when there is none or the last one is
    // closing; an open window keeps the lines it has.
    static wWorking& instance(const QString& text1 = {}, const QString& text2 = {});

    // Shows the window and runs `then` once it is on the screen and painted: at once when it
    // already is.
    void showThen(std::function<void()> then);
    // Flipping shut or gone; the next message gets a window of its own.
    bool isClosed() const { return m_closing.started(); }

    QLabel* stt1() const { return m_stt1; }
    QLabel* stt2() const { return m_stt2; }

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    wWorking(const QString& text1, const QString& text2);
    void Event_Open();
    void sGetWindowPosition();
    void markShown();

    QLabel* m_stt1;
    QLabel* m_stt2;
    std::vector<std::function<void()>> m_whenShown;
    bool m_shown = false;
    CloseAfterEffect m_closing{*this, TransitionEffect::Flip, TransitionSide::Down};
};
