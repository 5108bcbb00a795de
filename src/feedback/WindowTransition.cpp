#include "feedback/WindowTransition.h"

#include "base/Messages.h"
#include "base/UnhandledException.h"
#include "feedback/TransitionCanvas.h"

#include <QCoreApplication>
#include <QVariantAnimation>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <array>
#include <climits>
#include <optional>
#include <utility>

namespace {
struct NamedCode {
    const char* name;
    int code;
};

// A transition request's numbers; "Up" is 8 while the other sides run 0 to 2, and that is no slip.
constexpr std::array kStyleCodes{NamedCode{"WarpFade", 5}, NamedCode{"Flip", 9}, NamedCode{"Cube", 7}};
constexpr std::array kDirectionCodes{NamedCode{"Up", 8}, NamedCode{"Down", 0}, NamedCode{"Left", 1},
                                     NamedCode{"Right", 2}};

template <std::size_t N>
std::optional<int> lookUp(const std::array<NamedCode, N>& table, const QString& name) {
    for (const NamedCode& entry : table) {
        if (name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0) {
            return entry.code;
        }
    }
    return std::nullopt;
}

// A type number with no effect behind it is refused.
std::optional<TransitionEffect> effectFor(int type) {
    switch (type) {
    case 5:
        return TransitionEffect::WarpFade;
    case 9:
        return TransitionEffect::Flip;
    case 7:
        return TransitionEffect::Cube;
    default:
        return std::nullopt;
    }
}

TransitionSide sideFor(int option) {
    switch (option) {
    case 8:
        return TransitionSide::Up;
    case 1:
        return TransitionSide::Left;
    case 2:
        return TransitionSide::Right;
    default:
        return TransitionSide::Down;
    }
}

// Only a window that is on the screen, with a window of the window system behind it, can play.
bool canPlay(const QWidget* window) {
    return window != nullptr && window->isVisible() && !window->isMinimized() &&
           window->windowHandle() != nullptr && window->windowHandle()->handle() != nullptr;
}

// The canvas goes at the end of the effect, or with the window if that goes first; the
// continuation follows at the next turn of the event loop, with nobody's frame left to guard it.
void play(QWidget* window, TransitionEffect effect, TransitionSide side, int durationMs,
          std::function<void()> then) {
    auto* canvas = new TransitionCanvas(window, effect, side);
    auto* animation = new QVariantAnimation(canvas);
    animation->setStartValue(0.0);
    animation->setEndValue(1.0);
    animation->setDuration(durationMs);
    QObject::connect(animation, &QVariantAnimation::valueChanged, canvas,
                     [canvas](const QVariant& value) { canvas->setProgress(value.toDouble()); });
    QObject::connect(animation, &QAbstractAnimation::finished, canvas, &QObject::deleteLater);
    if (then) {
        QObject::connect(
            canvas, &QObject::destroyed, QCoreApplication::instance(),
            [then = std::move(then)] { runGuarded(then); }, Qt::QueuedConnection);
    }
    animation->start();
}
} // namespace

TransitionRequest fTransitionRequest(const QString& style, const QString& direction) {
    TransitionRequest request;
    request.type = lookUp(kStyleCodes, style).value_or(request.type);
    request.option = lookUp(kDirectionCodes, direction).value_or(request.option);
    return request;
}

void fxWindowTransition(QWidget* window, const QString& style, const QString& direction, int duration,
                        int warnOnFailure, std::function<void()> then) {
    QWidget* topLevel = window != nullptr ? window->window() : nullptr;
    const TransitionRequest request = fTransitionRequest(style, direction);
    const std::optional<TransitionEffect> effect = effectFor(request.type);
    if (!effect || !canPlay(topLevel)) {
        if (warnOnFailure == 1) {
            mCodeBaseStd::sDisplayWarningMessage("CGS Transition Failed ...");
        }
    } else if (duration > 0) {
        const auto durationMs = std::min<std::int64_t>(std::int64_t{duration} * 1000, INT_MAX);
        play(topLevel, *effect, sideFor(request.option), static_cast<int>(durationMs), std::move(then));
        return;
    }
    if (then) {
        then();
    }
}
