#pragma once

#include "client/settings/lobbyaddress.h"

#include <QObject>
#include <QStringList>
#include <memory>

class QTimer;

namespace client {

class AppWindows;
class AutoStart;
class AvatarLoader;
class BuddyNotifier;
class BasRegistry;
class Clock;
class Dialogs;
class EventSounds;
class FolderWatcher;
class Form1;
class GameLauncher;
class GameServerScan;
class GameWindowFinder;
class GameWindows;
class InGameDetection;
class KeyState;
class LaunchSites;
class GameInfo;
class GameServerQuery;
class LobbyChat;
class LobbyConnection;
class LobbyDispatcher;
class LoginController;
class Options;
class OptionsStore;
class Pager;
class PlayerListHandlers;
class PlayerListModel;
class ProcessStarter;
class Registry;
class RoomListHandlers;
class RoomListModel;
class RoomSession;
class RoomState;
class SelfUpdate;
class SessionLooks;
class SessionState;
class SoundPlayer;
class TcpTable;
class TickCount;
class TrayController;
class TrayService;

// The composition root of the client: creates the application-wide objects once, hands each
// part what it needs, runs the start-up sequence and, when the main window closes, the
// shut-down in its fixed order.
class ClientApplication : public QObject
{
    Q_OBJECT

public:
    static constexpr auto kOfferOptionsText =
        "No game folder is set yet. Open the options now to choose one?";

    // The operating-system services, owned by the caller; tests give their own.
    struct Services
    {
        TrayService *tray = nullptr;
        SoundPlayer *sounds = nullptr;
        const Clock *clock = nullptr;
        const TickCount *ticks = nullptr;
        Registry *registry = nullptr;
        Dialogs *dialogs = nullptr;
        // The Wine prefix the games are installed in.
        QString winePrefix;
        // The data folder (user.txt, settingRS.txt); empty when the platform has none.
        QString dataFolder;
        // The installed program, which an update replaces; empty: no self-update.
        QString applicationFile;
        // Started with "update": install the published version at start-up.
        bool installUpdate = false;
        // Options the new version is started with after an update.
        QStringList updaterOptions;
        // The game's process start, window search, connection table and folder watch; the
        // Linux ones when not given.
        ProcessStarter *processes = nullptr;
        GameWindowFinder *gameWindowFinder = nullptr;
        TcpTable *tcpTable = nullptr;
        FolderWatcher *folderWatcher = nullptr;
        // The key state the stats-reset hot key is read from; the X11 one when not given.
        KeyState *keyState = nullptr;
    };

    ClientApplication(Services services, ServerAddresses servers, QObject *parent = nullptr);
    ~ClientApplication() override;

    // The start-up sequence. False (after telling the user) when the program cannot start.
    bool start();

    SessionState &session() { return *m_session; }
    Form1 &form() { return *m_form; }
    AppWindows &windows() { return *m_windows; }
    LobbyConnection &connection() { return *m_connection; }
    LobbyDispatcher &dispatcher() { return *m_dispatcher; }
    LoginController &login() { return *m_login; }
    LobbyChat &chat() { return *m_chat; }
    Options &options() { return *m_options; }
    RoomListModel &rooms() { return *m_rooms; }
    PlayerListModel &players() { return *m_players; }
    GameLauncher &launcher() { return *m_launcher; }
    LaunchSites &launchSites() { return *m_launchSites; }
    InGameDetection &detection() { return *m_detection; }
    FolderWatcher &folderWatcher() { return *m_services.folderWatcher; }
    RoomState &room() { return *m_roomState; }
    RoomSession &roomSession() { return *m_roomSession; }
    Pager &pager() { return *m_pager; }
    // Exists from start-up step 5 on.
    GameServerQuery *gameQuery() { return m_gameQuery; }
    SelfUpdate &selfUpdate() { return *m_selfUpdate; }

Q_SIGNALS:
    // The shut-down ran, or an update runs and the program ends at once; the program's event
    // loop ends on it.
    void shutDownFinished();

private:
    void buildLobby();
    void buildWindows();
    void buildTray();
    void buildLogin();
    void buildSelfUpdate();
    void buildGame();
    void buildRooms();
    void buildPager();
    void buildStats();
    void openStatsPage(const QString &id);
    // user.txt in the data folder.
    QString credentialsPath() const;
    void startGameQuery();
    void loadOptions();
    void showOptions();
    // The lobby address typed in the login window: used from now on and kept.
    void useLobby(const HostPort &lobby);
    // Offers the options when no game folder is known, and opens the login window when no
    // login is saved.
    void offerFirstSteps();
    void shutDown();

    Services m_services;
    ServerAddresses m_servers;
    QString m_dataFolder;
    SessionState *m_session;
    LobbyDispatcher *m_dispatcher;
    LobbyConnection *m_connection;
    RoomListModel *m_rooms;
    PlayerListModel *m_players;
    Options *m_options;
    std::unique_ptr<BasRegistry> m_basRegistry;
    std::unique_ptr<OptionsStore> m_optionsStore;
    std::unique_ptr<Form1> m_form;
    GameInfo *m_gameInfo;
    AutoStart *m_autoStart = nullptr;
    AppWindows *m_windows = nullptr;
    EventSounds *m_sounds = nullptr;
    SessionLooks *m_looks = nullptr;
    TrayController *m_tray = nullptr;
    LoginController *m_login = nullptr;
    LobbyChat *m_chat = nullptr;
    PlayerListHandlers *m_playerHandlers = nullptr;
    RoomListHandlers *m_roomHandlers = nullptr;
    RoomState *m_roomState = nullptr;
    RoomSession *m_roomSession = nullptr;
    GameServerQuery *m_gameQuery = nullptr;
    SelfUpdate *m_selfUpdate = nullptr;
    AvatarLoader *m_avatars = nullptr;
    Pager *m_pager = nullptr;
    BuddyNotifier *m_buddyNotifier = nullptr;
    QTimer *m_tmrStatsReset = nullptr;
    std::unique_ptr<ProcessStarter> m_ownProcesses;
    std::unique_ptr<GameWindowFinder> m_ownWindowFinder;
    std::unique_ptr<TcpTable> m_ownTcpTable;
    std::unique_ptr<GameWindows> m_gameWindows;
    std::unique_ptr<GameServerScan> m_gameScan;
    GameLauncher *m_launcher = nullptr;
    LaunchSites *m_launchSites = nullptr;
    InGameDetection *m_detection = nullptr;
    std::unique_ptr<KeyState> m_ownKeyState;
    bool m_optionsLoaded = false;
    bool m_gameFoldersMissing = false;
};

} // namespace client
