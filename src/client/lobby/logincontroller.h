#pragma once

#include "client/lobby/credentialsfile.h"

#include <QObject>
#include <functional>

class QTimer;

namespace client {

class EventSounds;
class LobbyConnection;
class LobbyDispatcher;
class SessionState;

// Opens the lobby connection, logs in with the saved credentials, logs out, and brings the
// session back after the server drops it: a drop reconnects every 20 s (`tmrReconnet`) until
// a connection is made, unless the user logged out. Handles "SL", "LT" and "LF".
//
// Everything it shows goes through `statusLine` into the lobby chat. The logged-in flag is
// the session state's; the looks follow it.
class LoginController : public QObject
{
    Q_OBJECT

public:
    struct Hooks
    {
        std::function<void(const QString &)> statusLine;
        std::function<void()> emptyRoomList;
        std::function<void()> emptyPlayerList;
        // Empties the player list and adds its three group rows.
        std::function<void()> resetPlayerList;
        // The name and password of the login window (creating it fills them from user.txt).
        std::function<Credentials()> credentials;
        std::function<void()> unloadLoginWindow;
        // The version text sent on connecting.
        std::function<QString()> clientVersion;
    };

    LoginController(LobbyConnection &connection, LobbyDispatcher &dispatcher, SessionState &session,
                    EventSounds &sounds, QTimer &tmrReconnet, QTimer &timer1, Hooks hooks,
                    QObject *parent = nullptr);

    // Starts a connection attempt and closes the login window.
    void autoLogin();
    // The login window's Login button (user.txt is written already).
    void loginPressed();
    // `picLogIn`: opens the login dialog while offline, logs out while online.
    void picLogInClicked();
    void logOut();

Q_SIGNALS:
    void loginDialogRequested();
    // "LT" brought the statistics id.
    void statsIdReceived(const QString &id);

private:
    void onConnected();
    void onDropped();
    void onConnectFailed();
    void reconnect();
    void connectToLobby();

    LobbyConnection &m_connection;
    SessionState &m_session;
    EventSounds &m_sounds;
    QTimer &m_tmrReconnet;
    QTimer &m_timer1;
    Hooks m_hooks;
};

} // namespace client
