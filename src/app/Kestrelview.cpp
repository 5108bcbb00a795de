#include "app/Kestrelview.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/Resources.h"
#include "base/UnhandledException.h"
#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "settings/DeveloperFile.h"

#include <QIcon>
#include <QScreen>

Kestrelview::Kestrelview(int& argc, char** argv)
    : QApplication(argc, argv) {
    setApplicationName(mProgramInfo::pProgramName);
    setApplicationVersion(mProgramInfo::pProgramVersion);
    setDesktopFileName(mProgramInfo::kDesktopId);
}

bool Kestrelview::Event_Open() {
    try {
        mCodeBaseStd::sGetMainScreenResolution();
        mProgramInfo::SetConstants();
        mCodeBaseStd::sLoadDeveloperFile();
        setWindowIcon(QIcon(NewKestrelviewLogo()));
        return true;
    } catch (...) {
        mCodeBaseStd::sDisplayWarningMessage("Startup Exception 1099 ...  Contact Support ...");
        return false;
    }
}

bool Kestrelview::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        Event_UnhandledException();
        return true;
    }
}

namespace mCodeBaseStd {
void sGetMainScreenResolution() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        throw NilObjectException("no screen");
    }
    mCodeBaseGlv::pMainScreenHeight = screen->geometry().height();
    mCodeBaseGlv::pMainScreenWidth = screen->geometry().width();
}
} // namespace mCodeBaseStd
