#include "app/wAbout.h"

#include "base/Controls.h"
#include "base/Resources.h"
#include "base/UnhandledException.h"
#include "base/mProgramInfo.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>

namespace {
// The platform this build is for, set by the build.
constexpr const char* kPlatformWord = KV_PLATFORM_WORD;

// Text sizes are in pixels, so that the text keeps its place in the boxes at any screen resolution.
QLabel* makeText(QWidget* parent, const char* name, const QString& text, QRect frame, int pixelSize,
                 bool bold) {
    auto* label = placeControl<QLabel>(parent, name, frame, text);
    label->setAlignment(Qt::AlignCenter);
    QFont font("Verdana");
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    label->setFont(font);
    label->setStyleSheet("color: #000000;");
    return label;
}

void makeSeparator(QWidget* parent, const char* name, int top) {
    auto* line = new QFrame(parent);
    line->setObjectName(name);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    line->setGeometry(0, top, 406, 4);
}
} // namespace

QString fVersionLine() {
    return mProgramInfo::pProgramVersion + " - " + kPlatformWord + " - " + mProgramInfo::pProgramBuild;
}

wAbout::wAbout(ScheduleSuspension& suspension)
    : DialogWindow("About ...", QSize(406, 517))
    , m_ImageWell1(new QLabel(this))
    , m_sttProgramName(makeText(this, "sttProgramName", "Name", {20, 200, 366, 20}, 14, true))
    , m_sttProgramSubName(makeText(this, "sttProgramSubName", "SubName", {20, 232, 366, 20}, 12, true))
    , m_sttCopyright(makeText(this, "sttCopyright",
                              QString::fromUtf8("Copyright \u00a9 2006 - 2010 Kestrelview"),
                              {20, 274, 366, 20}, 10, false))
    , m_sttSupport(
          makeText(this, "sttSupport", "Support: support@kestrelview.com", {20, 405, 366, 20}, 10, false))
    , m_sttVersion(makeText(this, "sttVersion", "Version", {20, 437, 366, 20}, 10, false))
    , m_btnClose(makeButton(this, "btnClose", "Close", {163, 477, 80, 20}))
    , m_suspension(suspension) {
    m_ImageWell1->setObjectName("ImageWell1");
    m_ImageWell1->setGeometry(121, 14, 164, 163);
    m_ImageWell1->setAlignment(Qt::AlignCenter);
    m_ImageWell1->setPixmap(NewKestrelviewLogo());
    makeSeparator(this, "Separator1", 264);
    makeSeparator(this, "Separator2", 380);
    setDefaultButton(m_btnClose);
    connect(m_btnClose, &QPushButton::clicked, this, &wAbout::btnClose_Action);
}

void wAbout::Event_Open() {
    runGuarded([this] {
        m_hold = m_suspension.hold();
        m_sttProgramName->setText(mProgramInfo::pProgramName);
        m_sttProgramSubName->setText(mProgramInfo::pSubName);
        m_sttVersion->setText(fVersionLine());
    });
}

void wAbout::btnClose_Action() {
    runGuarded([this] {
        m_hold.release();
        close();
    });
}
