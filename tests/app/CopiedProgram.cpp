#include "CopiedProgram.h"

#include "support/DefaultPreferences.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

namespace {
bool copyFolder(const QString& from, const QString& to) {
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = to + '/' + QDir(from).relativeFilePath(source);
        const bool ok = it.fileInfo().isDir() ? QDir().mkpath(target) : QFile::copy(source, target);
        if (!ok) {
            return false;
        }
    }
    return true;
}
} // namespace

CopiedProgram::CopiedProgram() {
    const QString folder = m_temp.path() + "/Copied Kestrelview";
    m_bin = folder + "/bin";
    m_copied = m_temp.isValid() && copyFolder(KV_APP_DIR, folder);
}

CopiedProgram::~CopiedProgram() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void CopiedProgram::writeQuickPrefs(const QString& primaryOnly) {
    QString prefs = QString::fromUtf8(kDefaultPreferencesFile);
    prefs.replace("<pInterval>300<", "<pInterval>2<")
        .replace("<pUpdateAtStartup>TRUE<", "<pUpdateAtStartup>FALSE<")
        .replace("<pPrimaryOnly>FALSE<", "<pPrimaryOnly>" + primaryOnly + "<");
    writeText(binPath("KestrelviewPreferences.ini"), prefs);
}

bool CopiedProgram::start() {
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.start(binPath("kestrelview"), {});
    return m_process.waitForStarted();
}

QStringList CopiedProgram::pictures() const {
    return QDir(binPath("Screen Images")).entryList({"*.jpg"}, QDir::Files, QDir::Name);
}

QString CopiedProgram::picturePath(const QString& name) const {
    return binPath("Screen Images/" + name);
}

QString readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool writeText(const QString& path, const QString& text) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) == text.toUtf8().size();
}

bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > timeoutMs) {
            return false;
        }
        QThread::msleep(50);
    }
    return true;
}
