#pragma once

#include <QString>

class QLineEdit;
class QWidget;

// The settings windows' controls, shown from and read back as the text that a settings file
// holds: a check box as a flag, a spin box or a line edit as its text.

void showSettingText(QWidget* control, const QString& text);
QString settingControlText(const QWidget* control);

// A value from a settings file is shown whole: a field's length holds only what the user types,
// so it widens to take a longer value rather than cut it.
void showStored(QLineEdit* field, const QString& text);
