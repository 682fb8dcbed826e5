#pragma once

#include <QObject>
#include <functional>

namespace client {

class Form1;
class LobbyConnection;
class SessionState;
class TrayService;

// The notification-area icon and hiding to it. A double-click on the icon shows the main
// window at its normal size (and the room window when it was hidden with it) and, while
// connected and not in a game, tells the lobby the player is back ("3"). Hiding tells the
// lobby the player is away ("1") under the same condition, then hides the window; without a
// notification area the window is minimised instead, so it can always be found again.
class TrayController : public QObject
{
    Q_OBJECT

public:
    struct Hooks
    {
        // Sends the player's presence status ("1" away, "3" in the lobby).
        std::function<void(const QString &status)> sendPresence;
        // Shows the room window again when it was hidden with the main window.
        std::function<void()> restoreRoomWindow;
    };

    TrayController(TrayService &tray, Form1 &form, SessionState &session,
                   LobbyConnection &connection, Hooks hooks, QObject *parent = nullptr);

    // Adds the icon with the window's icon and the tip "Logged out".
    void addIcon();
    void removeIcon();
    void hideToTray();
    void restoreFromTray();

private:
    TrayService &m_tray;
    Form1 &m_form;
    SessionState &m_session;
    LobbyConnection &m_connection;
    Hooks m_hooks;
};

} // namespace client
