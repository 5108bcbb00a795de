#include "app/ProgramFixture.h"

#include "settings/wGeneralSettings.h"
#include "settings/wMoreSettings.h"
#include "support/Files.h"
#include "support/Must.h"

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {
const QString kFile = QStringLiteral("KestrelviewPreferences.ini");

class SettingsWindowTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
        openMainWindow();
    }

    void open() {
        m_window = m_main->showSettingsWindow();
        ASSERT_TRUE(activate(m_window));
    }
    template <typename T = QLineEdit> T* get(const char* name) const {
        return &must(m_window->findChild<T*>(name), name);
    }
    void retype(const char* name, const QString& text) {
        get(name)->setFocus(Qt::MouseFocusReason);
        get(name)->clear();
        QTest::keyClicks(get(name), text);
    }
    // Clicks a check box or radio button on its mark, which is what takes clicks.
    void tick(const char* name) {
        auto* button = get<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
    }
    void click(const char* name) { QTest::mouseClick(get<QPushButton>(name), Qt::LeftButton); }

    QPointer<wGeneralSettings> m_window;
};

TEST_F(SettingsWindowTest, EditsReachTheStoreAndTheMainWindowOnlyBySaveAndStoredValuesSurvive) {
    const QByteArray file = readBinFile(kFile);
    open();
    QSignalSpy cancelled(m_window.data(), &wGeneralSettings::cancelled);
    retype("edtInterval", "60");
    tick("chkShowCountdown");
    click("btnCancel");
    EXPECT_TRUE(!m_window || !m_window->isVisible());
    EXPECT_FALSE(suspended());
    EXPECT_EQ(readBinFile(kFile), file);
    open();
    QSignalSpy chosen(m_window.data(), &wGeneralSettings::showCountdownChosen);
    QSignalSpy saved(m_window.data(), &wGeneralSettings::saved);
    EXPECT_TRUE(suspended());
    retype("edtInterval", "5");
    ASSERT_TRUE(activate(m_main) && activate(m_window));
    EXPECT_TRUE(m_presenter.texts().empty()) << "another window in front is no loss of focus";
    // What each field shows once the focus has moved on from it.
    const std::pair<const char*, std::vector<std::pair<QString, QString>>> cases[] = {
        {"edtInterval", {{"12a-3 4567", "123456"}, {"5", "6"}, {"6", "6"}, {"", "6"}}},
        {"edtQuality",
         {{"1x0x05", "100"}, {"301", "300"}, {"300", "300"}, {"74", "75"}, {"", "75"}, {"90", "90"}}},
    };
    for (const auto& [field, rows] : cases) {
        for (const auto& [typed, shown] : rows) {
            retype(field, typed);
            QTest::keyClick(get(field), Qt::Key_Tab);
            EXPECT_EQ(get(field)->text(), shown) << field << " '" << typed.toStdString() << "'";
        }
    }
    retype("edtTextToSpeak", QString(48, 'a') + "<b>c");
    EXPECT_EQ(get("edtTextToSpeak")->text(), QString(48, 'a') + "<b");
    retype("edtTextToSpeak", "Smile");
    // The folder dialog comes up inside the click, so a timer looks for it again and again.
    QTemporaryDir folder;
    QString answer;
    QTimer answerer;
    QObject::connect(&answerer, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            answerer.stop();
            dialog->setDirectory(answer);
            answer.isEmpty() ? dialog->reject() : static_cast<QDialog*>(dialog)->accept();
        }
    });
    for (const QString& pick : {QString(), folder.path()}) {
        answer = pick;
        answerer.start(20);
        click("btnChoose1");
        EXPECT_EQ(get<QPlainTextEdit>("edtDestination")->toPlainText(),
                  pick.isEmpty() ? "Screen Images" : pick);
    }
    for (const char* control : {"chkShowCountdown", "chkUseCamera", "chkHideWindow", "rb1_0"}) {
        tick(control);
    }
    retype("edtInterval", ""); // Return saves at once, without the field losing the focus
    QTest::keyClick(get("edtInterval"), Qt::Key_Return);
    EXPECT_TRUE(!m_window || !m_window->isVisible());
    EXPECT_FALSE(suspended());
    const QString minInterval = "Six Seconds is the Minimum Interval ...";
    const QString minQuality = "Seventy Five is the Minimum Quality ...";
    EXPECT_EQ(m_presenter.texts(),
              (std::vector<QString>{minInterval, minInterval, "Three Hundred is the Maximum Quality ...",
                                    minQuality, minQuality}));
    EXPECT_EQ(readBinFile(kFile).replace(folder.path().toUtf8(), "F").toStdString(),
              "<pInterval>0</pInterval>\n<pDestination>F</pDestination>\n<pQuality>90</pQuality>\n"
              "<pUpdateAtStartup>FALSE</pUpdateAtStartup>\n<pShowCountdown>FALSE</pShowCountdown>\n"
              "<pUseSpeech>FALSE</pUseSpeech>\n<pTextToSpeak>Smile</pTextToSpeak>\n"
              "<pUseCamera>TRUE</pUseCamera>\n<pUseScreen>TRUE</pUseScreen>\n"
              "<pThreeSecondWarning>FALSE</pThreeSecondWarning>\n<pCamImgSize>SMALL</pCamImgSize>\n"
              "<pPrimaryOnly>FALSE</pPrimaryOnly>\n<pHideWindow>TRUE</pHideWindow>\n");
    EXPECT_EQ(std::tuple(cancelled.size(), chosen.size(), saved.size()), std::tuple(1, 1, 1));
    EXPECT_EQ(m_main->sttCountDown()->text(), "0");
    EXPECT_FALSE(m_main->sttCountDown()->isVisible());

    // Stored values show whole, and Save writes them unchanged.
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pInterval = 1234567;
    prefs.pQuality = 1000;
    prefs.pTextToSpeak = QString("Say Cheese, ").repeated(5);
    prefs.pUseCamera = prefs.pPrimaryOnly = true;
    prefs.pUseScreen = false;
    prefs.pDestination = QString::fromUtf8("/tmp/Bilder\u00a0neu\u2028alt"); // kept as stored, not as shown
    // The camera size word selects a button, or none.
    for (const auto& [word, button] :
         {std::pair<QString, QString>{"", "rb1_1"}, {"small", "rb1_0"}, {"LARGE", "rb1_2"}, {"HUGE", ""}}) {
        prefs.pCamImgSize = word;
        writePrefs(prefs);
        const QByteArray stored = readBinFile(kFile);
        open();
        for (const char* radio : {"rb1_0", "rb1_1", "rb1_2"}) {
            EXPECT_EQ(get<QRadioButton>(radio)->isChecked(), radio == button) << word.toStdString();
        }
        QTest::keyClicks(get("edtInterval"), "8");
        QTest::keyClicks(get("edtTextToSpeak"), "!");
        click("btnSave");
        EXPECT_EQ(readBinFile(kFile), stored) << "nothing cut, nor lengthened by typing";
    }
}
} // namespace

namespace {
// The rules' window from the settings window's "More ..." button; in a Wayland session the
// private-window rules show as not available, and keep what they hold.
TEST_F(SettingsWindowTest, MoreSavesTheRulesOnlyWhenEachTextHasItsForm) {
    using mPolicies::Policies;
    const QString file = binPath("KestrelviewPolicies.ini");
    const bool sessionSet = qEnvironmentVariableIsSet("XDG_SESSION_TYPE");
    const QByteArray session = qgetenv("XDG_SESSION_TYPE");
    for (const bool wayland : {false, true}) {
        Policies stored;
        stored.pPrivateWindows = "KeePassXC";
        mPolicies::SavePolicies(stored);
        const QByteArray before = readFile(file);
        qputenv("XDG_SESSION_TYPE", wayland ? "wayland" : "x11");
        open();
        click("btnMore");
        QPointer<wMoreSettings> more = m_window->moreWindow();
        sessionSet ? qputenv("XDG_SESSION_TYPE", session) : qunsetenv("XDG_SESSION_TYPE");
        ASSERT_TRUE(QTest::qWaitForWindowActive(more));
        const auto field = [&](const char* key) { return more->findChild<QWidget*>(key); };
        for (const char* key : {"pPrivateWindows", "pPrivateCamera"}) {
            EXPECT_EQ(field(key)->isEnabled(), !wayland) << key;
        }
        QTest::keyClicks(field("pCaptureDays"), "Mon,Someday");
        QTest::mouseClick(field("pSkipUnchanged"), Qt::LeftButton, {}, QPoint(6, 6));
        qobject_cast<QSpinBox*>(field("pKeepDays"))->setValue(7);
        QTest::mouseClick(more->findChild<QPushButton*>("btnSave"), Qt::LeftButton);
        ASSERT_TRUE(more && more->isVisible()) << "a text out of form is not saved";
        EXPECT_EQ(readFile(file), before);
        QTest::keyClicks(field("pCaptureDays"), QString(7, '\b') + "fri");
        QTest::keyClick(more, Qt::Key_Return);
        EXPECT_TRUE(!more || !more->isVisible());
        mPolicies::LoadPolicies();
        stored.pCaptureDays = "Mon,fri";
        stored.pSkipUnchanged = false;
        stored.pKeepDays = 7;
        EXPECT_TRUE(mPolicies::current() == stored) << readFile(file).toStdString();
        click("btnCancel");
    }
    EXPECT_EQ(m_presenter.texts(), std::vector<QString>(2, "Capture Days are Written as Mon,Tue,Wed ..."));
}
} // namespace
