#include "base/MenuHandlers.h"

#include <utility>

void MenuHandlers::AddMenuHandler(const QString& name, Handler handler) {
    m_handlers[name] = std::move(handler);
}

bool MenuHandlers::has(const QString& name) const {
    return m_handlers.contains(name);
}

std::optional<bool> MenuHandlers::call(const QString& name) const {
    const auto found = m_handlers.find(name);
    if (found == m_handlers.end()) {
        return std::nullopt;
    }
    return found->second();
}
