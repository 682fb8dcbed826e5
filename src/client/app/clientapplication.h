#pragma once

#include "client/app/appservices.h"
#include "client/settings/lobbyaddress.h"

#include <QObject>
#include <memory>

namespace client {

class AppWindows;
class Form1;
class GameLauncher;
class GameServerQuery;
class InGameDetection;
class LaunchSites;
class LobbyChat;
class LobbyConnection;
class LobbyDispatcher;
class LoginController;
class Options;
class Pager;
class PlayerListModel;
class RoomListModel;
class RoomSession;
class RoomState;
class SelfUpdate;
class SessionState;
class StartupSequence;
struct AppParts;

// The composition root of the client: creates the application-wide objects once, has each
// feature wired to them (appwiring.h), runs the start-up sequence and, when the main window
// closes, the shut-down in its fixed order.
class ClientApplication : public QObject
{
    Q_OBJECT

public:
    using Services = AppServices;

    ClientApplication(Services services, ServerAddresses servers, QObject *parent = nullptr);
    ~ClientApplication() override;

    // The start-up sequence. False (after telling the user) when the program cannot start.
    bool start();

    SessionState &session();
    Form1 &form();
    AppWindows &windows();
    LobbyConnection &connection();
    LobbyDispatcher &dispatcher();
    LoginController &login();
    LobbyChat &chat();
    Options &options();
    RoomListModel &rooms();
    PlayerListModel &players();
    GameLauncher &launcher();
    LaunchSites &launchSites();
    InGameDetection &detection();
    FolderWatcher &folderWatcher();
    RoomState &room();
    RoomSession &roomSession();
    Pager &pager();
    // Exists from the start-up's game query step on.
    GameServerQuery *gameQuery();
    SelfUpdate &selfUpdate();

Q_SIGNALS:
    // The shut-down ran, or an update runs and the program ends at once; the program's event
    // loop ends on it.
    void shutDownFinished();

private:
    void shutDown();
    // The new version runs: the program ends at once, without its shut-down.
    void endForUpdate();

    std::unique_ptr<AppParts> m_parts;
    StartupSequence *m_startup;
};

} // namespace client
