#include "app/ProgramFixture.h"
#include "app/wAbout.h"
#include "settings/wGeneralSettings.h"
#include "slideshow/wMovie.h"
#include "support/Pixels.h"
#include "update/wAutoUpdate.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace {
class WindowTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
        openMainWindow();
    }
};

// The way out of a window that suspends the schedule is a button that ends the suspension: not
// Escape, and only for the movie window the close box.
TEST_F(WindowTest, EscapeNeverClosesAndOnlyTheButtonsEndTheSuspension) {
    struct Dialog {
        const char* name;
        std::function<QWidget*()> open;
        bool suspends;
        bool enterCloses;
        bool suspendedAfterCloseBox;
    };
    const Dialog dialogs[] = {
        {"about", [] { return wAbout::instance(); }, true, true, true},
        {"settings", [] { return wGeneralSettings::instance(); }, true, true, true},
        {"movie", [] { return wMovie::instance(); }, true, false, false},
        {"download", [] { return wAutoUpdate::instance(); }, false, false, false},
    };
    for (const Dialog& d : dialogs) {
        SCOPED_TRACE(d.name);
        QPointer<QWidget> window = d.open();
        ASSERT_TRUE(activate(window));
        EXPECT_EQ(App().pSpecialWindowOpen, d.suspends);
        QTest::keyClick(window, Qt::Key_Escape);
        EXPECT_TRUE(window->isVisible());
        if (d.enterCloses) { // the default button, from the keypad too
            QTest::keyClick(window, Qt::Key_Enter, Qt::KeypadModifier);
            EXPECT_TRUE(window.isNull() || !window->isVisible());
            EXPECT_FALSE(App().pSpecialWindowOpen);
            window = d.open();
            ASSERT_TRUE(activate(window));
        }
        window->close(); // the close box
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull() || !window->isVisible(); }, 10000));
        EXPECT_EQ(App().pSpecialWindowOpen, d.suspendedAfterCloseBox);
        App().pSpecialWindowOpen = false;
    }
    // A fresh window, filled in again.
    EXPECT_EQ(wAbout::instance()->findChild<QLabel*>("sttVersion")->text(), "1.7.0 - Linux - 15072010_1800");
}

// Each window against its checked-in reference, where a few differing pixels are glyph edges that
// another rasteriser puts elsewhere, and every text fits its control; KV_UPDATE_REFERENCES=1
// rewrites the references and the screenshots in docs/ instead.
TEST_F(WindowTest, WindowsLookAsTheirReferences) {
    m_main->sttCountDown()->setText("300"); // whatever the countdown has reached meanwhile
    const std::pair<QWidget*, QString> windows[] = {{m_main.get(), "main-window"},
                                                    {wGeneralSettings::instance(), "settings-window"},
                                                    {wAbout::instance(), "about-window"}};
    for (const auto& [window, name] : windows) {
        const QImage actual = window->grab().toImage();
        const QString reference = QString(KV_REFERENCE_DIR) + '/' + name + ".png";
        if (qEnvironmentVariableIsSet("KV_UPDATE_REFERENCES")) {
            EXPECT_TRUE(actual.save(reference) &&
                        actual.save(QString(KV_SCREENSHOT_DIR) + '/' + name + ".png"));
            continue;
        }
        const QImage expected(reference);
        const PixelDifference difference = differingPixels(actual, expected, 48);
        EXPECT_TRUE(actual.size() == expected.size() &&
                    difference.outside <= actual.width() * actual.height() / 250)
            << name.toStdString() << " differs from its reference; see "
            << (actual.save(name + "-actual.png"),
                QDir::current().filePath(name + "-actual.png").toStdString());
        for (QLabel* label : window->findChildren<QLabel*>()) {
            EXPECT_TRUE(!label->isVisibleTo(window) || label->text().isEmpty() ||
                        (label->sizeHint().width() <= label->width() &&
                         label->fontMetrics().height() <= label->height()))
                << label->objectName().toStdString();
        }
        for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
            // A push button's hint has a minimum width of its own; only the text and its margins count.
            const int needed =
                qobject_cast<QPushButton*>(button) == nullptr
                    ? button->sizeHint().width()
                    : button->fontMetrics().horizontalAdvance(button->text()) +
                          2 * button->style()->pixelMetric(QStyle::PM_ButtonMargin, nullptr, button);
            EXPECT_LE(needed, button->width()) << button->objectName().toStdString();
        }
    }
}
} // namespace
