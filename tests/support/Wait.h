#pragma once

#include <QEventLoop>
#include <QObject>
#include <QTimer>

// Runs the event loop until `sender` emits `signal` or the time is up. Unlike QTest::qWaitFor,
// which sleeps between its checks, this lets a fast download run at full speed.
template <typename Sender, typename Signal>
bool waitForSignal(const Sender* sender, Signal signal, int timeoutMs) {
    QEventLoop loop;
    bool fired = false;
    QObject::connect(sender, signal, &loop, [&] {
        fired = true;
        loop.quit();
    });
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
    return fired;
}
