#include "app/RealProgram.h"

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

QString readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void writeText(const QString& path, const QString& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
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

void RealProgramTest::SetUp() {
    ASSERT_TRUE(m_temp.isValid());
    m_appFolder = m_temp.path() + "/Copied Kestrelview";
    ASSERT_TRUE(copyFolder(KV_APP_DIR, m_appFolder));
    m_bin = m_appFolder + "/bin";
    const QString runtime = m_temp.path() + "/run";
    ASSERT_TRUE(QDir().mkpath(runtime));
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert("XDG_RUNTIME_DIR", runtime);
    m_environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + runtime + "/no-bus");
}

void RealProgramTest::TearDown() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void RealProgramTest::start(const QStringList& arguments, const QString& program) {
    m_process.setProcessEnvironment(m_environment);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.start(program.isEmpty() ? m_bin + "/kestrelview" : program, arguments);
    ASSERT_TRUE(m_process.waitForStarted());
}

int RealProgramTest::runOnce(const QStringList& arguments, QString* errors) {
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(m_bin + "/kestrelview", arguments);
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    if (errors != nullptr) {
        *errors = QString::fromLocal8Bit(process.readAllStandardError());
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

std::optional<xtest::Window> RealProgramTest::mainWindow() {
    std::optional<xtest::Window> window;
    waitFor([&] { return (window = m_x.findWindow("Kestrelview")).has_value(); }, 15000);
    return window;
}

void RealProgramTest::closeAndWait(const xtest::Window& window) {
    m_x.requestClose(window);
    expectCleanExit();
}

void RealProgramTest::expectCleanExit() {
    ASSERT_TRUE(m_process.waitForFinished(15000));
    EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(m_process.exitCode(), 0);
}

QStringList RealProgramTest::pictures(const QString& folder) {
    return QDir(folder).entryList({"*.jpg"}, QDir::Files, QDir::Name);
}
