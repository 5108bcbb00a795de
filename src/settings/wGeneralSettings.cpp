#include "settings/wGeneralSettings.h"

#include "base/AppState.h"
#include "base/Messages.h"
#include "base/UnhandledException.h"
#include "platform/FolderItem.h"
#include "settings/CamImgSize.h"
#include "settings/TagFile.h"
#include "settings/mGeneralSettings.h"

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
QString flag(const QCheckBox* box) {
    return box->isChecked() ? "TRUE" : "FALSE";
}

QLabel* makeLabel(QWidget* parent, const char* name, const QString& text, QRect frame) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setGeometry(frame);
    return label;
}

// Only digits go in, and no more than `digits` of them; an empty field stays possible.
QLineEdit* makeNumberField(QWidget* parent, const char* name, int digits, QRect frame) {
    auto* field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setGeometry(frame);
    field->setMaxLength(digits);
    field->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), field));
    return field;
}

// A value from the settings file is shown whole: a field's length holds only what the user types,
// so it widens to take a longer value rather than cut it.
void showStored(QLineEdit* field, const QString& text) {
    field->setMaxLength(std::max(field->maxLength(), int(text.size())));
    field->setText(text);
}

QCheckBox* makeCheckBox(QWidget* parent, const char* name, const QString& text, QRect frame) {
    auto* box = new QCheckBox(text, parent);
    box->setObjectName(name);
    box->setGeometry(frame);
    return box;
}

QPushButton* makeButton(QWidget* parent, const char* name, const QString& text, QRect frame) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setGeometry(frame);
    return button;
}

QPlainTextEdit* makeDestinationField(QWidget* parent) {
    auto* field = new QPlainTextEdit(parent);
    field->setObjectName("edtDestination");
    field->setGeometry(132, 155, 266, 50);
    field->setReadOnly(true);
    field->setTabChangesFocus(true);
    field->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    // The small system size: eleven parts in thirteen of the normal one.
    QFont font = field->font();
    font.setPointSizeF(font.pointSizeF() * 11 / 13);
    field->setFont(font);
    return field;
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
} // namespace

wGeneralSettings* wGeneralSettings::instance() {
    return singleWindow<wGeneralSettings>();
}

// Controls are made in reading order, row by row, which is also the order of the Tab key.
wGeneralSettings::wGeneralSettings()
    : DialogWindow("Settings", QSize(522, 520)) {
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
    m_rb1 = new QButtonGroup(this);
    const std::array<std::pair<const char*, QRect>, 3> radios{
        {{"Small", {156, 418, 60, 20}}, {"Medium", {228, 418, 79, 20}}, {"Large", {319, 418, 79, 20}}}};
    for (int index = 0; index < int(radios.size()); ++index) {
        auto* radio = new QRadioButton(radios[index].first, this);
        radio->setObjectName(QString("rb1_%1").arg(index));
        radio->setGeometry(radios[index].second);
        m_rb1->addButton(radio, index);
    }
    QLabel* restart =
        makeLabel(this, "sttRestart", "(Image Size Setting Changes Require the Program to be Restarted ...)",
                  {20, 448, 482, 20});
    restart->setFont(QFont("Verdana", restart->font().pointSize()));
    restart->setStyleSheet("color: #004080;");
    m_btnCancel = makeButton(this, "btnCancel", "Cancel", {330, 480, 80, 20});
    m_btnSave = makeButton(this, "btnSave", "Save", {422, 480, 80, 20});
    setDefaultButton(m_btnSave);

    m_edtInterval->installEventFilter(this);
    m_edtQuality->installEventFilter(this);
    connect(m_btnSave, &QPushButton::clicked, this, &wGeneralSettings::btnSave_Action);
    connect(m_btnCancel, &QPushButton::clicked, this, &wGeneralSettings::btnCancel_Action);
    connect(m_btnChoose1, &QPushButton::clicked, this, &wGeneralSettings::btnChoose1_Action);
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
        App().pSpecialWindowOpen = true;
        const mGeneralSettings::Prefs prefs = mGeneralSettings::current();
        showStored(m_edtInterval, QString::number(prefs.pInterval));
        m_edtDestination->setPlainText(prefs.pDestination);
        showStored(m_edtQuality, QString::number(prefs.pQuality));
        showStored(m_edtTextToSpeak, prefs.pTextToSpeak);
        m_chkUpdateStartup->setChecked(isFlagSet(prefs.pUpdateAtStartup));
        m_chkShowCountdown->setChecked(isFlagSet(prefs.pShowCountdown));
        m_chkUseSpeech->setChecked(isFlagSet(prefs.pUseSpeech));
        m_chkUseCamera->setChecked(isFlagSet(prefs.pUseCamera));
        m_chkUseScreen->setChecked(isFlagSet(prefs.pUseScreen));
        m_chkThreeSecondWarning->setChecked(isFlagSet(prefs.pThreeSecondWarning));
        pCamImgSize = prefs.pCamImgSize;
        if (QAbstractButton* radio = m_rb1->button(camImgSizeIndex(pCamImgSize).value_or(-1))) {
            radio->setChecked(true);
        }
        m_chkPrimaryOnly->setChecked(isFlagSet(prefs.pPrimaryOnly));
        m_chkHideWindow->setChecked(isFlagSet(prefs.pHideWindow));
    });
}

void wGeneralSettings::btnSave_Action() {
    runGuarded([this] {
        emit showCountdownChosen(m_chkShowCountdown->isChecked());
        mGeneralSettings::SavePrefs({
            m_edtInterval->text(),
            m_edtDestination->toPlainText(),
            m_edtQuality->text(),
            flag(m_chkUpdateStartup),
            flag(m_chkShowCountdown),
            flag(m_chkUseSpeech),
            m_edtTextToSpeak->text(),
            flag(m_chkUseCamera),
            flag(m_chkUseScreen),
            flag(m_chkThreeSecondWarning),
            pCamImgSize,
            flag(m_chkPrimaryOnly),
            flag(m_chkHideWindow),
        });
        emit saved();
        App().pSpecialWindowOpen = false;
        close();
    });
}

void wGeneralSettings::btnCancel_Action() {
    runGuarded([this] {
        emit cancelled();
        App().pSpecialWindowOpen = false;
        close();
    });
}

void wGeneralSettings::btnChoose1_Action() {
    runGuarded([this] {
        // The dialog opens on the destination, or where it would be made while it does not exist yet.
        const QFileInfo destination(GetFolderItem(m_edtDestination->toPlainText(), FolderPlace::Pictures)
                                        .value_or(platform::applicationFolder()));
        const QString start = destination.isDir() ? destination.filePath() : destination.path();
        const QString folder = QFileDialog::getExistingDirectory(this, QString(), start);
        if (!folder.isEmpty()) {
            m_edtDestination->setPlainText(QDir::toNativeSeparators(folder));
        }
    });
}

void wGeneralSettings::edtInterval_LostFocus() {
    runGuarded([this] {
        if (valToInt32(m_edtInterval->text()) < 6) {
            mCodeBaseStd::sDisplayInformationMessage("Six Seconds is the Minimum Interval ...");
            m_edtInterval->setText("6");
        }
    });
}

void wGeneralSettings::edtQuality_LostFocus() {
    runGuarded([this] {
        if (valToInt32(m_edtQuality->text()) > 300) {
            mCodeBaseStd::sDisplayInformationMessage("Three Hundred is the Maximum Quality ...");
            m_edtQuality->setText("300");
        }
        if (valToInt32(m_edtQuality->text()) < 75) {
            mCodeBaseStd::sDisplayInformationMessage("Seventy Five is the Minimum Quality ...");
            m_edtQuality->setText("75");
        }
    });
}

void wGeneralSettings::chkUseSpeech_Action(bool checked) {
    if (checked && m_edtTextToSpeak->text().isEmpty()) {
        m_edtTextToSpeak->setText("Say Cheese");
    }
}

void wGeneralSettings::rb1_Action(int index) {
    pCamImgSize = QLatin1String(kCamImgSizes.at(index).word);
}
