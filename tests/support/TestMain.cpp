#ifdef KV_TEST_WIDGETS
#include <QApplication>
#else
#include <QCoreApplication>
#endif
#include <QEventLoop>
#include <QMetaObject>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <thread>

namespace {
// Whatever a test, or a test suite's set-up, does to the environment is undone when it ends, so
// that no test sees another's variables, in whatever order they run.
class EnvironmentKeeper final : public ::testing::EmptyTestEventListener {
public:
    void OnTestSuiteStart(const ::testing::TestSuite&) override {
        m_suite = QProcessEnvironment::systemEnvironment();
    }
    void OnTestSuiteEnd(const ::testing::TestSuite&) override { restore(m_suite); }
    void OnTestStart(const ::testing::TestInfo&) override {
        m_test = QProcessEnvironment::systemEnvironment();
    }
    void OnTestEnd(const ::testing::TestInfo&) override { restore(m_test); }

private:
    static void restore(const QProcessEnvironment& saved) {
        const QProcessEnvironment now = QProcessEnvironment::systemEnvironment();
        for (const QString& name : now.keys()) {
            if (!saved.contains(name)) {
                qunsetenv(name.toLocal8Bit().constData());
            }
        }
        for (const QString& name : saved.keys()) {
            if (!now.contains(name) || now.value(name) != saved.value(name)) {
                qputenv(name.toLocal8Bit().constData(), saved.value(name).toLocal8Bit());
            }
        }
    }

    QProcessEnvironment m_suite;
    QProcessEnvironment m_test;
};
} // namespace

// One main for every test executable, built three ways: KV_TEST_WIDGETS gives a QApplication for
// windows; KV_TEST_OFF_GUI_THREAD runs the tests on a thread of their own while the GUI thread
// runs the event loop, for code that may block only off the GUI thread.
int main(int argc, char** argv) {
#ifdef KV_TEST_WIDGETS
    QApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new EnvironmentKeeper); // gtest owns it
#ifdef KV_TEST_OFF_GUI_THREAD
    std::thread tests([&app] {
        // An event loop gives the thread its event dispatcher, without which a test's
        // QTest::qWaitFor delivers nothing to the sockets and timers it made here.
        { const QEventLoop dispatcher; }
        const int result = RUN_ALL_TESTS();
        QMetaObject::invokeMethod(
            &app, [result] { QCoreApplication::exit(result); }, Qt::QueuedConnection);
    });
    const int result = app.exec();
    tests.join();
    return result;
#else
    return RUN_ALL_TESTS();
#endif
}
