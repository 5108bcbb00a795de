#include "feedback/wWorking.h"

#include "base/Controls.h"
#include "base/mCodeBaseGlv.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace {
constexpr int kWidth = 461;
constexpr int kHeight = 96;
constexpr int kScreenMargin = 25;
constexpr double kOpacity = 0.8;
// A window manager that is slow to map the window must not hold up the work behind it for long.
constexpr int kExposeWaitMs = 2000;

// The open window.
QPointer<wWorking> g_window;

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
} // namespace

wWorking::wWorking(const QString& text1, const QString& text2)
    : QWidget(nullptr, Qt::Tool | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_stt1(makeLine(this, QRect(20, 19, 243, 20), boldSystemFont()))
    , m_stt2(makeLine(this, QRect(20, 51, 421, 20), smallSystemFont())) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Working ..."));
    setFixedSize(kWidth, kHeight);
    m_stt1->setText(text1);
    m_stt2->setText(text2);
}

wWorking& wWorking::instance(const QString& text1, const QString& text2) {
    if (g_window.isNull() || g_window->isClosed()) {
        g_window = new wWorking(text1, text2);
        g_window->Event_Open();
    }
    return *g_window;
}

void wWorking::showThen(std::function<void()> then) {
    if (m_shown) {
        then();
        return;
    }
    m_whenShown.push_back(std::move(then));
    if (isVisible()) {
        return;
    }
    create();
    windowHandle()->installEventFilter(this);
    show();
    QTimer::singleShot(kExposeWaitMs, this, &wWorking::markShown);
}

bool wWorking::eventFilter(QObject* watched, QEvent* event) {
    // Queued, so that the window's own handling of the event has painted it first.
    if (event->type() == QEvent::Expose && windowHandle()->isExposed()) {
        QMetaObject::invokeMethod(this, &wWorking::markShown, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

void wWorking::markShown() {
    if (m_shown) {
        return;
    }
    m_shown = true;
    repaint();
    for (const std::function<void()>& then : std::exchange(m_whenShown, {})) {
        then();
    }
}

void wWorking::Event_Open() {
    sGetWindowPosition();
}

void wWorking::sGetWindowPosition() {
    setGeometry(mCodeBaseGlv::pMainScreenWidth - kWidth - kScreenMargin,
                mCodeBaseGlv::pMainScreenHeight - kHeight - kScreenMargin, kWidth, kHeight);
    // Honoured where a compositor runs; elsewhere the window is simply opaque.
    setWindowOpacity(kOpacity);
}

void wWorking::closeEvent(QCloseEvent* event) {
    // Nobody waiting for the window may wait for ever on one that goes before it showed.
    m_closing.handle(event, [this] { markShown(); });
}
