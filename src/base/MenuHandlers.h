#pragma once

#include <QString>

#include <functional>
#include <map>
#include <optional>

// Commands bound by item name on the application or on one window. A handler's result says
// whether it took the command; false lets the application's handler have a turn.
class MenuHandlers {
public:
    using Handler = std::function<bool()>;

    void AddMenuHandler(const QString& name, Handler handler);
    bool has(const QString& name) const;
    // Empty when nothing is bound; otherwise the handler's own result.
    std::optional<bool> call(const QString& name) const;

private:
    std::map<QString, Handler> m_handlers;
};

// A window that binds menu commands while it is the active window.
class MenuHandlerHost {
public:
    virtual const MenuHandlers& menuHandlers() const = 0;

protected:
    ~MenuHandlerHost() = default;
};
