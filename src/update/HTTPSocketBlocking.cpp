// The blocking forms, which wait on a private event loop of the calling thread, and the timeout
// that both kinds of request measure.
#include "update/HTTPSocket.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <climits>

bool HTTPSocket::SendRequest(const QByteArray& method, const QString& url, const QString& file,
                             int timeoutSec) {
    sendAndWait(method, url, file, timeoutSec);
    return mErrorCode == 0;
}

QByteArray HTTPSocket::SendRequest(const QByteArray& method, const QString& url, int timeoutSec) {
    sendAndWait(method, url, std::nullopt, timeoutSec);
    return _pageBuffer;
}

std::optional<InternetHeaders> HTTPSocket::GetHeaders(const QString& url, int timeoutSec) {
    sendAndWait("HEAD", url, std::nullopt, timeoutSec);
    return _pageHeaders;
}

void HTTPSocket::sendAndWait(const QByteArray& method, const QString& url, const std::optional<QString>& file,
                             int timeoutSec) {
    if (!mayBlockHere()) {
        synchronous = true;
        _ResetVariables();
        failExchange(kRefused);
        return;
    }
    // Made first: on a thread without an event loop this also makes the event dispatcher that the
    // socket and the timer need.
    QEventLoop loop;
    startExchange(method, url, file, true, std::chrono::seconds(std::clamp(timeoutSec, 0, INT_MAX / 1000)));
    // An unusable download file is waited out like silence, as this client has always done; any
    // other failure to start ends the call at once.
    if (m_busy || mErrorCode == 1) {
        WaitForPage(loop);
    }
}

bool HTTPSocket::mayBlockHere() const {
    const QCoreApplication* app = QCoreApplication::instance();
    QThread* here = QThread::currentThread();
    return app != nullptr && here != app->thread() && here == thread();
}

void HTTPSocket::WaitForPage(QEventLoop& loop) {
    _pageComplete = false;
    mErrorCode = 0;
    QEventLoop* const outer = std::exchange(m_waitLoop, &loop);
    armSilence();
    loop.exec();
    m_waitLoop = outer;
}

// The timeout measures silence: a change of connection or new data starts it afresh.
void HTTPSocket::armSilence() {
    if (m_timeout > std::chrono::milliseconds::zero()) {
        m_silence->start(m_timeout);
    }
}

void HTTPSocket::restartSilence() {
    if (m_silence->isActive()) {
        m_silence->start();
    }
}
