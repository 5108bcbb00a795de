#include "settings/wMoreSettings.h"

#include "base/Messages.h"
#include "base/UnhandledException.h"
#include "settings/SettingControls.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {
using mPolicies::Policies;
using PolicySetting = Setting<Policies>;

constexpr int kWidth = 522;
const QString kNotAvailable =
    QStringLiteral("Not available on Wayland, which tells no program which window has the focus.");

QWidget* makeField(const PolicySetting& setting) {
    QWidget* field = nullptr;
    if (std::holds_alternative<bool Policies::*>(setting.member)) {
        field = new QCheckBox(QString::fromUtf8(setting.view.label));
    } else if (std::holds_alternative<std::int32_t Policies::*>(setting.member)) {
        auto* spin = new QSpinBox;
        spin->setRange(setting.limits.min, setting.limits.max);
        field = spin;
    } else {
        field = new QLineEdit;
    }
    field->setObjectName(setting.key);
    return field;
}

QLabel* makeNote(const QString& text) {
    auto* note = new QLabel(text);
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    return note;
}

// A flag's check box carries its own label across the row; the other fields stand beside theirs.
// A hint, or why the rule does nothing here, stands under the field.
void addRow(QFormLayout* form, const PolicySetting& setting, QWidget* field) {
    const bool wide = qobject_cast<QCheckBox*>(field) != nullptr;
    const auto addNote = [&](const QString& text) {
        wide ? form->addRow(makeNote(text)) : form->addRow(QString(), makeNote(text));
    };
    wide ? form->addRow(field) : form->addRow(QString::fromUtf8(setting.view.label), field);
    if (setting.view.hint) {
        addNote(QString::fromUtf8(setting.view.hint));
    }
    if (setting.view.available && !setting.view.available()) {
        field->setEnabled(false);
        addNote(kNotAvailable);
    }
}

QPushButton* makeButton(const char* name, const QString& text) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    return button;
}
} // namespace

wMoreSettings::wMoreSettings()
    : DialogWindow("More Settings", QSize(kWidth, 1)) {
    auto* layout = new QVBoxLayout(this);
    QFormLayout* form = nullptr;
    const char* group = nullptr;
    for (std::size_t i = 0; i < mPolicies::kKeyCount; ++i) {
        const PolicySetting& setting = mPolicies::table()[i];
        if (form == nullptr || qstrcmp(group, setting.view.group) != 0) {
            group = setting.view.group;
            auto* box = new QGroupBox(QString::fromUtf8(group));
            form = new QFormLayout(box);
            layout->addWidget(box);
        }
        m_fields[i] = makeField(setting);
        addRow(form, setting, m_fields[i]);
    }
    auto* buttons = new QHBoxLayout;
    QPushButton* btnCancel = makeButton("btnCancel", "Cancel");
    QPushButton* btnSave = makeButton("btnSave", "Save");
    buttons->addStretch();
    buttons->addWidget(btnCancel);
    buttons->addWidget(btnSave);
    layout->addLayout(buttons);
    setDefaultButton(btnSave);
    setFixedSize(kWidth, layout->hasHeightForWidth() ? layout->totalHeightForWidth(kWidth)
                                                     : layout->totalSizeHint().height());
    connect(btnSave, &QPushButton::clicked, this, &wMoreSettings::btnSave_Action);
    connect(btnCancel, &QPushButton::clicked, this, &QWidget::close);
}

void wMoreSettings::Event_Open() {
    runGuarded([this] {
        const Policies policies = mPolicies::current();
        for (std::size_t i = 0; i < mPolicies::kKeyCount; ++i) {
            showSettingText(m_fields[i], settingText(policies, mPolicies::table()[i]));
        }
    });
}

// A text that breaks its form is told and kept in its field for the user to mend; nothing is
// stored then.
void wMoreSettings::btnSave_Action() {
    runGuarded([this] {
        Policies policies;
        for (std::size_t i = 0; i < mPolicies::kKeyCount; ++i) {
            const PolicySetting& setting = mPolicies::table()[i];
            const QString text = settingControlText(m_fields[i]);
            if (!matchesPattern(text, setting.view.pattern)) {
                mCodeBaseStd::sDisplayInformationMessage(setting.view.invalid);
                m_fields[i]->setFocus();
                return;
            }
            setSettingText(policies, setting, text);
        }
        mPolicies::SavePolicies(policies);
        emit saved();
        close();
    });
}
