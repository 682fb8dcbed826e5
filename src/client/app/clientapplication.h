#pragma once

#include "client/app/lobbyaddress.h"

#include <QObject>
#include <memory>

class AppWindows;
class Clock;
class EventSounds;
class Form1;
class LobbyConnection;
class LobbyDispatcher;
class LoginController;
class RoomListModel;
class SessionLooks;
class SessionState;
class SoundPlayer;
class TrayController;
class TrayService;

// The composition root of the client: creates the application-wide objects once, hands each
// part what it needs, runs the start-up sequence and, when the main window closes, the
// shut-down in its fixed order.
class ClientApplication : public QObject
{
    Q_OBJECT

public:
    // Platform services are passed in so that tests can give their own.
    struct Services
    {
        TrayService *tray = nullptr;   // owned by the caller
        SoundPlayer *sounds = nullptr; // owned by the caller
        const Clock *clock = nullptr;  // owned by the caller
    };

    ClientApplication(Services services, ServerAddresses servers, QObject *parent = nullptr);
    ~ClientApplication() override;

    // The start-up sequence. False (after telling the user) when the program cannot start.
    bool start();

    // Shows a status line in the lobby chat.
    void statusLine(const QString &text);

    SessionState &session() { return *m_session; }
    Form1 &form() { return *m_form; }
    AppWindows &windows() { return *m_windows; }
    LobbyConnection &connection() { return *m_connection; }
    LobbyDispatcher &dispatcher() { return *m_dispatcher; }
    LoginController &login() { return *m_login; }
    RoomListModel &rooms() { return *m_rooms; }

Q_SIGNALS:
    // The shut-down ran; the program ends when the event loop has destroyed the windows.
    void shutDownFinished();

private:
    void buildWindows();
    void shutDown();

    Services m_services;
    ServerAddresses m_servers;
    SessionState *m_session;
    LobbyDispatcher *m_dispatcher;
    LobbyConnection *m_connection;
    RoomListModel *m_rooms;
    std::unique_ptr<Form1> m_form;
    AppWindows *m_windows = nullptr;
    EventSounds *m_sounds = nullptr;
    SessionLooks *m_looks = nullptr;
    TrayController *m_tray = nullptr;
    LoginController *m_login = nullptr;
};
