#pragma once

#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

// What the desktop tells of the person at the machine. Each watcher reports changes by its signal
// as the desktop announces them; a desktop that lacks a source simply never reports.

// Whether the session is locked or its screensaver runs.
class LockWatcher : public QObject {
    Q_OBJECT

public:
    virtual bool locked() const = 0;

signals:
    void lockedChanged(bool locked);
};

// Whether nobody has touched keyboard or mouse for a while.
class IdleWatcher : public QObject {
    Q_OBJECT

public:
    // How long without input counts as away; zero turns the watch off, and the watcher is then
    // not away.
    virtual void setAwayAfter(std::chrono::seconds after) = 0;
    virtual bool away() const = 0;

signals:
    void awayChanged(bool away);
};

// Which window has the keyboard focus.
class FocusWatcher : public QObject {
    Q_OBJECT

public:
    struct Window {
        QString windowClass; // both parts of WM_CLASS, the instance first, ';'-joined
        QString title;
        bool operator==(const Window&) const = default;
    };
    virtual Window focused() const = 0;

signals:
    void focusChanged();
};

// Each the back end that this session offers, or a null one. Made on the GUI thread, after the
// application object.
std::unique_ptr<LockWatcher> makeLockWatcher();
std::unique_ptr<IdleWatcher> makeIdleWatcher();
std::unique_ptr<FocusWatcher> makeFocusWatcher();
