#include "app/ProgramFixture.h"

#include "app/wAbout.h"
#include "settings/wGeneralSettings.h"

#include <QAbstractButton>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTest>

#include <gtest/gtest.h>

namespace {
// A pixel counts as changed when a channel moves by more than this; a few such pixels are glyph
// edges that a different rasteriser puts elsewhere, a moved or cut control changes far more.
constexpr int kChannelTolerance = 48;
constexpr double kChangedShare = 0.004;

bool updating() {
    return qEnvironmentVariableIsSet("KV_UPDATE_REFERENCES");
}

double changedShare(const QImage& actual, const QImage& reference, QImage& diff) {
    diff = QImage(actual.size(), QImage::Format_RGB32);
    diff.fill(Qt::white);
    qsizetype changed = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb b = reference.pixel(x, y);
            const int delta = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                        std::abs(qBlue(a) - qBlue(b))});
            if (delta > kChannelTolerance) {
                ++changed;
                diff.setPixel(x, y, qRgb(255, 0, 0));
            }
        }
    }
    return double(changed) / (double(actual.width()) * actual.height());
}

// Compares a window's rendering with its checked-in reference; with KV_UPDATE_REFERENCES set it
// writes the reference and the screenshot for the documentation instead.
void expectLooksLikeReference(QWidget* window, const QString& name) {
    const QImage actual = window->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QString reference = QString(KV_REFERENCE_DIR) + '/' + name + ".png";
    if (updating()) {
        ASSERT_TRUE(actual.save(reference));
        ASSERT_TRUE(actual.save(QString(KV_SCREENSHOT_DIR) + '/' + name + ".png"));
        return;
    }
    const QImage expected = QImage(reference).convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(expected.isNull()) << "no reference " << reference.toStdString();
    const QString actualPath = QDir::current().filePath(name + "-actual.png");
    ASSERT_EQ(actual.size(), expected.size())
        << "see " << actualPath.toStdString() << (actual.save(actualPath), "");
    QImage diff;
    const double share = changedShare(actual, expected, diff);
    if (share > kChangedShare) {
        actual.save(actualPath);
        diff.save(QDir::current().filePath(name + "-diff.png"));
    }
    EXPECT_LE(share, kChangedShare) << name.toStdString() << " differs from its reference; see "
                                    << actualPath.toStdString();
}

// Every text of the window fits its control with the fonts at hand.
void expectNoTextCutOff(QWidget* window) {
    for (QLabel* label : window->findChildren<QLabel*>()) {
        if (label->text().isEmpty() || !label->isVisibleTo(window)) {
            continue;
        }
        EXPECT_LE(label->sizeHint().width(), label->width()) << label->objectName().toStdString();
        EXPECT_LE(label->fontMetrics().height(), label->height()) << label->objectName().toStdString();
    }
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        int needed = button->sizeHint().width();
        if (qobject_cast<QPushButton*>(button) != nullptr) {
            // A push button's hint has a minimum width of its own; only the text and its margins count.
            needed = button->fontMetrics().horizontalAdvance(button->text()) +
                     2 * button->style()->pixelMetric(QStyle::PM_ButtonMargin, nullptr, button);
        }
        EXPECT_LE(needed, button->width()) << button->objectName().toStdString();
    }
}

class WindowLookTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
        openMainWindow();
    }
};

TEST_F(WindowLookTest, MainWindow) {
    m_main->sttCountDown()->setText("300"); // whatever the countdown has reached meanwhile
    expectLooksLikeReference(m_main.get(), "main-window");
}

TEST_F(WindowLookTest, SettingsWindow) {
    wGeneralSettings* window = wGeneralSettings::instance();
    expectNoTextCutOff(window);
    expectLooksLikeReference(window, "settings-window");
}

TEST_F(WindowLookTest, AboutWindow) {
    wAbout* window = wAbout::instance();
    expectNoTextCutOff(window);
    expectLooksLikeReference(window, "about-window");
}
} // namespace
