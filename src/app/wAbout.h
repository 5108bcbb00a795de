#pragma once

#include "base/DialogWindow.h"
#include "base/SingleWindow.h"

class QLabel;
class QPushButton;

// Who made the program and which version it is. The capture schedule rests while it is open.
class wAbout final : public DialogWindow {
    Q_OBJECT

public:
    // The window, made and filled in if there is none.
    static wAbout* instance();

private:
    friend wAbout* singleWindow<wAbout>();
    wAbout();
    void Event_Open();
    void btnClose_Action();

    QLabel* m_ImageWell1;
    QLabel* m_sttProgramName;
    QLabel* m_sttProgramSubName;
    QLabel* m_sttCopyright;
    QLabel* m_sttSupport;
    QLabel* m_sttVersion;
    QPushButton* m_btnClose;
};

// "1.7.0 - Linux - 15072010_1800": the version, the platform built for, and the build stamp.
QString fVersionLine();
