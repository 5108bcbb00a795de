#pragma once

#include "app/MenuCommands.h"

#include <QMenuBar>
#include <QString>

#include <map>

class QMenu;

// The program's one menu bar, built from menuBarItems() and carried by the main window. An item
// is live as its handlers say, worked out again whenever a menu opens and whenever another window
// becomes active. The tray menu shares the items that must stay reachable with the main window
// hidden.
class Menu final : public QMenuBar {
    Q_OBJECT

public:
    // `application` holds the handlers bound on the application rather than on a window; it
    // outlives the menu, which goes with the window that carries it.
    explicit Menu(const MenuHandlers& application);

    // The item of that name: a command, a separator or a top-level menu's own item.
    QAction* item(const QString& name) const;
    QMenu* trayMenu() const { return m_trayMenu; }

public slots:
    // The tray's Pause item offers the other state.
    void setPaused(bool paused);

signals:
    // Quit was chosen; the program ends by whichever path its owner gives it.
    void quitRequested();
    // The tray's own commands.
    void captureNowRequested();
    void pauseRequested(bool pause);
    void startAtLoginRequested(bool on);

private:
    void addTrayItems();
    QAction* addTrayCommand(const QString& name, const QString& text);
    QMenu* addTopLevelMenu(const QString& name, const QString& text);
    void refreshLiveItems();
    void itemTriggered(const QString& name, MenuItemKind kind);

    const MenuHandlers& m_application;
    std::map<QString, QAction*> m_items;
    std::map<QString, QMenu*> m_menus;
    QMenu* m_trayMenu;
    bool m_paused = false;
};
