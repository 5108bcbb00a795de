#include <QCoreApplication>
#include <QMetaObject>

#include <gtest/gtest.h>

#include <thread>

// The tests run on a thread of their own while the GUI thread runs the event loop, for code that
// may block only off the GUI thread.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    std::thread tests([&app] {
        const int result = RUN_ALL_TESTS();
        QMetaObject::invokeMethod(
            &app, [result] { QCoreApplication::exit(result); }, Qt::QueuedConnection);
    });
    const int result = app.exec();
    tests.join();
    return result;
}
