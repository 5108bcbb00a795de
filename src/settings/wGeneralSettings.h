#pragma once

#include "base/DialogWindow.h"
#include "base/ScheduleSuspension.h"
#include "base/SingleWindow.h"
#include "settings/mGeneralSettings.h"
#include "settings/wMoreSettings.h"

class QButtonGroup;
class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

// The window in which the user changes the general settings. It edits nothing in place: the
// store changes only on Save, and the capture schedule rests while the window is open.
class wGeneralSettings final : public DialogWindow {
    Q_OBJECT

public:
    // Holds `suspension` from its opening until Save or Cancel.
    explicit wGeneralSettings(ScheduleSuspension& suspension);
    // The window of the further rules, which goes with this one; made if there is none.
    wMoreSettings* moreWindow() { return m_more.get(); }

signals:
    // Save was pressed: the countdown's visibility as chosen, told before the store is written.
    void showCountdownChosen(bool visible);
    // The store holds the values saved.
    void saved();
    void cancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class SingleWindow<wGeneralSettings>;
    void Event_Open();
    void btnSave_Action();
    void btnCancel_Action();
    void btnChoose1_Action();
    void edtInterval_LostFocus();
    void edtQuality_LostFocus();
    void chkUseSpeech_Action(bool checked);
    void rb1_Action(int index);

    // The settings as opened, with what the window holds itself rather than in a control: the
    // destination exactly as stored or chosen, and the camera size word (its pCamImgSize).
    mGeneralSettings::Prefs m_held;

    QLineEdit* m_edtInterval;
    QPlainTextEdit* m_edtDestination;
    QPushButton* m_btnChoose1;
    QLineEdit* m_edtQuality;
    QCheckBox* m_chkUpdateStartup;
    QCheckBox* m_chkThreeSecondWarning;
    QCheckBox* m_chkUseSpeech;
    QCheckBox* m_chkUseScreen;
    QCheckBox* m_chkShowCountdown;
    QCheckBox* m_chkPrimaryOnly;
    QCheckBox* m_chkHideWindow;
    QCheckBox* m_chkUseCamera;
    QLineEdit* m_edtTextToSpeak;
    QButtonGroup* m_rb1;
    QPushButton* m_btnCancel;
    QPushButton* m_btnSave;
    ScheduleSuspension& m_suspension;
    ScheduleSuspension::Token m_hold;
    SingleWindow<wMoreSettings> m_more;
};
