#include "app/Menu.h"

#include "app/Autostart.h"
#include "app/MenuCommands.h"
#include "base/UnhandledException.h"

#include <QApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QWindow>

namespace {
const MenuHandlers* activeWindowHandlers() {
    const auto* host = dynamic_cast<const MenuHandlerHost*>(QApplication::activeWindow());
    return host != nullptr ? &host->menuHandlers() : nullptr;
}

// The tray menu in its order: the items it shares with the bar, its own items (named Tray...),
// and lines (the empty name).
constexpr const char* kTrayItems[] = {"ToolsShowMainWindow", "ToolsHideMainWindow", "", "TrayCaptureNow",
                                      "TrayPause",           "TrayStartAtLogin",    "", "FileQuit"};

// The toolkit's own roles, which a platform with an application menu uses to move these items.
QAction::MenuRole roleOf(const QString& name) {
    if (name == "FileQuit") {
        return QAction::QuitRole;
    }
    if (name == "QVTPreferences") {
        return QAction::PreferencesRole;
    }
    if (name == "HelpAbout") {
        return QAction::AboutRole;
    }
    if (name == "FileCheckForUpdates") {
        return QAction::ApplicationSpecificRole;
    }
    return QAction::NoRole;
}
} // namespace

Menu::Menu(const MenuHandlers& application)
    : m_application(application)
    , m_trayMenu(new QMenu(this)) {
    setObjectName("Menu");
    for (const MenuEntry& entry : menuBarItems()) {
        const QString name = QString::fromLatin1(entry.name);
        if (entry.parent == nullptr) {
            addTopLevelMenu(name, entry.text);
            continue;
        }
        QMenu* menu = m_menus.at(QString::fromLatin1(entry.parent));
        QAction* action =
            entry.kind == MenuItemKind::Separator ? menu->addSeparator() : menu->addAction(entry.text);
        action->setObjectName(name);
        action->setMenuRole(roleOf(name));
        action->setShortcut(QKeySequence(QString::fromLatin1(entry.shortcut), QKeySequence::PortableText));
        // Quit works from whichever window is in front, as the toolkit's own item would.
        if (entry.kind == MenuItemKind::Quit) {
            action->setShortcutContext(Qt::ApplicationShortcut);
        }
        connect(action, &QAction::triggered, this,
                [this, name, kind = entry.kind] { itemTriggered(name, kind); });
        m_items.emplace(name, action);
    }
    addTrayItems();
    // Queued, so that the application has taken note of the new active window first.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &Menu::refreshLiveItems,
            Qt::QueuedConnection);
    refreshLiveItems();
}

void Menu::addTrayItems() {
    connect(addTrayCommand("TrayCaptureNow", "Capture Now"), &QAction::triggered, this,
            &Menu::captureNowRequested);
    connect(addTrayCommand("TrayPause", "Pause"), &QAction::triggered, this,
            [this] { emit pauseRequested(!m_paused); });
    QAction* startAtLogin = addTrayCommand("TrayStartAtLogin", "Start at Login");
    startAtLogin->setCheckable(true);
    connect(startAtLogin, &QAction::triggered, this, &Menu::startAtLoginRequested);
    for (const char* name : kTrayItems) {
        if (*name == '\0') {
            m_trayMenu->addSeparator();
        } else {
            m_trayMenu->addAction(item(QString::fromLatin1(name)));
        }
    }
    connect(m_trayMenu, &QMenu::aboutToShow, this, [this, startAtLogin] {
        refreshLiveItems();
        startAtLogin->setChecked(autostartEnabled());
    });
}

QAction* Menu::addTrayCommand(const QString& name, const QString& text) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    m_items.emplace(name, action);
    return action;
}

void Menu::setPaused(bool paused) {
    m_paused = paused;
    item("TrayPause")->setText(paused ? "Resume" : "Pause");
}

QAction* Menu::item(const QString& name) const {
    const auto found = m_items.find(name);
    return found != m_items.end() ? found->second : nullptr;
}

QMenu* Menu::addTopLevelMenu(const QString& name, const QString& text) {
    QMenu* menu = addMenu(text);
    menu->setObjectName(name);
    menu->menuAction()->setObjectName(name);
    connect(menu, &QMenu::aboutToShow, this, &Menu::refreshLiveItems);
    m_menus.emplace(name, menu);
    m_items.emplace(name, menu->menuAction());
    return menu;
}

void Menu::refreshLiveItems() {
    const MenuHandlers* active = activeWindowHandlers();
    for (const MenuEntry& entry : menuBarItems()) {
        item(QString::fromLatin1(entry.name))->setEnabled(fMenuItemLive(entry, m_application, active));
    }
}

void Menu::itemTriggered(const QString& name, MenuItemKind kind) {
    runGuarded([&] {
        if (kind == MenuItemKind::Quit) {
            emit quitRequested();
            return;
        }
        fDispatchMenuItem(name, m_application, activeWindowHandlers());
    });
}
