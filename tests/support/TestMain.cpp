#ifdef KV_TEST_WIDGETS
#include <QApplication>
#else
#include <QCoreApplication>
#endif
#include <QMetaObject>

#include <gtest/gtest.h>

#include <thread>

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
#ifdef KV_TEST_OFF_GUI_THREAD
    std::thread tests([&app] {
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
