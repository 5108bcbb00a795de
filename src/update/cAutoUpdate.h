#pragma once

#include "base/SingleWindow.h"
#include "update/HTTPSocket.h"
#include "update/wAutoUpdate.h"

#include <QCryptographicHash>
#include <QPointer>
#include <QString>

#include <chrono>
#include <optional>

class QTimer;
class QWidget;
struct UpdateQuestion;

// How long the network may take: the record's silence and its whole fetch, and the download's
// silence. Someone on the path who trickles bytes holds the check, and so the first capture, no
// longer than the record's deadline.
struct UpdateTimeouts {
    std::chrono::milliseconds recordSilence = std::chrono::seconds(5);
    std::chrono::milliseconds recordDeadline = std::chrono::seconds(30);
    std::chrono::milliseconds downloadSilence = std::chrono::seconds(60);
};

// One update check: fetches the record of the newest release, compares its version with the
// program's, offers a newer one, and downloads it to a file that the user chooses, with progress in
// wAutoUpdate. A record with a <sha256> tag has its download checked against it, and a file that
// does not match is removed. It ends itself once the check is over and neither a download nor its window
// needs it.
class cAutoUpdate final : public HTTPSocket {
    Q_OBJECT

public:
    explicit cAutoUpdate(QObject* owner, const UpdateTimeouts& timeouts = {});

    // Starts the check and returns at once. The check ends when the record has come or failed, any
    // dialog has been answered and any download has started: then CheckEnded comes, which
    // gives the schedule its go. `interactive` false keeps quiet about a record that offers nothing.
    void CheckVersion(QWidget* parent, const QString& key, bool interactive);
    // The window that showed this download has gone.
    void Release();

    // The text between the first <key> and the first </key> of the source, read as the settings
    // files are read.
    static QString ParseKey(const QString& key, const QString& source);

signals:
    void CheckEnded();

private:
    void Event_ReceiveProgress(qint64 bytesReceived, qint64 totalBytes, const QByteArray& newData);
    void Event_Error(int code);
    void Event_DownloadComplete();
    void Update(const QString& file);
    void recordArrived();
    void readRecord(const QString& page);
    bool downloadMatches() const;
    void offerDownload(const QString& page);
    void tell(const UpdateQuestion& question);
    void saveAsChosen(const std::optional<QString>& file);
    void endCheck();
    void goIfDone();

    QPointer<QWidget> m_parent;
    QString m_key;
    bool m_interactive = false;
    bool m_checking = false;
    bool m_heldByWindow = false;
    UpdateTimeouts m_timeouts;
    HTTPSocket* m_recordSocket; // child; the plain socket that fetches the record
    QTimer* m_recordDeadline;   // child
    QCryptographicHash m_downloadHash{QCryptographicHash::Sha256};
    // The download's window, made afresh when the user closed it and more comes.
    SingleWindow<wAutoUpdate> m_window;

    QString UpdateVersion;
    QString UpdateURL;
    QString UpdateName;
    QString UpdateDescription;
    QString UpdateSha256;
    std::optional<QString> SaveItem;
};
