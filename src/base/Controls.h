#pragma once

#include <QApplication>
#include <QFont>
#include <QLabel>
#include <QPushButton>
#include <QRect>
#include <QWidget>

#include <utility>

// The small system font: eleven parts in thirteen of the system font.
inline QFont smallSystemFont() {
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * 11.0 / 13.0);
    return font;
}

// A control at a fixed place in its window, under the name that tests and the window's code find
// it by; `args` come before the parent, as the control's constructor takes them.
template <typename Control, typename... Args>
Control* placeControl(QWidget* parent, const char* name, QRect frame, Args&&... args) {
    auto* control = new Control(std::forward<Args>(args)..., parent);
    control->setObjectName(QLatin1String(name));
    control->setGeometry(frame);
    return control;
}

inline QLabel* makeLabel(QWidget* parent, const char* name, const QString& text, QRect frame) {
    return placeControl<QLabel>(parent, name, frame, text);
}

inline QPushButton* makeButton(QWidget* parent, const char* name, const QString& text, QRect frame) {
    return placeControl<QPushButton>(parent, name, frame, text);
}
