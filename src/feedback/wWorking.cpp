#include "feedback/wWorking.h"

#include "base/AppState.h"
#include "base/mCodeBaseGlv.h"
#include "feedback/DockIcon.h"
#include "feedback/WindowTransition.h"

#include <QApplication>
#include <QCloseEvent>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QThread>
#include <QWindow>

namespace {
constexpr int kWidth = 461;
constexpr int kHeight = 96;
constexpr int kScreenMargin = 25;
constexpr double kOpacity = 0.8;
// A window manager that is slow to map the window must not hold up the work behind it for long.
constexpr int kExposeWaitMs = 2000;

QPointer<wWorking> g_instance;

QLabel* makeLine(QWidget* parent, const QRect& frame, const QFont& font) {
    auto* line = new QLabel(QStringLiteral("..."), parent);
    line->setGeometry(frame);
    line->setFont(font);
    return line;
}

QFont boldSystemFont() {
    QFont font = QApplication::font();
    font.setBold(true);
    return font;
}

// The small system font stands to the system font as 11 to 13 points.
QFont smallSystemFont() {
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * 11.0 / 13.0);
    return font;
}

void showAndWaitUntilPainted(wWorking& window) {
    window.show();
    QElapsedTimer waited;
    waited.start();
    while (!window.windowHandle()->isExposed() && waited.elapsed() < kExposeWaitMs) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(5);
    }
    window.repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
} // namespace

wWorking::wWorking()
    : QWidget(nullptr, Qt::Tool | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_stt1(makeLine(this, QRect(20, 19, 243, 20), boldSystemFont()))
    , m_stt2(makeLine(this, QRect(20, 51, 421, 20), smallSystemFont())) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Working ..."));
    setFixedSize(kWidth, kHeight);
    Event_Open();
}

wWorking& wWorking::instance() {
    if (!g_instance) {
        g_instance = new wWorking();
    }
    return *g_instance;
}

void wWorking::Event_Open() {
    sGetWindowPosition();
    m_stt1->setText(App().pWorkingText1);
    m_stt2->setText(App().pWorkingText2);
}

void wWorking::sGetWindowPosition() {
    setGeometry(mCodeBaseGlv::pMainScreenWidth - kWidth - kScreenMargin,
                mCodeBaseGlv::pMainScreenHeight - kHeight - kScreenMargin, kWidth, kHeight);
    // Honoured where a compositor runs; elsewhere the window is simply opaque.
    setWindowOpacity(kOpacity);
}

void wWorking::closeEvent(QCloseEvent* event) {
    fxWindowTransition(this, "Flip", "Down", 1, 0);
    event->accept();
    // The window is deleted later; the next message must get a window of its own, at once.
    if (g_instance == this) {
        g_instance = nullptr;
    }
}

namespace mCodeBaseStd {
void sDisplayWorkingMessage(const QString& text1, const QString& text2) {
    if (QThread::currentThread() != qApp->thread()) {
        QMetaObject::invokeMethod(
            qApp, [text1, text2] { sDisplayWorkingMessage(text1, text2); }, Qt::BlockingQueuedConnection);
        return;
    }
    sDrawNoteIconDock();
    App().pWorkingText1 = text1;
    App().pWorkingText2 = text2;
    showAndWaitUntilPainted(wWorking::instance());
    sResetDockIcon();
}
} // namespace mCodeBaseStd
