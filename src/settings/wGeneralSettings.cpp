#include "settings/wGeneralSettings.h"

#include "base/Controls.h"
#include "base/Messages.h"
#include "base/UnhandledException.h"
#include "platform/FolderItem.h"
#include "settings/CamImgSize.h"
#include "settings/SettingControls.h"
#include "settings/mGeneralSettings.h"
#include "settings/wMoreSettings.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>

#include <algorithm>
#include <array>

namespace {
using mGeneralSettings::kTable;

// Only digits go in, and no more than `digits` of them; an empty field stays possible.
QLineEdit* makeNumberField(QWidget* parent, const char* name, int digits, QRect frame) {
    auto* field = placeControl<QLineEdit>(parent, name, frame);
    field->setMaxLength(digits);
    field->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), field));
    return field;
}

QCheckBox* makeCheckBox(QWidget* parent, const char* name, const QString& text, QRect frame) {
    return placeControl<QCheckBox>(parent, name, frame, text);
}

QPlainTextEdit* makeDestinationField(QWidget* parent) {
    auto* field = placeControl<QPlainTextEdit>(parent, "edtDestination", {132, 155, 266, 50});
    field->setReadOnly(true);
    field->setTabChangesFocus(true);
    field->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    field->setFont(smallSystemFont());
    return field;
}

// The window's control for a setting; none for a setting that the window holds itself.
QWidget* controlOf(const QWidget* window, const Setting<mGeneralSettings::Prefs>& setting) {
    return setting.view.control ? window->findChild<QWidget*>(setting.view.control) : nullptr;
}

// Holds a number field to its setting's limits: each message comes before its correction, and
// the lower limit is tested on the text as the upper one left it.
void holdToLimits(QLineEdit* field, const Setting<mGeneralSettings::Prefs>& setting) {
    if (setting.view.tooHigh && valToInt32(field->text()) > setting.limits.max) {
        mCodeBaseStd::sDisplayInformationMessage(setting.view.tooHigh);
        field->setText(QString::number(setting.limits.max));
    }
    if (setting.view.tooLow && valToInt32(field->text()) < setting.limits.min) {
        mCodeBaseStd::sDisplayInformationMessage(setting.view.tooLow);
        field->setText(QString::number(setting.limits.min));
    }
}

const Setting<mGeneralSettings::Prefs>& settingOf(const QObject* control) {
    return *std::find_if(kTable.begin(), kTable.end(),
                         [&](const auto& setting) { return control->objectName() == setting.view.control; });
}

// A field loses the focus to another control of its window; the window's own deactivation, a
// message box for instance, leaves the focus where it is and is not a loss.
bool lostFocus(const QEvent* event) {
    if (event->type() != QEvent::FocusOut) {
        return false;
    }
    const Qt::FocusReason reason = static_cast<const QFocusEvent*>(event)->reason();
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
}

// The camera size's three radio buttons, their ids the sizes' order.
QButtonGroup* makeCamImgSizeButtons(QWidget* parent) {
    auto* group = new QButtonGroup(parent);
    const std::array<std::pair<const char*, QRect>, 3> radios{
        {{"Small", {156, 418, 60, 20}}, {"Medium", {228, 418, 79, 20}}, {"Large", {319, 418, 79, 20}}}};
    for (int index = 0; index < int(radios.size()); ++index) {
        auto* radio = new QRadioButton(radios[index].first, parent);
        radio->setObjectName(QString("rb1_%1").arg(index));
        radio->setGeometry(radios[index].second);
        group->addButton(radio, index);
    }
    return group;
}
} // namespace

// Controls are made in reading order, row by row, which is also the order of the Tab key.
wGeneralSettings::wGeneralSettings(ScheduleSuspension& suspension)
    : DialogWindow("Settings", QSize(522, 520))
    , m_suspension(suspension) {
    makeLabel(this, "stt1", "Image Interval", {20, 123, 100, 20});
    m_edtInterval = makeNumberField(this, "edtInterval", 6, {132, 123, 78, 21});
    makeLabel(this, "stt2", "Image Folder", {20, 156, 100, 20});
    m_edtDestination = makeDestinationField(this);
    m_btnChoose1 = makeButton(this, "btnChoose1", "Choose", {410, 156, 80, 20});
    makeLabel(this, "stt3", "Quality", {20, 218, 100, 20});
    m_edtQuality = makeNumberField(this, "edtQuality", 3, {132, 217, 78, 21});
    m_chkUpdateStartup =
        makeCheckBox(this, "chkUpdateStartup", "Check for Updates at Startup", {20, 250, 211, 20});
    m_chkThreeSecondWarning =
        makeCheckBox(this, "chkThreeSecondWarning", "Speak 3 Second Warning", {291, 254, 211, 20});
    m_chkUseSpeech = makeCheckBox(this, "chkUseSpeech", "Use Speech", {20, 282, 211, 20});
    m_chkUseScreen = makeCheckBox(this, "chkUseScreen", "Capture Screen(s)", {291, 286, 211, 20});
    m_chkShowCountdown = makeCheckBox(this, "chkShowCountdown", "Show Countdown", {20, 318, 211, 20});
    m_chkPrimaryOnly =
        makeCheckBox(this, "chkPrimaryOnly", "Capture Primary Monitor Only", {291, 318, 211, 20});
    m_chkHideWindow = makeCheckBox(this, "chkHideWindow", "Hide Window", {20, 350, 211, 20});
    m_chkUseCamera = makeCheckBox(this, "chkUseCamera", "Capture Webcam", {291, 352, 211, 20});
    makeLabel(this, "stt4", "Text to Speak", {20, 386, 100, 20});
    m_edtTextToSpeak = new QLineEdit(this);
    m_edtTextToSpeak->setObjectName("edtTextToSpeak");
    m_edtTextToSpeak->setGeometry(132, 385, 370, 21);
    m_edtTextToSpeak->setMaxLength(50);
    makeLabel(this, "sttCamImgSize", "Camera Image Size", {20, 418, 124, 20});
    m_rb1 = makeCamImgSizeButtons(this);
    QLabel* restart =
        makeLabel(this, "sttRestart", "(Image Size Setting Changes Require the Program to be Restarted ...)",
                  {20, 448, 482, 20});
    restart->setFont(QFont("Verdana", restart->font().pointSize()));
    restart->setStyleSheet("color: #004080;");
    // In the free corner of the buttons' row, so that nothing of the window's layout moves.
    auto* btnMore = makeButton(this, "btnMore", "More ...", {20, 480, 80, 20});
    m_btnCancel = makeButton(this, "btnCancel", "Cancel", {330, 480, 80, 20});
    m_btnSave = makeButton(this, "btnSave", "Save", {422, 480, 80, 20});
    setDefaultButton(m_btnSave);

    m_edtInterval->installEventFilter(this);
    m_edtQuality->installEventFilter(this);
    connect(m_btnSave, &QPushButton::clicked, this, &wGeneralSettings::btnSave_Action);
    connect(m_btnCancel, &QPushButton::clicked, this, &wGeneralSettings::btnCancel_Action);
    connect(m_btnChoose1, &QPushButton::clicked, this, &wGeneralSettings::btnChoose1_Action);
    connect(btnMore, &QPushButton::clicked, this, [this] { bringToFront(moreWindow()); });
    connect(m_chkUseSpeech, &QCheckBox::clicked, this, &wGeneralSettings::chkUseSpeech_Action);
    connect(m_rb1, &QButtonGroup::idClicked, this, &wGeneralSettings::rb1_Action);
}

bool wGeneralSettings::eventFilter(QObject* watched, QEvent* event) {
    if (lostFocus(event)) {
        if (watched == m_edtInterval) {
            edtInterval_LostFocus();
        } else if (watched == m_edtQuality) {
            edtQuality_LostFocus();
        }
    }
    return DialogWindow::eventFilter(watched, event);
}

void wGeneralSettings::Event_Open() {
    runGuarded([this] {
        m_hold = m_suspension.hold();
        m_held = mGeneralSettings::current();
        const mGeneralSettings::PrefsTexts texts = mGeneralSettings::toTexts(m_held);
        for (int i = 0; i < mGeneralSettings::kKeyCount; ++i) {
            showSettingText(controlOf(this, kTable[i]), texts[i]);
        }
        m_edtDestination->setPlainText(m_held.pDestination);
        if (QAbstractButton* radio = m_rb1->button(camImgSizeIndex(m_held.pCamImgSize).value_or(-1))) {
            radio->setChecked(true);
        }
    });
}

void wGeneralSettings::btnSave_Action() {
    runGuarded([this] {
        emit showCountdownChosen(m_chkShowCountdown->isChecked());
        mGeneralSettings::PrefsTexts texts = mGeneralSettings::toTexts(m_held);
        for (int i = 0; i < mGeneralSettings::kKeyCount; ++i) {
            if (const QWidget* control = controlOf(this, kTable[i])) {
                texts[i] = settingControlText(control);
            }
        }
        mGeneralSettings::SavePrefs(texts);
        emit saved();
        m_hold.release();
        close();
    });
}

void wGeneralSettings::btnCancel_Action() {
    runGuarded([this] {
        emit cancelled();
        m_hold.release();
        close();
    });
}

void wGeneralSettings::btnChoose1_Action() {
    runGuarded([this] {
        // The dialog opens on the destination, or where it would be made while it does not exist yet.
        const QFileInfo destination(GetFolderItem(m_held.pDestination, FolderPlace::Pictures)
                                        .value_or(platform::applicationFolder()));
        const QString start = destination.isDir() ? destination.filePath() : destination.path();
        const QString folder = QFileDialog::getExistingDirectory(this, QString(), start);
        if (!folder.isEmpty()) {
            m_held.pDestination = QDir::toNativeSeparators(folder);
            m_edtDestination->setPlainText(m_held.pDestination);
        }
    });
}

void wGeneralSettings::edtInterval_LostFocus() {
    runGuarded([this] { holdToLimits(m_edtInterval, settingOf(m_edtInterval)); });
}

void wGeneralSettings::edtQuality_LostFocus() {
    runGuarded([this] { holdToLimits(m_edtQuality, settingOf(m_edtQuality)); });
}

void wGeneralSettings::chkUseSpeech_Action(bool checked) {
    if (checked && m_edtTextToSpeak->text().isEmpty()) {
        m_edtTextToSpeak->setText("Say Cheese");
    }
}

void wGeneralSettings::rb1_Action(int index) {
    m_held.pCamImgSize = QLatin1String(kCamImgSizes.at(index).word);
}
