#pragma once

#include "base/SingleWindow.h"
#include "update/HTTPSocket.h"
#include "update/wAutoUpdate.h"

#include <QPointer>
#include <QString>

#include <optional>

class QWidget;
struct UpdateQuestion;

// One update check: fetches the record of the newest release, compares its version with the
// program's, offers a newer one, and downloads it to a file that the user chooses, with progress in
// wAutoUpdate. It ends itself once the check is over and neither a download nor its window needs it.
class cAutoUpdate final : public HTTPSocket {
    Q_OBJECT

public:
    static constexpr int kRecordTimeoutSec = 5;

    explicit cAutoUpdate(QObject* owner);

    // Starts the check and returns at once. The check ends when the record has come or failed, any
    // dialog has been answered and any download has started: then CheckEnded comes, which
    // gives the schedule its go. `interactive` false keeps quiet about a record that offers nothing.
    void CheckVersion(QWidget* parent, const QString& key, bool interactive);
    // The window that showed this download has gone.
    void Release();

signals:
    void CheckEnded();

private:
    // The text between the first <key> and the first </key> of the source, letter case ignored;
    // empty when the close tag does not come behind the open tag.
    static QString ParseKey(const QString& key, const QString& source);
    void Event_ReceiveProgress(qint64 bytesReceived, qint64 totalBytes);
    void Event_Error(int code);
    void Event_DownloadComplete();
    void Update(const QString& file);
    void recordArrived();
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
    HTTPSocket* m_recordSocket; // child; the plain socket that fetches the record
    // The download's window, made afresh when the user closed it and more comes.
    SingleWindow<wAutoUpdate> m_window;

    QString UpdateVersion;
    QString UpdateURL;
    QString UpdateName;
    QString UpdateDescription;
    std::optional<QString> SaveItem;
};
