#include "app/ProgramFixture.h"

#include "base/AppState.h"
#include "settings/wGeneralSettings.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {
const QString kMinimumInterval = "Six Seconds is the Minimum Interval ...";
const QString kMaximumQuality = "Three Hundred is the Maximum Quality ...";
const QString kMinimumQuality = "Seventy Five is the Minimum Quality ...";

class SettingsWindowTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
        openMainWindow();
    }

    // Opens the window on the settings stored now, in front and with the keyboard.
    void open() {
        m_window = m_main->showSettingsWindow();
        ASSERT_TRUE(activate(m_window));
    }

    template <typename T> T* control(const char* name) const {
        T* found = m_window->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit* field(const char* name) const { return control<QLineEdit>(name); }
    QCheckBox* box(const char* name) const { return control<QCheckBox>(name); }
    QRadioButton* radio(int index) const {
        return control<QRadioButton>(qPrintable(QString("rb1_%1").arg(index)));
    }
    QString sizeChecked() const {
        for (int index = 0; index < 3; ++index) {
            if (radio(index)->isChecked()) {
                return radio(index)->text();
            }
        }
        return "none";
    }

    // Replaces a field's text by typing, as the user would.
    void retype(QLineEdit* edit, const QString& text) {
        edit->setFocus(Qt::MouseFocusReason);
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }

    // Clicks a check box or radio button on its mark, which is what takes clicks.
    void tick(QAbstractButton* button) {
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
    }

    void click(const char* button) { QTest::mouseClick(control<QPushButton>(button), Qt::LeftButton); }

    bool closed() const { return m_window.isNull() || !m_window->isVisible(); }

    QPointer<wGeneralSettings> m_window;
};

TEST_F(SettingsWindowTest, FieldLimitsApplyWhenTheFocusMovesOn) {
    struct Case {
        const char* field;
        QString typed;
        QString message; // empty: none
        QString shown;
    };
    const Case cases[] = {
        {"edtInterval", "5", kMinimumInterval, "6"},   {"edtInterval", "6", "", "6"},
        {"edtInterval", "", kMinimumInterval, "6"},    {"edtInterval", "000007", "", "000007"},
        {"edtQuality", "301", kMaximumQuality, "300"}, {"edtQuality", "300", "", "300"},
        {"edtQuality", "74", kMinimumQuality, "75"},   {"edtQuality", "75", "", "75"},
        {"edtQuality", "", kMinimumQuality, "75"},     {"edtQuality", "999", kMaximumQuality, "300"},
    };
    open();
    for (const Case& c : cases) {
        const std::size_t before = m_presenter.messages().size();
        retype(field(c.field), c.typed);
        QTest::keyClick(field(c.field), Qt::Key_Tab);
        EXPECT_FALSE(field(c.field)->hasFocus());
        const auto messages = m_presenter.messages();
        if (c.message.isEmpty()) {
            EXPECT_EQ(messages.size(), before) << c.field << " '" << qPrintable(c.typed) << "'";
        } else {
            ASSERT_EQ(messages.size(), before + 1) << c.field << " '" << qPrintable(c.typed) << "'";
            EXPECT_EQ(messages.back().kind, MessageKind::Information);
            EXPECT_EQ(messages.back().text, c.message);
        }
        EXPECT_EQ(field(c.field)->text(), c.shown) << c.field << " '" << qPrintable(c.typed) << "'";
    }
}

TEST_F(SettingsWindowTest, TypingStopsAtTheFieldLengthsAndNumberFieldsTakeOnlyDigits) {
    open();
    retype(field("edtInterval"), "12a-3 4567");
    EXPECT_EQ(field("edtInterval")->text(), "123456");
    retype(field("edtQuality"), "8x90");
    EXPECT_EQ(field("edtQuality")->text(), "890");
    retype(field("edtTextToSpeak"), QString(48, 'a') + "<b>c");
    EXPECT_EQ(field("edtTextToSpeak")->text(), QString(48, 'a') + "<b");
}

TEST_F(SettingsWindowTest, StoredValuesLongerThanTheFieldsShowWholeAndSaveUnchanged) {
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pInterval = 1234567;
    prefs.pQuality = 1000;
    prefs.pTextToSpeak = QString("Say Cheese, ").repeated(5);
    writePrefs(prefs);
    const QByteArray file = readBinFile("KestrelviewPreferences.ini");
    open();
    EXPECT_EQ(field("edtInterval")->text(), "1234567");
    EXPECT_EQ(field("edtQuality")->text(), "1000");
    EXPECT_EQ(field("edtTextToSpeak")->text(), prefs.pTextToSpeak);
    QTest::keyClicks(field("edtTextToSpeak"), "!");
    EXPECT_EQ(field("edtTextToSpeak")->text(), prefs.pTextToSpeak) << "typing makes it no longer";
    click("btnSave");
    EXPECT_EQ(readBinFile("KestrelviewPreferences.ini"), file);
}

TEST_F(SettingsWindowTest, AnotherWindowComingInFrontIsNoLossOfFocus) {
    open();
    retype(field("edtInterval"), "5");
    ASSERT_TRUE(activate(m_main.get()));
    ASSERT_TRUE(activate(m_window));
    EXPECT_TRUE(m_presenter.messages().empty());
    EXPECT_EQ(field("edtInterval")->text(), "5");
}

TEST_F(SettingsWindowTest, SaveStoresEveryControlAndRestartsTheCountdownLabel) {
    open();
    EXPECT_TRUE(App().pSpecialWindowOpen);
    retype(field("edtInterval"), "60");
    retype(field("edtQuality"), "90");
    retype(field("edtTextToSpeak"), "Smile");
    tick(box("chkShowCountdown"));
    tick(box("chkUseCamera"));
    tick(box("chkHideWindow"));
    tick(radio(0));
    click("btnSave");

    EXPECT_TRUE(closed());
    EXPECT_FALSE(App().pSpecialWindowOpen);
    EXPECT_TRUE(m_presenter.messages().empty());
    EXPECT_EQ(readBinFile("KestrelviewPreferences.ini").toStdString(),
              "<pInterval>60</pInterval>\n"
              "<pDestination>Screen Images</pDestination>\n"
              "<pQuality>90</pQuality>\n"
              "<pUpdateAtStartup>FALSE</pUpdateAtStartup>\n"
              "<pShowCountdown>FALSE</pShowCountdown>\n"
              "<pUseSpeech>FALSE</pUseSpeech>\n"
              "<pTextToSpeak>Smile</pTextToSpeak>\n"
              "<pUseCamera>TRUE</pUseCamera>\n"
              "<pUseScreen>TRUE</pUseScreen>\n"
              "<pThreeSecondWarning>FALSE</pThreeSecondWarning>\n"
              "<pCamImgSize>SMALL</pCamImgSize>\n"
              "<pPrimaryOnly>FALSE</pPrimaryOnly>\n"
              "<pHideWindow>TRUE</pHideWindow>\n");
    EXPECT_EQ(mGeneralSettings::current().pInterval, 60);
    EXPECT_EQ(m_main->sttCountDown()->text(), "60");
    EXPECT_FALSE(m_main->sttCountDown()->isVisible());
}

TEST_F(SettingsWindowTest, CancelLeavesTheStoreAndTheMainWindowAlone) {
    const QByteArray file = readBinFile("KestrelviewPreferences.ini");
    const QString countdown = m_main->sttCountDown()->text();
    const bool countdownShown = m_main->sttCountDown()->isVisible();
    open();
    retype(field("edtInterval"), "60");
    retype(field("edtTextToSpeak"), "Smile");
    tick(box("chkShowCountdown"));
    tick(radio(2));
    click("btnCancel");

    EXPECT_TRUE(closed());
    EXPECT_FALSE(App().pSpecialWindowOpen);
    EXPECT_EQ(readBinFile("KestrelviewPreferences.ini"), file);
    EXPECT_EQ(mGeneralSettings::current().pInterval, 300);
    EXPECT_EQ(m_main->sttCountDown()->text(), countdown);
    EXPECT_EQ(m_main->sttCountDown()->isVisible(), countdownShown);
}

TEST_F(SettingsWindowTest, ReturnSavesWithTheFocusStillInAnEmptyInterval) {
    open();
    retype(field("edtInterval"), "");
    QTest::keyClick(field("edtInterval"), Qt::Key_Return);

    EXPECT_TRUE(closed());
    EXPECT_TRUE(m_presenter.messages().empty()) << "the field never lost the focus";
    EXPECT_TRUE(readBinFile("KestrelviewPreferences.ini").startsWith("<pInterval>0</pInterval>\n"));
    EXPECT_EQ(mGeneralSettings::current().pInterval, 0);
    EXPECT_EQ(m_main->sttCountDown()->text(), "0");
}

TEST_F(SettingsWindowTest, EscapeAndTheCloseBoxLeaveTheScheduleSuspended) {
    open();
    QTest::keyClick(m_window, Qt::Key_Escape);
    EXPECT_FALSE(closed()) << "no cancel key";
    m_window->close();
    EXPECT_TRUE(App().pSpecialWindowOpen);
    // The next window is a fresh one, and its buttons clear the flag again.
    open();
    click("btnCancel");
    EXPECT_FALSE(App().pSpecialWindowOpen);
}

TEST_F(SettingsWindowTest, CameraSizeWordSelectsARadioButtonAndSaveKeepsItUnlessOneIsClicked) {
    struct Case {
        QString stored;
        QString selected;
        QString saved;
    };
    const Case cases[] = {
        {"", "Medium", ""},
        {"small", "Small", "small"},
        {"LARGE", "Large", "LARGE"},
        {"HUGE", "none", "HUGE"},
    };
    for (const Case& c : cases) {
        mGeneralSettings::Prefs prefs = quietPrefs();
        prefs.pCamImgSize = c.stored;
        writePrefs(prefs);
        open();
        EXPECT_EQ(sizeChecked(), c.selected) << "stored '" << qPrintable(c.stored) << "'";
        click("btnSave");
        EXPECT_EQ(mGeneralSettings::current().pCamImgSize, c.saved)
            << "stored '" << qPrintable(c.stored) << "'";
    }
    open();
    tick(radio(1));
    click("btnSave");
    EXPECT_EQ(mGeneralSettings::current().pCamImgSize, "MEDIUM");
}

TEST_F(SettingsWindowTest, UseSpeechSuppliesAPhraseOnlyWhereThereIsNone) {
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pTextToSpeak = "";
    writePrefs(prefs);
    open();
    EXPECT_EQ(field("edtTextToSpeak")->text(), "");
    tick(box("chkUseSpeech"));
    EXPECT_EQ(field("edtTextToSpeak")->text(), "Say Cheese");
    retype(field("edtTextToSpeak"), "Hello");
    tick(box("chkUseSpeech")); // off
    tick(box("chkUseSpeech")); // on again
    EXPECT_EQ(field("edtTextToSpeak")->text(), "Hello");
}

TEST_F(SettingsWindowTest, AFailedWriteLeavesTheWindowOpenAndTheScheduleSuspended) {
    open();
    // A folder in the settings file's place cannot be written over, even by root.
    QFile::remove(binPath("KestrelviewPreferences.ini"));
    ASSERT_TRUE(QDir().mkpath(binPath("KestrelviewPreferences.ini")));
    click("btnSave");

    EXPECT_FALSE(closed());
    EXPECT_TRUE(App().pSpecialWindowOpen);
    EXPECT_EQ(m_presenter.texts(), std::vector<QString>{"Unhandled Exception.  Contact Support ..."});
}

TEST_F(SettingsWindowTest, TheFolderComesFromTheFolderDialogAndCancellingKeepsTheOldOne) {
    QTemporaryDir chosen;
    ASSERT_TRUE(chosen.isValid());
    open();
    const auto destination = [&] { return control<QPlainTextEdit>("edtDestination")->toPlainText(); };
    // Answers the dialog once it is up: accepts `folder`, or cancels when it is empty. It looks
    // again and again rather than waiting, since the dialog comes up inside the click.
    QTimer answerer;
    QString answer;
    QObject::connect(&answerer, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            answerer.stop();
            if (answer.isEmpty()) {
                dialog->reject();
            } else {
                dialog->setDirectory(answer);
                static_cast<QDialog*>(dialog)->accept();
            }
        }
    });
    const auto answerDialog = [&](const QString& folder) {
        answer = folder;
        answerer.start(20);
    };
    answerDialog("");
    click("btnChoose1");
    EXPECT_EQ(destination(), "Screen Images");

    answerDialog(chosen.path());
    click("btnChoose1");
    EXPECT_EQ(destination(), chosen.path());
    click("btnSave");
    EXPECT_EQ(mGeneralSettings::current().pDestination, chosen.path());
}

TEST_F(SettingsWindowTest, TabFollowsTheControlsInReadingOrder) {
    open();
    field("edtInterval")->setFocus(Qt::TabFocusReason);
    QStringList order{QApplication::focusWidget()->objectName()};
    for (int step = 0; step < 20; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (QApplication::focusWidget() == field("edtInterval")) {
            break;
        }
        order << QApplication::focusWidget()->objectName();
    }
    EXPECT_EQ(order, QStringList({"edtInterval", "edtDestination", "btnChoose1", "edtQuality",
                                  "chkUpdateStartup", "chkThreeSecondWarning", "chkUseSpeech", "chkUseScreen",
                                  "chkShowCountdown", "chkPrimaryOnly", "chkHideWindow", "chkUseCamera",
                                  "edtTextToSpeak", "rb1_0", "btnCancel", "btnSave"}));
}
} // namespace
