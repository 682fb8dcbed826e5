#pragma once

#include <QObject>
#include <chrono>

class QTimer;

namespace client {

class EventSounds;
class LobbyConnection;
class LobbyDispatcher;
class SessionState;

// Opens the lobby connection, logs in with the name and password saved in user.txt, logs out,
// and brings the session back after the server drops it: a drop reconnects every 20 s
// (`tmrReconnet`) until a connection is made, unless the user logged out. Handles "SL", "LT",
// "LF" and "OV". "OV" (this version is too old) ends the session for good, so that nothing
// reconnects until the user logs in again, and asks for an update.
//
// It reads no window: what it shows and what the lists must do are signals, emitted in the
// order the effects must happen. The logged-in flag is the session state's; the looks and
// `Timer1` follow it.
class LoginController : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kReconnectInterval{20000};

    // `credentialsPath` is user.txt in the data folder.
    LoginController(LobbyConnection &connection, LobbyDispatcher &dispatcher, SessionState &session,
                    EventSounds &sounds, QString credentialsPath,
                    std::chrono::milliseconds reconnectInterval = kReconnectInterval,
                    QObject *parent = nullptr);

    // Starts a connection attempt and closes the login window.
    void autoLogin();
    // The login window's Login button (user.txt is written already).
    void loginPressed();
    // `picLogIn`: opens the login dialog while offline, logs out while online.
    void picLogInClicked();
    void logOut();

    // The server gave a reason for refusing something; one that comes while logging in (too
    // many new accounts from this address) is why the login that follows fails.
    void noteRefusal(const QString &reason);

Q_SIGNALS:
    // A status line for the lobby chat.
    void statusLine(const QString &text);
    void roomListEmptyRequested();
    void playerListEmptyRequested();
    // Empty the player list and add its three group rows: a connection was made.
    void playerListResetRequested();
    // A connection attempt was started from the login window: it is no longer needed.
    void loginWindowDone();
    void loginDialogRequested();
    // "LT" brought the statistics id.
    void statsIdReceived(const QString &id);
    // "OV": the server refuses this version; the session is over.
    void updateRequired();

private:
    void onConnected();
    void onDropped();
    void onConnectFailed();
    void onOldVersion();
    void reconnect();
    void connectToLobby();

    LobbyConnection &m_connection;
    SessionState &m_session;
    EventSounds &m_sounds;
    QString m_credentialsPath;
    QTimer *m_tmrReconnet;
    QString m_refusal; // the reason the server gave during this login, if any
};

} // namespace client
