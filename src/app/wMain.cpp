#include "app/wMain.h"

#include "app/WindowSettings.h"
#include "app/wAbout.h"
#include "base/Messages.h"
#include "base/Resources.h"
#include "base/ScheduleSuspension.h"
#include "base/UnhandledException.h"
#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "capture/CameraLink.h"
#include "capture/CaptureRunner.h"
#include "capture/FreeSpaceWatch.h"
#include "feedback/DockIcon.h"
#include "feedback/Speech.h"
#include "feedback/WindowTransition.h"
#include "platform/WaylandSession.h"
#include "platform/screen/ScreenList.h"
#include "settings/mGeneralSettings.h"
#include "settings/mPolicies.h"
#include "settings/mScreenSettings.h"
#include "settings/wGeneralSettings.h"
#include "slideshow/wMovie.h"
#include "update/cAutoUpdate.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QLabel>
#include <QMenuBar>
#include <QPointer>
#include <QUrl>
#include <QVBoxLayout>

namespace {
// The logo's area below the menu bar.
constexpr QSize kImageWellSize(200, 193);
constexpr QRect kCountDownFrame(20, 158, 100, 20);
// The update record of this platform's release.
const QString kUpdateKey = QStringLiteral("kestrelview_linux");
const QString kDiskFull = QStringLiteral("The Disk Is Full: Captures Go On When It Has Room Again ...");

Qt::WindowFlags mainWindowFlags() {
    return Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;
}

// Where the window stands in the screens' device pixels; empty while hidden or where the
// compositor keeps its place to itself.
QRect ownWindowArea(const QWidget& window) {
    if (!window.isVisible() || !platform::windowPlacesAreKnown()) {
        return {};
    }
    const QRect frame = window.frameGeometry();
    const qreal scale = window.devicePixelRatioF();
    return {(QPointF(frame.topLeft()) * scale).toPoint(), (QSizeF(frame.size()) * scale).toSize()};
}

QLabel* makeCountDownLabel(QWidget* parent) {
    auto* label = new QLabel("...", parent);
    label->setObjectName("sttCountDown");
    label->setGeometry(kCountDownFrame);
    QFont font("Verdana");
    font.setBold(true);
    font.setPointSize(12);
    label->setFont(font);
    label->setStyleSheet("color: #4c4c4c;");
    label->hide();
    return label;
}
} // namespace

wMain::wMain(CaptureRunner& runner, ProgramSpeech& speech, ScheduleSuspension& suspension,
             CameraLinkOwner& camera)
    : QWidget(nullptr, mainWindowFlags())
    , m_runner(runner)
    , m_speech(speech)
    , m_suspension(suspension)
    , m_camera(camera)
    , m_ImageWell1(new QLabel(this))
    , m_sttCountDown(makeCountDownLabel(m_ImageWell1))
    , m_schedule(m_timCountDown, m_timSnapShot, *this)
    , m_about([&suspension] { return new wAbout(suspension); })
    , m_settings([&suspension] { return new wGeneralSettings(suspension); })
    , m_movie([&suspension] { return new wMovie(suspension); }) {
    setWindowTitle("Kestrelview");
    // The menu bar lives in the window here, on top of the logo's area.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_ImageWell1, 0, Qt::AlignLeft | Qt::AlignTop);
    setFixedSize(minimumFrameSize());
    m_ImageWell1->setObjectName("ImageWell1");
    m_ImageWell1->setFixedSize(kImageWellSize);
    m_ImageWell1->setAlignment(Qt::AlignCenter);
    showLogoPicture();
    AddMenuHandlers();

    connect(&m_timCountDown.timer(), &QTimer::timeout, this, &wMain::timCountDown_Action);
    connect(&m_timSnapShot.timer(), &QTimer::timeout, this, &wMain::timSnapShot_Action);
    // The countdown ticks from the start; the interval timer waits for the schedule to arm it,
    // so that a start cut short by an error never captures every second.
    m_timCountDown.setEnabled(true);
    connect(&m_suspension, &ScheduleSuspension::changed, this, &wMain::suspensionChanged);
    suspensionChanged();
    connect(&m_runner.freeSpace(), &FreeSpaceWatch::diskFullChanged, this, &wMain::diskFullChanged);
}

// The windows that go with this one let the suspension go, which must not reach it any more.
wMain::~wMain() {
    disconnect(&m_suspension, nullptr, this, nullptr);
}

void wMain::Event_Open() {
    bool hidden = false;
    runGuarded([&] {
        if (mGeneralSettings::LoadPrefs()) {
            m_sttCountDown->setVisible(mGeneralSettings::current().pShowCountdown);
        }
        mScreenSettings::LoadPrefs();
        mPolicies::LoadPolicies();
        sGetWindowSettings();
        hidden = mGeneralSettings::current().pHideWindow;
        setVisible(!hidden);
        m_timSnapShot.setEnabled(false);
        if (mGeneralSettings::current().pUseCamera) {
            m_camera.setUpInBackground();
        }
        if (mGeneralSettings::current().pUpdateAtStartup) {
            CheckForUpdates(false);
        } else {
            m_schedule.ActivateSnapShotTimer();
        }
        m_schedule.SetupCountDownTimer();
        m_schedule.SetupSnapShotTimer();
    });
    if (!hidden && !isVisible()) {
        show(); // the start was cut short before the window came up
    }
}

void wMain::ResetCountsAfterPrefs() {
    runGuarded([this] { m_schedule.ResetCountsAfterPrefs(); });
}

void wMain::installMenuBar(QMenuBar* bar) {
    layout()->setMenuBar(bar);
    setFixedSize(minimumFrameSize());
}

void wMain::captureNow() {
    if (!m_closing.started()) {
        timSnapShot_Action();
    }
}

void wMain::setPaused(bool paused) {
    runGuarded([&] { m_schedule.setWaiting(WaitReason::Paused, paused); });
    emit pausedChanged(paused);
}

void wMain::suspensionChanged() {
    runGuarded([this] {
        m_schedule.setWaiting(WaitReason::Suspended,
                              m_suspension.pSpecialWindowOpen() && !m_suspension.stranded());
        m_schedule.setWaiting(WaitReason::LeftSuspended, m_suspension.stranded());
    });
}

// Told once each time the disk fills: the schedule waits, and nothing more is said until it has
// gone on again.
void wMain::diskFullChanged(bool full) {
    runGuarded([&] {
        m_schedule.setWaiting(WaitReason::DiskFull, full);
        if (full) {
            mCodeBaseStd::sDisplayWarningMessage(kDiskFull);
        }
    });
}

// The schedule rests while the closing effect plays, so that no capture starts while the
// program ends.
void wMain::closeEvent(QCloseEvent* event) {
    m_closing.handle(
        event,
        [this] {
            m_timCountDown.setEnabled(false);
            m_timSnapShot.setEnabled(false);
        },
        [this] { finishClosing(); });
}

void wMain::finishClosing() {
    runGuarded([this] {
        const QRect frame = geometry();
        // Where the compositor keeps the window's place to itself, the stored place stays.
        const mScreenSettings::Geometry stored = mScreenSettings::current();
        const bool known = platform::windowPlacesAreKnown();
        mScreenSettings::SavePrefs({frame.height() - menuBarHeight(), frame.width(),
                                    known ? frame.x() : stored.pWinLeft, known ? frame.y() : stored.pWinTop});
    });
    QCoreApplication::quit();
}

void wMain::AddMenuHandlers() {
    m_menuHandlers.AddMenuHandler("QVTPreferences", [this] { return _QVTPreferences_Action(); });
    m_menuHandlers.AddMenuHandler("HelpAbout", [this] { return _HelpAbout_Action(); });
    m_menuHandlers.AddMenuHandler("FileCheckForUpdates", [this] { return _FileCheckForUpdates_Action(); });
    m_menuHandlers.AddMenuHandler("ToolsCreateSlideshowMovie",
                                  [this] { return _ToolsCreateSlideshowMovie_Action(); });
    m_menuHandlers.AddMenuHandler("HelpSendFeedback", [this] { return _HelpSendFeedback_Action(); });
    m_menuHandlers.AddMenuHandler("HelpVisitourWebsite", [this] { return _HelpVisitourWebsite_Action(); });
}

// A window that suspends the schedule answers false, so that an application handler could still
// have its turn.
bool wMain::_QVTPreferences_Action() {
    fxWindowTransition(this, TransitionEffect::Flip, TransitionSide::Left, 1, 0,
                       [window = QPointer<wMain>(this)] {
                           if (window) {
                               window->showSettingsWindow();
                           }
                       });
    return false;
}

bool wMain::_HelpAbout_Action() {
    fxWindowTransition(this, TransitionEffect::Flip, TransitionSide::Left, 1, 0,
                       [window = QPointer<wMain>(this)] {
                           if (window) {
                               bringToFront(window->aboutWindow());
                           }
                       });
    return false;
}

wGeneralSettings* wMain::showSettingsWindow() {
    wGeneralSettings* settings = m_settings.get();
    connect(settings, &wGeneralSettings::showCountdownChosen, m_sttCountDown, &QLabel::setVisible,
            Qt::UniqueConnection);
    connect(settings, &wGeneralSettings::saved, this, &wMain::ResetCountsAfterPrefs, Qt::UniqueConnection);
    bringToFront(settings);
    return settings;
}

wAbout* wMain::aboutWindow() {
    return m_about.get();
}

wMovie* wMain::movieWindow() {
    return m_movie.get();
}

bool wMain::_FileCheckForUpdates_Action() {
    CheckForUpdates(true);
    return true;
}

// Without a transition: the movie window has only a closing one.
bool wMain::_ToolsCreateSlideshowMovie_Action() {
    bringToFront(movieWindow());
    return true;
}

bool wMain::_HelpSendFeedback_Action() {
    QDesktopServices::openUrl(QUrl(mProgramInfo::kSupportForumUrl));
    return true;
}

bool wMain::_HelpVisitourWebsite_Action() {
    QDesktopServices::openUrl(QUrl(mProgramInfo::kWebSiteUrl));
    return true;
}

// The stored geometry is the logo's area and where the window's inside begins: the menu bar is
// left out, as a desktop with a global menu bar has none in the window.
QSize wMain::minimumFrameSize() const {
    return kImageWellSize + QSize(0, menuBarHeight());
}

int wMain::menuBarHeight() const {
    const QWidget* bar = layout()->menuBar();
    return bar != nullptr ? bar->heightForWidth(kImageWellSize.width()) : 0;
}

// The check runs beside the countdown; its end sets the go flag, and the next tick arms the
// interval timer.
void wMain::CheckForUpdates(bool interactive) {
    auto* check = new cAutoUpdate(this);
    connect(check, &cAutoUpdate::CheckEnded, this, [this] { m_schedule.ActivateSnapShotTimer(); });
    check->CheckVersion(this, kUpdateKey, interactive);
}

void wMain::sGetWindowSettings() {
    const QRect frame =
        restoredFrame(mScreenSettings::current(), kImageWellSize).adjusted(0, 0, 0, menuBarHeight());
    setFixedSize(frame.size());
    setGeometry(frame);
}

void wMain::timCountDown_Action() {
    runGuarded([this] { m_schedule.CountDownAction(); });
}

void wMain::timSnapShot_Action() {
    runGuarded([this] { m_schedule.SnapShotAction(); });
}

mGeneralSettings::Prefs wMain::settings() const {
    return mGeneralSettings::current();
}

bool wMain::cameraReady() const {
    return mCodeBaseGlv::pVideoGoodToGo;
}

void wMain::setCountDownVisible(bool visible) {
    m_sttCountDown->setVisible(visible);
}

void wMain::setCountDownText(const QString& text) {
    m_sttCountDown->setText(text);
}

void wMain::refresh() {
    repaint();
}

void wMain::showWhitePicture() {
    m_ImageWell1->setPixmap(white());
}

void wMain::showLogoPicture() {
    m_ImageWell1->setPixmap(NewKestrelviewLogo());
}

void wMain::drawNoteIcon() {
    mCodeBaseStd::sDrawNoteIconDock();
}

void wMain::resetDockIcon() {
    mCodeBaseStd::sResetDockIcon();
}

void wMain::speak(const QString& text) {
    m_speech.sSpeakText(text);
}

void wMain::startCaptureRun() {
    mGeneralSettings::Prefs prefs = mGeneralSettings::current();
    // While a private window has the focus a run takes the camera's photograph alone.
    prefs.pUseScreen = prefs.pUseScreen && !m_schedule.waiting(WaitReason::PrivateScreens);
    m_runner.Run(CaptureRunInput{prefs, screenAreas(), mPolicies::current(), ownWindowArea(*this)});
}

void wMain::waitingChanged(const QString& status) {
    emit statusChanged(status);
}
