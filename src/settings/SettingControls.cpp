#include "settings/SettingControls.h"

#include "settings/TagFile.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSpinBox>

#include <algorithm>

void showSettingText(QWidget* control, const QString& text) {
    if (auto* box = qobject_cast<QCheckBox*>(control)) {
        box->setChecked(isFlagSet(text));
    } else if (auto* spin = qobject_cast<QSpinBox*>(control)) {
        spin->setValue(valToInt32(text));
    } else if (auto* field = qobject_cast<QLineEdit*>(control)) {
        showStored(field, text);
    }
}

QString settingControlText(const QWidget* control) {
    if (const auto* box = qobject_cast<const QCheckBox*>(control)) {
        return box->isChecked() ? "TRUE" : "FALSE";
    }
    if (const auto* spin = qobject_cast<const QSpinBox*>(control)) {
        return QString::number(spin->value());
    }
    return qobject_cast<const QLineEdit*>(control)->text();
}

void showStored(QLineEdit* field, const QString& text) {
    field->setMaxLength(std::max(field->maxLength(), int(text.size())));
    field->setText(text);
}
