#include "feedback/DockIcon.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QTest>
#include <QVariantMap>

#include <gtest/gtest.h>

namespace {
// What a dock hears of the program's launcher entry.
class LauncherListener final : public QObject {
    Q_OBJECT

public:
    QList<QVariantMap> updates;

public slots:
    void update(const QDBusMessage& message) {
        if (message.arguments().size() == 2) {
            updates.push_back(qdbus_cast<QVariantMap>(message.arguments().at(1)));
        }
    }
};
} // namespace

TEST(LauncherEntry, MarkRaisesAndResetClearsTheUrgentFlag) {
    QProcess daemon;
    daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
    if (!daemon.waitForStarted(5000) || !daemon.waitForReadyRead(5000)) {
        GTEST_SKIP() << "no dbus-daemon to give the test a session bus";
    }
    const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
    // Before anything in the process asks for the session bus.
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    QDBusConnection bus = QDBusConnection::connectToBus(address, "launcher-entry-listener");
    ASSERT_TRUE(bus.isConnected());

    LauncherListener listener;
    // The bus API knows only slots by name.
    ASSERT_TRUE(bus.connect(QString(), QString(), "com.canonical.Unity.LauncherEntry", "Update", &listener,
                            SLOT(update(QDBusMessage))));
    mCodeBaseStd::sDrawNoteIconDock();
    mCodeBaseStd::sResetDockIcon();
    EXPECT_TRUE(QTest::qWaitFor([&] { return listener.updates.size() >= 2; }, 5000));
    ASSERT_EQ(listener.updates.size(), 2);
    EXPECT_EQ(listener.updates[0].value("urgent"), QVariant(true));
    EXPECT_EQ(listener.updates[1].value("urgent"), QVariant(false));

    QDBusConnection::disconnectFromBus("launcher-entry-listener");
    daemon.kill();
    daemon.waitForFinished();
}

#include "LauncherEntryTest.moc"
