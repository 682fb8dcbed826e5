#pragma once

#include "client/app/activeservers.h"
#include "client/app/appservices.h"

#include <QObject>
#include <memory>

namespace client {

class AppWindows;
class AutoStart;
class AvatarLoader;
class BasRegistry;
class BuddyNotifier;
class ConversationArchive;
class DesktopNotes;
class EventSounds;
class FullGameWatch;
class Form1;
class GameInfo;
class GameLauncher;
class GameRowMenu;
class GameServerQuery;
class GameServerScan;
class GameWindows;
class IgnoreList;
class InGameDetection;
class LaunchSites;
class LobbyChat;
class LobbyConnection;
class LobbyDispatcher;
class LoginController;
class Options;
class OptionsLoader;
class OptionsStore;
class Pager;
class PlayerListHandlers;
class PlayerListModel;
class RoomListHandlers;
class RoomListModel;
class RoomSession;
class RoomState;
class SelfUpdate;
class SessionLooks;
class SessionState;
class StatsReset;
class TrayController;

// Everything the composition root builds, as the wiring functions (appwiring.h) hand it on
// to one another. The constructor creates the application-wide objects that every feature
// shares; each wiring function adds its feature's objects, as children of `owner`, and
// connects them to those built before it. Missing platform services are replaced by the
// Linux ones, owned here.
struct AppParts
{
    AppParts(AppServices services, ServerAddresses servers, QObject &owner);
    ~AppParts();
    AppParts(const AppParts &) = delete;
    AppParts &operator=(const AppParts &) = delete;

    // user.txt in the data folder, and the name saved there.
    QString credentialsPath() const;
    QString savedName() const;

    QObject &owner;
    AppServices services;
    QString dataFolder;
    SessionState *session;
    ActiveServers servers;
    LobbyDispatcher *dispatcher;
    LobbyConnection *connection;
    RoomListModel *rooms;
    PlayerListModel *players;
    IgnoreList *ignored;
    Options *options;
    std::unique_ptr<BasRegistry> basRegistry;
    std::unique_ptr<OptionsStore> optionsStore;
    std::unique_ptr<OptionsLoader> optionsLoader;
    std::unique_ptr<Form1> form;
    GameInfo *gameInfo;
    AutoStart *autoStart;
    EventSounds *sounds;
    SessionLooks *looks;

    AppWindows *windows = nullptr;
    TrayController *tray = nullptr;
    LoginController *login = nullptr;
    LobbyChat *chat = nullptr;
    PlayerListHandlers *playerHandlers = nullptr;
    RoomListHandlers *roomHandlers = nullptr;
    RoomState *roomState = nullptr;
    RoomSession *roomSession = nullptr;
    GameServerQuery *gameQuery = nullptr;
    SelfUpdate *selfUpdate = nullptr;
    AvatarLoader *avatars = nullptr;
    ConversationArchive *conversations = nullptr;
    Pager *pager = nullptr;
    DesktopNotes *notes = nullptr;
    BuddyNotifier *buddyNotifier = nullptr;
    StatsReset *statsReset = nullptr;
    std::unique_ptr<ProcessStarter> ownProcesses;
    std::unique_ptr<GameWindowFinder> ownWindowFinder;
    std::unique_ptr<TcpTable> ownTcpTable;
    std::unique_ptr<GameWindows> gameWindows;
    std::unique_ptr<GameServerScan> gameScan;
    GameLauncher *launcher = nullptr;
    LaunchSites *launchSites = nullptr;
    InGameDetection *detection = nullptr;
    FullGameWatch *gameWatch = nullptr;
    GameRowMenu *gameRowMenu = nullptr;
    std::unique_ptr<KeyState> ownKeyState;
};

} // namespace client
