#pragma once

#include "base/DialogWindow.h"
#include "base/SingleWindow.h"
#include "settings/mPolicies.h"

#include <array>

class QPushButton;

// The rules beyond the general settings, opened from the settings window: a field for each rule
// of KestrelviewPolicies.ini, in boxes by group, all made from the rules' table. It edits nothing
// in place: the rules change only on Save.
class wMoreSettings final : public DialogWindow {
    Q_OBJECT

signals:
    // The store holds the rules saved.
    void saved();

private:
    friend class SingleWindow<wMoreSettings>;
    wMoreSettings();
    void Event_Open();
    void btnSave_Action();

    std::array<QWidget*, mPolicies::kKeyCount> m_fields{};
};
