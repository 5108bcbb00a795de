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
template <typename T> struct Word {
    const char* word;
    T value;
};

// The program's words for its effects and sides, which calls by name go through.
constexpr std::array kEffectWords{Word<TransitionEffect>{"WarpFade", TransitionEffect::WarpFade},
                                  Word<TransitionEffect>{"Flip", TransitionEffect::Flip},
                                  Word<TransitionEffect>{"Cube", TransitionEffect::Cube}};
constexpr std::array kSideWords{
    Word<TransitionSide>{"Up", TransitionSide::Up}, Word<TransitionSide>{"Down", TransitionSide::Down},
    Word<TransitionSide>{"Left", TransitionSide::Left}, Word<TransitionSide>{"Right", TransitionSide::Right}};

template <typename T, std::size_t N>
std::optional<T> named(const std::array<Word<T>, N>& table, const QString& name) {
    for (const Word<T>& entry : table) {
        if (name.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0) {
            return entry.value;
        }
    }
    return std::nullopt;
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

// Refused or nothing to play: the caller goes on at once.
void goOnWithout(bool refused, int warnOnFailure, const std::function<void()>& then) {
    if (refused && warnOnFailure == 1) {
        mCodeBaseStd::sDisplayWarningMessage("CGS Transition Failed ...");
    }
    if (then) {
        then();
    }
}
} // namespace

void fxWindowTransition(QWidget* window, TransitionEffect effect, TransitionSide side, int duration,
                        int warnOnFailure, std::function<void()> then) {
    QWidget* topLevel = window != nullptr ? window->window() : nullptr;
    if (canPlay(topLevel) && duration > 0) {
        const auto durationMs = std::min<std::int64_t>(std::int64_t{duration} * 1000, INT_MAX);
        play(topLevel, effect, side, static_cast<int>(durationMs), std::move(then));
        return;
    }
    goOnWithout(!canPlay(topLevel), warnOnFailure, then);
}

void fxWindowTransition(QWidget* window, const QString& style, const QString& direction, int duration,
                        int warnOnFailure, std::function<void()> then) {
    const TransitionSide side = named(kSideWords, direction).value_or(TransitionSide::Down);
    if (const std::optional<TransitionEffect> effect = named(kEffectWords, style)) {
        fxWindowTransition(window, *effect, side, duration, warnOnFailure, std::move(then));
        return;
    }
    goOnWithout(true, warnOnFailure, then);
}
