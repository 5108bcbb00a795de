#pragma once

#include "update/HttpAuthentication.h"
#include "update/InternetHeaders.h"

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class QEventLoop;
class QSslSocket;
class QTimer;

// The owner's answer to an authentication challenge: fill in the name and password and set
// `answer` to send the request again with them.
struct AuthenticationAnswer {
    QString name;
    QString password;
    bool answer = false;
};

// An HTTP/1.0 client: one request and one response over one connection, the body ending with the
// connection (a download: at its announced length at the latest). Each request comes in a form that
// reports through signals and a blocking form that waits until the server has been silent for a
// timeout. A body goes to memory or to a file. An https URL is spoken over TLS, with the system's
// certificates and the host name checked; a failed check is a socket error.
//
// The blocking forms are for threads other than the GUI thread, on the thread that made the
// socket: they wait on a private event loop of their own, so that a name lookup or a connection
// takes as long as it needs within the timeout. On the GUI thread they are refused.
//
// Error codes: 0 none, -1 silence beyond the timeout, 1 an unusable download file, -2 a request
// refused before anything was sent (a line break in the URL or a header, a blank or control byte in
// the URL's host or path, a port outside 1..65535, a blocking form on the GUI thread, an https URL
// through a proxy) or a header block, a page in memory or an unannounced download beyond the limits
// below; otherwise a socket error, 100 + the value of QAbstractSocket::SocketError (113: a
// certificate that failed the check). Each of these ends the exchange.
class HTTPSocket : public QObject {
    Q_OBJECT

public:
    static constexpr qsizetype kMaxHeaderBlockBytes = 64 * 1024;
    static constexpr qsizetype kMaxPageBytes = 32 * 1024 * 1024;
    static constexpr qint64 kMaxUnannouncedDownloadBytes = qint64{4} << 30;
    static constexpr int kSocketErrorBase = 100;
    static constexpr int kRefused = -2;

    using FormData = std::vector<std::pair<QByteArray, QByteArray>>;

    explicit HTTPSocket(QObject* parent = nullptr);
    ~HTTPSocket() override;

    int DefaultPort = 80;
    QString HTTPProxyAddress; // empty: no proxy
    int HTTPProxyPort = 0;    // 0: DefaultPort
    InternetHeaders requestHeaders;

    void ClearRequestHeaders() { requestHeaders.DeleteAllHeaders(); }
    static QByteArray EncodeFormData(const FormData& form);
    int ErrorCode() const { return mErrorCode; }
    int HTTPStatusCode() const { return _httpStatusCode; }
    // The body in memory as it stands, complete or not.
    QByteArray PageContent() const { return _pageBuffer; }
    // An exchange has started and has neither ended nor been closed.
    bool IsBusy() const { return m_busy; }
    // Nothing before a header block has come, or when it has no entries.
    std::optional<InternetHeaders> PageHeaders() const;
    void SetFormData(const std::optional<FormData>& form);
    void SetPostContent(const QByteArray& content, const QByteArray& contentType);
    // An empty value removes every value of the name.
    void SetRequestHeader(const QByteArray& name, const QByteArray& value);

    void Get(const QString& url) { SendRequest("GET", url); }
    void Get(const QString& url, const QString& file) { SendRequest("GET", url, file); }
    bool Get(const QString& url, const QString& file, int timeoutSec) {
        return SendRequest("GET", url, file, timeoutSec);
    }
    QByteArray Get(const QString& url, int timeoutSec) { return SendRequest("GET", url, timeoutSec); }
    // Like Get(url) and Get(url, file), and end with Error(-1) once the server has been silent for
    // the timeout. Unlike the blocking forms, a download's data count as news here.
    void GetInBackground(const QString& url, std::chrono::milliseconds timeout);
    void GetInBackground(const QString& url, const QString& file, std::chrono::milliseconds timeout);
    void GetHeaders(const QString& url) { SendRequest("HEAD", url); }
    std::optional<InternetHeaders> GetHeaders(const QString& url, int timeoutSec);
    void Post(const QString& url) { SendRequest("POST", url); }
    void Post(const QString& url, const QString& file) { SendRequest("POST", url, file); }
    bool Post(const QString& url, const QString& file, int timeoutSec) {
        return SendRequest("POST", url, file, timeoutSec);
    }
    QByteArray Post(const QString& url, int timeoutSec) { return SendRequest("POST", url, timeoutSec); }
    void SendRequest(const QByteArray& method, const QString& url);
    void SendRequest(const QByteArray& method, const QString& url, const QString& file);
    bool SendRequest(const QByteArray& method, const QString& url, const QString& file, int timeoutSec);
    QByteArray SendRequest(const QByteArray& method, const QString& url, int timeoutSec);

    // Ends the connection without an event.
    void Close();
    bool IsConnected() const;

signals:
    // Both authentication signals must be answered by a direct connection; they come during
    // blocking requests too.
    void AuthenticationRequired(const QString& realm, const InternetHeaders& headers,
                                AuthenticationAnswer& answer);
    void Connected();
    void DownloadComplete(const QString& url, int httpStatus, const InternetHeaders& headers,
                          const QString& file);
    void Error(int code);
    void HeadersReceived(const InternetHeaders& headers, int httpStatus);
    void PageReceived(const QString& url, int httpStatus, const InternetHeaders& headers,
                      const QByteArray& content);
    void ReceiveProgress(qint64 bytesReceived, qint64 totalBytes, const QByteArray& newData);
    void ProxyAuthenticationRequired(const QString& realm, const InternetHeaders& headers,
                                     AuthenticationAnswer& answer);

private:
    void Event_Connected();
    void onTcpConnected();
    void Event_DataAvailable() { _HandleNewData(); }
    void Event_Error();
    void onSocketError();
    void onSocketDisconnected();

    void SetError(int code);
    void failExchange(int code);
    void startExchange(const QByteArray& method, const QString& url, const std::optional<QString>& file,
                       bool blocking, std::chrono::milliseconds timeout);
    void sendAndWait(const QByteArray& method, const QString& url, const std::optional<QString>& file,
                     int timeoutSec);
    bool mayBlockHere() const;
    bool isSendable() const;
    void WaitForPage(QEventLoop& loop);
    void armSilence();
    void restartSilence();
    void endExchange();
    void dropConnection();
    void setConnectionValid(bool valid);
    void _DoConnect(const QString& url, const QByteArray& action, std::optional<QString> file);
    void _HandleNewData();
    void _InitializeRequestHeaders();
    void _KillDownloadStream();
    void _ParseHeaders(const QByteArray& block);
    void _ProcessData(const QByteArray& received);
    bool storeBody(const QByteArray& data);
    void endDownloadAtLimit(bool moreCame);
    void _ProcessPage();
    void _ResetVariables();
    void _SendRequest(const QByteArray& action);
    bool _SetDownloadFile(const std::optional<QString>& file);
    bool _SetAuthentication(const QByteArray& prefix);

    QSslSocket* m_socket; // child; plain TCP unless the URL says https
    QTimer* m_silence;    // child; runs while a timeout is being measured
    QEventLoop* m_waitLoop = nullptr;
    bool m_busy = false;
    bool m_tls = false;
    QByteArray m_address;
    int m_port = 0;
    // Counts exchanges, so that code running after a signal sees when its handler began a new one.
    quint64 m_exchange = 0;

    int mErrorCode = 0;
    bool synchronous = false;
    bool threadProtection = false;
    std::chrono::milliseconds m_timeout{0}; // of silence; zero: none
    QByteArray _authenticationKey;
    bool _connectionValid = false;
    qint64 _currentLength = 0;
    std::optional<QString> _downloadFile;
    std::unique_ptr<QFile> _downloadStream;
    QByteArray _httpAction;
    int _httpStatusCode = 0;
    QByteArray _pageBuffer;
    bool _pageComplete = false;
    std::optional<InternetHeaders> _pageHeaders;
    QByteArray _path;
    QByteArray _postContent;
    QByteArray _postContentType;
    QString _processingURL;
    QByteArray _server;
    qint64 _totalLength = 0;
    std::optional<qint64> m_announcedLength; // a valid Content-length
    QByteArray _proxyAuthenticationKey;
    QByteArray _lastServerNonce;
    NonceCounts _Nonces;
};
