#include "update/cAutoUpdate.h"

#include "base/UnhandledException.h"
#include "base/mProgramInfo.h"
#include "update/UpdateDialogs.h"
#include "update/wAutoUpdate.h"

#include <QStandardPaths>

namespace {
// Under the program's own web address; KESTRELVIEW_UPDATE_HOST points the check elsewhere.
const QString kUpdateHost = QStringLiteral("updates.kestrelview.com");

QString recordUrl(const QString& key) {
    const QString chosen = qEnvironmentVariable("KESTRELVIEW_UPDATE_HOST");
    return "http://" + (chosen.isEmpty() ? kUpdateHost : chosen) + "/autoupdate/" + key + ".html";
}

// Whole strings, compared as every text of the program is: "1.10.0" sorts below "1.7.0".
bool isNewerVersion(const QString& recordVersion, const QString& programVersion) {
    return recordVersion.compare(programVersion, Qt::CaseInsensitive) > 0;
}

UpdateQuestion closeOnly(const QString& key, const QString& news, const QString& explanation) {
    return {"Version Download for " + key.toUpper() + '\n' + news, explanation, "Close", {}};
}
} // namespace

cAutoUpdate::cAutoUpdate(QObject* owner)
    : HTTPSocket(owner)
    , m_recordSocket(new HTTPSocket(this)) {
    connect(this, &HTTPSocket::ReceiveProgress, this, &cAutoUpdate::Event_ReceiveProgress);
    connect(this, &HTTPSocket::Error, this, &cAutoUpdate::Event_Error);
    connect(this, &HTTPSocket::DownloadComplete, this, &cAutoUpdate::Event_DownloadComplete);
    connect(m_recordSocket, &HTTPSocket::PageReceived, this, &cAutoUpdate::recordArrived);
    connect(m_recordSocket, &HTTPSocket::Error, this, &cAutoUpdate::recordArrived);
}

void cAutoUpdate::CheckVersion(QWidget* parent, const QString& key, bool interactive) {
    m_parent = parent;
    m_key = key;
    m_interactive = interactive;
    m_checking = true;
    m_recordSocket->GetInBackground(recordUrl(key), kRecordTimeoutSec);
}

QString cAutoUpdate::ParseKey(const QString& key, const QString& source) {
    const QString open = '<' + key + '>';
    const qsizetype openAt = source.indexOf(open, 0, Qt::CaseInsensitive);
    const qsizetype closeAt = source.indexOf("</" + key + '>', 0, Qt::CaseInsensitive);
    // Measured as the tag reader of the settings files measures it: a missing open tag counts
    // from the start of the text.
    const qsizetype start = openAt + open.size();
    const qsizetype count = closeAt - start;
    return count <= 0 ? QString() : source.mid(start, count);
}

void cAutoUpdate::recordArrived() {
    // The first end of the fetch is the one that counts; whatever the socket says later is not.
    m_recordSocket->disconnect(this);
    runGuarded([this] {
        // Neither the status nor the error is read: a page without the tag is simply no record.
        const QString page = QString::fromUtf8(m_recordSocket->PageContent());
        UpdateVersion = ParseKey("version", page);
        if (UpdateVersion.isEmpty()) {
            tell(closeOnly(m_key, "Currently Unavailable ...", "Please Try Again Later ..."));
        } else if (isNewerVersion(UpdateVersion, mProgramInfo::pProgramVersion)) {
            offerDownload(page);
        } else {
            tell(closeOnly(m_key, "You Currently Have the Latest Version ...",
                           "Please Try Again at a Later Date ..."));
        }
    });
}

void cAutoUpdate::tell(const UpdateQuestion& question) {
    if (!m_interactive) {
        endCheck();
        return;
    }
    updateDialogs().ask(m_parent, question, [self = QPointer(this)](bool) {
        if (self) {
            self->endCheck();
        }
    });
}

void cAutoUpdate::offerDownload(const QString& page) {
    UpdateURL = ParseKey("url", page);
    UpdateName = ParseKey("name", page);
    UpdateDescription = ParseKey("description", page);
    const UpdateQuestion offer{"Version Available:  " + UpdateVersion,
                               UpdateName + "\nVersion: " + UpdateVersion + "\n\n" + UpdateDescription,
                               "Download Now", "Cancel"};
    updateDialogs().ask(m_parent, offer, [self = QPointer(this)](bool download) {
        if (!self) {
            return;
        }
        if (!download) {
            self->endCheck();
            return;
        }
        const SaveFileRequest where{QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
                                    "Select the Save Location", self->m_key + ".zip"};
        updateDialogs().chooseSaveFile(self->m_parent, where, [self](const std::optional<QString>& file) {
            if (self) {
                self->saveAsChosen(file);
            }
        });
    });
}

void cAutoUpdate::saveAsChosen(const std::optional<QString>& file) {
    SaveItem = file;
    if (SaveItem) {
        Update(*SaveItem);
    }
    endCheck();
}

void cAutoUpdate::endCheck() {
    m_recordSocket->Close();
    m_checking = false;
    emit CheckEnded();
    goIfDone();
}

void cAutoUpdate::Update(const QString& file) {
    wAutoUpdate* window = m_window.get();
    window->Associate(this);
    m_heldByWindow = true;
    window->setTitle(UpdateName);
    Get(UpdateURL, file);
}

void cAutoUpdate::Release() {
    m_heldByWindow = false;
    goIfDone();
}

void cAutoUpdate::Event_ReceiveProgress(qint64 bytesReceived, qint64 totalBytes) {
    runGuarded([&] { m_window.get()->showProgress(bytesReceived, totalBytes); });
}

void cAutoUpdate::Event_Error(int code) {
    runGuarded([&] { m_window.get()->setTitle("Error: " + QString::number(code)); });
    goIfDone();
}

// The status is not read: an error page that came whole counts as the download.
void cAutoUpdate::Event_DownloadComplete() {
    runGuarded([this] { m_window.get()->close(); });
    goIfDone();
}

void cAutoUpdate::goIfDone() {
    if (!m_checking && !m_heldByWindow && !IsBusy()) {
        deleteLater();
    }
}
