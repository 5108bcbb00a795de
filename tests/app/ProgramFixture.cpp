#include "app/ProgramFixture.h"

#include "app/ApplicationCommands.h"
#include "base/AppState.h"
#include "base/DialogWindow.h"
#include "base/mProgramInfo.h"
#include "platform/Clock.h"
#include "platform/FolderItem.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTest>

ProgramTest::ProgramTest()
    : m_grabber(makeScreenGrabber())
    , m_runner(std::make_unique<CaptureRunner>(*m_grabber, systemClock())) {}

ProgramTest::~ProgramTest() = default;

void ProgramTest::SetUp() {
    ASSERT_TRUE(m_dir.isValid());
    const QDir root(m_dir.path());
    ASSERT_TRUE(root.mkpath("bin"));
    ASSERT_TRUE(root.mkpath("Resources"));
    for (const char* name : {"NewKestrelviewLogo.png", "NewKestrelviewLogoMask.png", "white.jpg"}) {
        ASSERT_TRUE(QFile::copy(QString(KV_RESOURCES_DIR) + '/' + name, root.filePath("Resources/") + name));
    }
    platform::setApplicationFolder(root.filePath("bin"));
    mProgramInfo::SetConstants();
    App().pActivateSnapShotTimer = false;
    App().pSpecialWindowOpen = false;
    _ApplicationAddMenuHandlers();
}

void ProgramTest::TearDown() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (qobject_cast<DialogWindow*>(window) != nullptr) {
            delete window;
        }
    }
    m_main.reset();
    m_runner->waitForRuns();
    platform::setApplicationFolder(QString());
}

void ProgramTest::writePrefs(const mGeneralSettings::Prefs& prefs) {
    mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
}

mGeneralSettings::Prefs ProgramTest::quietPrefs() {
    mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
    prefs.pUpdateAtStartup = "FALSE";
    prefs.pUseSpeech = "FALSE";
    prefs.pThreeSecondWarning = "FALSE";
    return prefs;
}

void ProgramTest::openMainWindow() {
    m_main = std::make_unique<wMain>(*m_runner);
    connectMainWindow(*m_main);
    m_main->Event_Open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_main.get()));
}

QString ProgramTest::binPath(const QString& name) const {
    return QDir(m_dir.path()).filePath("bin/" + name);
}

QByteArray ProgramTest::readBinFile(const QString& name) const {
    QFile file(binPath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool activate(QWidget* window) {
    bringToFront(window);
    return QTest::qWaitForWindowActive(window);
}
