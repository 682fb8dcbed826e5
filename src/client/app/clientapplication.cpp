#include "client/app/clientapplication.h"

#include "client/app/appparts.h"
#include "client/app/appwindows.h"
#include "client/app/appwiring.h"
#include "client/app/form1.h"
#include "client/app/startupsequence.h"
#include "client/app/traycontroller.h"
#include "client/lobby/lobbyconnection.h"
#include "client/session/sessionstate.h"
#include "client/update/selfupdate.h"

namespace client {

ClientApplication::ClientApplication(Services services, ServerAddresses servers, QObject *parent)
    : QObject(parent),
      m_parts(std::make_unique<AppParts>(std::move(services), std::move(servers), *this))
{
    // Each feature builds on those wired before it.
    AppParts &p = *m_parts;
    wireLobby(p);
    wirePager(p);
    wireWindows(p);
    wireTray(p);
    wireGame(p);
    wireLogin(p);
    wireSelfUpdate(p);
    wireRooms(p);
    wireStats(p);
    m_startup = new StartupSequence(p, this);
    connect(m_startup, &StartupSequence::updateInstalled, this,
            &ClientApplication::shutDownFinished);
    connect(p.selfUpdate, &SelfUpdate::endRequested, this, &ClientApplication::endForUpdate);
    connect(p.form.get(), &Form1::unloading, this, &ClientApplication::shutDown);
}

ClientApplication::~ClientApplication()
{
    // The windows watch the parts, so they go first; the parts drive the main window's
    // controls, so they go before the window does.
    delete m_parts->windows;
    const QObjectList parts = children();
    qDeleteAll(parts);
}

bool ClientApplication::start()
{
    return m_startup->run();
}

void ClientApplication::endForUpdate()
{
    m_parts->tray->removeIcon();
    Q_EMIT shutDownFinished();
}

void ClientApplication::shutDown()
{
    m_parts->session->exitPager = true;
    m_parts->windows->unloadAll();
    m_parts->tray->removeIcon();
    m_parts->connection->close();
    Q_EMIT shutDownFinished();
}

SessionState &ClientApplication::session()
{
    return *m_parts->session;
}
Form1 &ClientApplication::form()
{
    return *m_parts->form;
}
AppWindows &ClientApplication::windows()
{
    return *m_parts->windows;
}
LobbyConnection &ClientApplication::connection()
{
    return *m_parts->connection;
}
LobbyDispatcher &ClientApplication::dispatcher()
{
    return *m_parts->dispatcher;
}
LoginController &ClientApplication::login()
{
    return *m_parts->login;
}
LobbyChat &ClientApplication::chat()
{
    return *m_parts->chat;
}
Options &ClientApplication::options()
{
    return *m_parts->options;
}
RoomListModel &ClientApplication::rooms()
{
    return *m_parts->rooms;
}
PlayerListModel &ClientApplication::players()
{
    return *m_parts->players;
}
GameLauncher &ClientApplication::launcher()
{
    return *m_parts->launcher;
}
LaunchSites &ClientApplication::launchSites()
{
    return *m_parts->launchSites;
}
InGameDetection &ClientApplication::detection()
{
    return *m_parts->detection;
}
FolderWatcher &ClientApplication::folderWatcher()
{
    return *m_parts->services.folderWatcher;
}
RoomState &ClientApplication::room()
{
    return *m_parts->roomState;
}
RoomSession &ClientApplication::roomSession()
{
    return *m_parts->roomSession;
}
Pager &ClientApplication::pager()
{
    return *m_parts->pager;
}
GameServerQuery *ClientApplication::gameQuery()
{
    return m_parts->gameQuery;
}
SelfUpdate &ClientApplication::selfUpdate()
{
    return *m_parts->selfUpdate;
}

} // namespace client
