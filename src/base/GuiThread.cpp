#include "base/GuiThread.h"

#include <QApplication>
#include <QThread>

bool onGuiThread() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr &&
           QThread::currentThread() == QCoreApplication::instance()->thread();
}

void postToGuiThread(std::function<void()> work) {
    if (QCoreApplication* app = QCoreApplication::instance()) {
        QMetaObject::invokeMethod(app, std::move(work), Qt::QueuedConnection);
    }
}
