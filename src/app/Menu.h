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
    // Made on the first call; it goes with the window that carries it.
    static Menu* instance();

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
    Menu();
    QMenu* addTopLevelMenu(const QString& name, const QString& text);
    void refreshLiveItems();
    void itemTriggered(const QString& name, MenuItemKind kind);

    std::map<QString, QAction*> m_items;
    std::map<QString, QMenu*> m_menus;
    QMenu* m_trayMenu;
    bool m_paused = false;
};
