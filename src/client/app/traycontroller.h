#pragma once

#include <QObject>

namespace client {

class Form1;
class LobbyChat;
class LobbyConnection;
class SessionState;
class TrayService;

// The notification-area icon and hiding to it. Hiding tells the lobby the player is away
// ("1") while connected and not in a game, then hides the main window. A click on the icon
// (or "Show" in its menu) shows the window at its normal size, raises `restored` (the room
// window comes back with it) and, under the same condition, tells the lobby the player is back
// ("3"); "Quit" in its menu closes the main window, which runs the shut-down.
//
// Without a notification area the window is minimised instead, so it can always be found
// again; the user is told so once in the lobby chat, and restoring that window from the
// taskbar counts as coming back from the tray.
class TrayController : public QObject
{
    Q_OBJECT

public:
    TrayController(TrayService &tray, Form1 &form, SessionState &session,
                   LobbyConnection &connection, LobbyChat &chat, QObject *parent = nullptr);

    // Adds the icon with the window's icon and the tip "Logged out".
    void addIcon();
    void removeIcon();
    void hideToTray();
    void restoreFromTray();

Q_SIGNALS:
    // The main window came back from the tray.
    void restored();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void cameBack();
    bool presenceWanted() const;

    TrayService &m_tray;
    Form1 &m_form;
    SessionState &m_session;
    LobbyConnection &m_connection;
    LobbyChat &m_chat;
    bool m_minimisedInstead = false; // hidden to the taskbar for want of a tray
    bool m_toldNoTray = false;
};

} // namespace client
