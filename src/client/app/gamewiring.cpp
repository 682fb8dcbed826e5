#include "client/app/appparts.h"
#include "client/app/appwindows.h"
#include "client/app/appwiring.h"
#include "client/app/buddynotifier.h"
#include "client/app/form1.h"
#include "client/desktop/x11gamewindowfinder.h"
#include "client/game/findgameserver.h"
#include "client/game/fullgamewatch.h"
#include "client/game/gameinfo.h"
#include "client/game/gamelauncher.h"
#include "client/game/gameserverquery.h"
#include "client/game/gamewindows.h"
#include "client/game/ingamedetection.h"
#include "client/game/launchsites.h"
#include "client/lobby/keepalive.h"
#include "client/lobby/logincontroller.h"
#include "client/lobby/onlinetimer.h"
#include "client/login/frmlogin.h"
#include "client/platform/detachedprocessstarter.h"
#include "client/platform/inotifyfolderwatcher.h"
#include "client/platform/proctcptable.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistmodel.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "client/update/selfupdate.h"

namespace client {

void wireGame(AppParts &p)
{
    AppServices &s = p.services;
    if (!s.processes) {
        p.ownProcesses = std::make_unique<DetachedProcessStarter>(
            QString::fromLatin1(DetachedProcessStarter::kDefaultWine), s.winePrefix);
        s.processes = p.ownProcesses.get();
    }
    if (!s.gameWindowFinder) {
        p.ownWindowFinder = std::make_unique<X11GameWindowFinder>();
        s.gameWindowFinder = p.ownWindowFinder.get();
    }
    if (!s.tcpTable) {
        p.ownTcpTable = std::make_unique<ProcTcpTable>();
        s.tcpTable = p.ownTcpTable.get();
    }
    if (!s.folderWatcher)
        s.folderWatcher = new InotifyFolderWatcher(&p.owner);
    p.gameWindows = std::make_unique<GameWindows>(*s.gameWindowFinder);
    p.gameScan = std::make_unique<GameServerScan>(*p.gameWindows, *s.tcpTable, *s.dialogs);
    p.launcher = new GameLauncher(*p.options, *s.processes, *s.dialogs, &p.owner);
    p.launchSites =
        new LaunchSites(*p.launcher, *p.gameWindows, *p.session, *p.connection, *p.rooms, &p.owner);
    wireGameWatch(p);
}

void wireLogin(AppParts &p)
{
    QObject *owner = &p.owner;
    p.login = new LoginController(*p.connection, *p.dispatcher, *p.session, *p.sounds,
                                  p.credentialsPath(), LoginController::kReconnectInterval, owner);
    LoginController *login = p.login;
    QObject::connect(login, &LoginController::statusLine, p.chat, &LobbyChat::addStatusLine);
    QObject::connect(login, &LoginController::roomListEmptyRequested, p.rooms,
                     &RoomListModel::clearRows);
    QObject::connect(login, &LoginController::playerListEmptyRequested, p.players,
                     &PlayerListModel::clearList);
    PlayerListModel *players = p.players;
    QObject::connect(login, &LoginController::playerListResetRequested, players, [players] {
        players->clearList();
        players->addGroupRows();
    });
    QObject::connect(login, &LoginController::loginWindowDone, p.windows, &AppWindows::unloadLogIn);
    // Detection runs first on each tick, the keep-alive after it.
    auto *timer1 = new OnlineTimer(*p.session, OnlineTimer::kInterval, owner);
    p.detection = new InGameDetection(*timer1, *p.session, *p.connection, *p.gameScan,
                                      *p.gameWindows, *p.services.folderWatcher, *p.options, owner);
    new KeepAlive(*timer1, *p.session, *p.connection, owner);
    // The lobby steps aside while a game runs.
    QObject::connect(p.detection, &InGameDetection::gameStarted, p.form.get(), &QWidget::hide);
    QObject::connect(p.detection, &InGameDetection::gameEnded, p.form.get(), &QWidget::show);
    QObject::connect(p.form->picLogIn, &QAbstractButton::clicked, login,
                     &LoginController::picLogInClicked);
    AppWindows *windows = p.windows;
    QObject::connect(login, &LoginController::loginDialogRequested, owner,
                     [windows] { windows->frmLogIn()->showModal(); });
    QObject::connect(login, &LoginController::statsIdReceived, owner, [&p] {
        p.session->ownName = p.savedName();
        p.buddyNotifier->loggedIn();
        p.form->picViewStats->show();
    });
}

void wireSelfUpdate(AppParts &p)
{
    const UpdateFiles files{p.services.applicationFile};
    p.selfUpdate =
        new SelfUpdate(files, Elevation::forFiles(files), *p.session, *p.services.dialogs, *p.form,
                       *p.services.processes, p.services.updaterOptions, &p.owner);
    QObject::connect(p.selfUpdate, &SelfUpdate::statusLine, p.chat, &LobbyChat::addStatusLine);
    QObject::connect(p.login, &LoginController::updateRequired, p.selfUpdate,
                     &SelfUpdate::updateRequired);
}

void startGameQuery(AppParts &p)
{
    p.gameQuery = new GameServerQuery(*p.rooms, *p.gameInfo, *p.services.ticks, &p.owner);
    QObject::connect(p.roomHandlers, &RoomListHandlers::gameRowAdded, p.gameQuery,
                     &GameServerQuery::pingGameServer);
    QObject::connect(p.gameQuery, &GameServerQuery::gameAnswered, p.gameWatch,
                     &FullGameWatch::gameAnswered);
    QObject::connect(p.form->picRefreshPings, &QAbstractButton::clicked, p.gameQuery,
                     &GameServerQuery::refreshPings);
}

} // namespace client
