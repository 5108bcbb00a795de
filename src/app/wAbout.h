#pragma once

#include "base/DialogWindow.h"
#include "base/ScheduleSuspension.h"
#include "base/SingleWindow.h"

class QLabel;
class QPushButton;

// Who made the program and which version it is. The capture schedule rests while it is open.
class wAbout final : public DialogWindow {
    Q_OBJECT

public:
    // Holds `suspension` from its opening until its button.
    explicit wAbout(ScheduleSuspension& suspension);

private:
    friend class SingleWindow<wAbout>;
    void Event_Open();
    void btnClose_Action();

    QLabel* m_ImageWell1;
    QLabel* m_sttProgramName;
    QLabel* m_sttProgramSubName;
    QLabel* m_sttCopyright;
    QLabel* m_sttSupport;
    QLabel* m_sttVersion;
    QPushButton* m_btnClose;
    ScheduleSuspension& m_suspension;
    ScheduleSuspension::Token m_hold;
};

// "1.7.0 - Linux - 15072010_1800": the version, the platform built for, and the build stamp.
QString fVersionLine();
