#include "update/cAutoUpdate.h"

#include "base/TagValue.h"
#include "base/UnhandledException.h"
#include "base/mProgramInfo.h"
#include "update/UpdateDialogs.h"
#include "update/wAutoUpdate.h"

#include <QFile>
#include <QStandardPaths>
#include <QTimer>

namespace {
// Under the program's own web address; KESTRELVIEW_UPDATE_HOST points the check elsewhere, over
// plain HTTP unless it begins with a scheme.
const QString kUpdateHost = QStringLiteral("updates.kestrelview.com");

QString recordUrl(const QString& key) {
    QString host = qEnvironmentVariable("KESTRELVIEW_UPDATE_HOST");
    if (host.isEmpty()) {
        host = kUpdateHost;
    }
    if (!host.contains(u"://")) {
        host.prepend(u"http://");
    }
    return host + "/autoupdate/" + key + ".html";
}

// Whole strings, compared as every text of the program is: "1.10.0" sorts below "1.7.0".
bool isNewerVersion(const QString& recordVersion, const QString& programVersion) {
    return recordVersion.compare(programVersion, Qt::CaseInsensitive) > 0;
}

UpdateQuestion closeOnly(const QString& key, const QString& news, const QString& explanation) {
    return {"Version Download for " + key.toUpper() + '\n' + news, explanation, "Close", {}};
}
} // namespace

cAutoUpdate::cAutoUpdate(QObject* owner, const UpdateTimeouts& timeouts)
    : HTTPSocket(owner)
    , m_timeouts(timeouts)
    , m_recordSocket(new HTTPSocket(this))
    , m_recordDeadline(new QTimer(this)) {
    m_recordDeadline->setSingleShot(true);
    // A record that has not come whole by then is no record, whatever part of it came.
    connect(m_recordDeadline, &QTimer::timeout, this, [this] { readRecord({}); });
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
    m_recordDeadline->start(m_timeouts.recordDeadline);
    m_recordSocket->GetInBackground(recordUrl(key), m_timeouts.recordSilence);
}

QString cAutoUpdate::ParseKey(const QString& key, const QString& source) {
    return tagValue(source, key);
}

// Neither the status nor the error is read: a page without the tag is simply no record.
void cAutoUpdate::recordArrived() {
    readRecord(QString::fromUtf8(m_recordSocket->PageContent()));
}

void cAutoUpdate::readRecord(const QString& page) {
    // The first end of the fetch is the one that counts; whatever the socket says later is not.
    m_recordSocket->disconnect(this);
    m_recordDeadline->stop();
    m_recordSocket->Close();
    runGuarded([&] {
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
    UpdateSha256 = ParseKey("sha256", page).trimmed();
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
    GetInBackground(UpdateURL, file, m_timeouts.downloadSilence);
}

void cAutoUpdate::Release() {
    m_heldByWindow = false;
    goIfDone();
}

void cAutoUpdate::Event_ReceiveProgress(qint64 bytesReceived, qint64 totalBytes, const QByteArray& newData) {
    // The file is hashed as it is written, so that its end costs nothing; a new exchange starts it afresh.
    if (bytesReceived == newData.size()) {
        m_downloadHash.reset();
    }
    m_downloadHash.addData(newData);
    runGuarded([&] { m_window.get()->showProgress(bytesReceived, totalBytes); });
}

void cAutoUpdate::Event_Error(int code) {
    runGuarded([&] { m_window.get()->setTitle("Error: " + QString::number(code)); });
    goIfDone();
}

// The status is not read: an error page that came whole counts as the download, unless the record
// named the file's hash.
void cAutoUpdate::Event_DownloadComplete() {
    runGuarded([this] {
        if (downloadMatches()) {
            m_window.get()->close();
            return;
        }
        QFile::remove(*SaveItem);
        m_window.get()->setTitle("Error: Checksum Mismatch, File Removed ...");
    });
    goIfDone();
}

bool cAutoUpdate::downloadMatches() const {
    return UpdateSha256.isEmpty() ||
           UpdateSha256.compare(QString::fromLatin1(m_downloadHash.result().toHex()), Qt::CaseInsensitive) ==
               0;
}

void cAutoUpdate::goIfDone() {
    if (!m_checking && !m_heldByWindow && !IsBusy()) {
        deleteLater();
    }
}
