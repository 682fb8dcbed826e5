#include "client/app/clientapplication.h"

#include "client/app/appwindows.h"
#include "client/app/buddynotifier.h"
#include "client/app/form1.h"
#include "client/app/sessionlooks.h"
#include "client/app/traycontroller.h"
#include "client/app/windowplacer.h"
#include "client/desktop/trayservice.h"
#include "client/desktop/x11gamewindowfinder.h"
#include "client/desktop/x11keystate.h"
#include "client/game/findgameserver.h"
#include "client/game/frmgameinfo.h"
#include "client/game/gameinfo.h"
#include "client/game/gamelauncher.h"
#include "client/game/gameserverquery.h"
#include "client/game/gamewindows.h"
#include "client/game/ingamedetection.h"
#include "client/game/launchsites.h"
#include "client/lobby/credentialsfile.h"
#include "client/lobby/keepalive.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/lobby/logincontroller.h"
#include "client/lobby/onlinetimer.h"
#include "client/login/frmlogin.h"
#include "client/options/frmoptions.h"
#include "client/pager/avatarloader.h"
#include "client/pager/frmpager.h"
#include "client/pager/pager.h"
#include "client/platform/clock.h"
#include "client/platform/datafolder.h"
#include "client/platform/detachedprocessstarter.h"
#include "client/platform/dialogs.h"
#include "client/platform/eventsounds.h"
#include "client/platform/inotifyfolderwatcher.h"
#include "client/platform/privatefiles.h"
#include "client/platform/proctcptable.h"
#include "client/presence/chatarchive.h"
#include "client/presence/frmmenu.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistclicks.h"
#include "client/presence/playerlistfilter.h"
#include "client/presence/playerlisthandlers.h"
#include "client/presence/playerlistmodel.h"
#include "client/presence/playerlistview.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomlistview.h"
#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "client/settings/autostart.h"
#include "client/settings/basregistry.h"
#include "client/settings/defaultgamefolders.h"
#include "client/settings/options.h"
#include "client/settings/optionsstore.h"
#include "client/stats/resultlogharvester.h"
#include "client/stats/resultlogwatch.h"
#include "client/stats/statspage.h"
#include "client/stats/statsreset.h"
#include "client/ui/borderlesswindow.h"
#include "client/ui/picturebutton.h"
#include "client/update/selfupdate.h"

#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeView>
#include <QUrl>

namespace client {

ClientApplication::ClientApplication(Services services, ServerAddresses servers, QObject *parent)
    : QObject(parent), m_services(std::move(services)), m_servers(std::move(servers)),
      m_dataFolder(m_services.dataFolder), m_session(new SessionState(this)),
      m_dispatcher(new LobbyDispatcher(this)),
      m_connection(new LobbyConnection(*m_dispatcher, LobbyConnection::kConnectTimeout, this)),
      m_rooms(new RoomListModel(this)), m_players(new PlayerListModel(this)),
      m_options(new Options(this)),
      m_basRegistry(std::make_unique<BasRegistry>(*m_services.registry)),
      m_optionsStore(std::make_unique<OptionsStore>(
          *m_options, m_dataFolder, DefaultGameFolders::forWinePrefix(m_services.winePrefix),
          *m_services.dialogs)),
      m_form(std::make_unique<Form1>()), m_gameInfo(new GameInfo(this))
{
    // Built before the settings are loaded, so that loading a ticked Autostart writes the Run
    // value.
    m_autoStart = new AutoStart(*m_options, *m_basRegistry, AutoStart::currentProgram(), this);
    m_sounds = new EventSounds(*m_services.sounds, this);
    m_sounds->setSoundsOn(m_options->sound());
    m_sounds->setGameFolder(m_options->pathRS());
    connect(m_options, &Options::soundChanged, m_sounds, &EventSounds::setSoundsOn);
    connect(m_options, &Options::pathRSChanged, m_sounds, &EventSounds::setGameFolder);
    m_looks = new SessionLooks(*m_form, *m_services.tray, *m_session, this);

    buildLobby();
    buildPager();
    buildWindows();
    buildTray();
    buildGame();
    buildLogin();
    buildSelfUpdate();
    buildRooms();

    // Polls the statistics-reset hot key while the reset option is on.
    m_tmrStatsReset = new QTimer(this);
    m_tmrStatsReset->setObjectName(QStringLiteral("tmrStatsReset"));
    m_tmrStatsReset->setInterval(500);
    connect(m_options, &Options::resetChanged, m_tmrStatsReset,
            [this](bool on) { on ? m_tmrStatsReset->start() : m_tmrStatsReset->stop(); });
    buildStats();
    connect(m_form->picOptions, &QAbstractButton::clicked, this, &ClientApplication::showOptions);
    connect(m_form.get(), &Form1::unloading, this, &ClientApplication::shutDown);
}

ClientApplication::~ClientApplication()
{
    // The windows watch the parts, so they go first; the parts drive the main window's
    // controls, so they go before the window does.
    delete m_windows;
    const QObjectList parts = children();
    qDeleteAll(parts);
}

void ClientApplication::buildLobby()
{
    m_chat = new LobbyChat(m_form->txtChat, m_form->txtChatSend, m_form->Picture3, *m_connection,
                           *m_session, *m_services.clock, this);
    m_chat->registerHandler(*m_dispatcher);
    if (!m_dataFolder.isEmpty())
        (new ChatArchive(QDir(m_dataFolder).filePath(QStringLiteral("chat")), *m_services.clock,
                         this))
            ->attach(m_chat->log());

    configurePlayerListView(*m_form->ListView2, *new PlayerListFilter(*m_players, this),
                            m_form->txtFindPlayer);
    m_playerHandlers = new PlayerListHandlers(*m_players, *m_dispatcher, this);

    setUpRoomListView(*m_form->ListView1, *m_rooms);
    m_roomHandlers = new RoomListHandlers(
        *m_rooms, *m_dispatcher,
        [this](const QString &address) { return m_players->hasGameAddress(address); }, this);
    connect(m_playerHandlers, &PlayerListHandlers::addGameRowRequested, m_roomHandlers,
            &RoomListHandlers::addGameRow);
    connect(m_playerHandlers, &PlayerListHandlers::removeGameRowRequested, m_roomHandlers,
            &RoomListHandlers::removeGameRow);
}

void ClientApplication::buildWindows()
{
    AppWindows::Factories factories;
    factories.logIn = [this] {
        auto *window = new FrmLogIn(credentialsPath(), m_servers.lobby);
        connect(window, &FrmLogIn::loginRequested, this, [this](const HostPort &lobby) {
            useLobby(lobby);
            m_login->loginPressed();
        });
        return window;
    };
    factories.options = [this] {
        loadOptions();
        return new FrmOptions(*m_options, *m_optionsStore, *m_services.dialogs);
    };
    factories.room = [this] {
        auto *window = new FrmRoom(*m_roomState, *m_roomSession);
        connect(window, &FrmRoom::privateMessageRequested, this, [this](const QString &name) {
            m_pager->SendMessagee(name);
            m_windows->frmPager()->show();
        });
        return window;
    };
    factories.menu = [this] {
        auto *menu = new FrmMenu(*m_players, *m_form->ListView2, *m_connection, *m_session,
                                 *m_services.dialogs);
        connect(menu, &FrmMenu::privateMessageRequested, this, [this](const QString &name) {
            m_pager->SendMessagee(name);
            m_windows->frmPager()->show();
        });
        connect(menu, &FrmMenu::statsPageRequested, this, &ClientApplication::openStatsPage);
        connect(menu, &FrmMenu::gameInfoRequested, this, [this](const QString &address) {
            if (m_gameQuery)
                m_gameQuery->queryGameInfo(address);
        });
        connect(menu, &FrmMenu::joinGameRequested, this,
                [this](const QString &address) { m_launcher->launchGameClient(address); });
        return menu;
    };
    factories.pager = [this] { return new FrmPager(*m_pager, *m_session); };
    factories.makeRoom = [this] {
        auto *window = new FrmMakeRoom;
        connect(window, &FrmMakeRoom::makeRoomRequested, this, [this](const QString &name) {
            m_roomSession->createRoom(name);
            m_windows->unloadMakeRoom();
        });
        return window;
    };
    factories.gameInfo = [this] { return new FrmGameInfo(*m_gameInfo); };
    // Every window but the player menu (which opens at the mouse) opens over the main window.
    auto *placer = new WindowPlacer(*m_form, this);
    factories.logIn = placer->placed(std::move(factories.logIn));
    factories.options = placer->placed(std::move(factories.options));
    factories.room = placer->placed(std::move(factories.room));
    factories.pager = placer->placed(std::move(factories.pager));
    factories.makeRoom = placer->placed(std::move(factories.makeRoom));
    factories.gameInfo = placer->placed(std::move(factories.gameInfo));
    m_windows = new AppWindows(std::move(factories), this);

    connect(m_gameInfo, &GameInfo::showRequested, this, [this] {
        FrmGameInfo *window = m_windows->frmGameInfo();
        window->show();
        window->raise();
    });
}

void ClientApplication::buildPager()
{
    m_avatars = new AvatarLoader(m_servers.avatars.isEmpty()
                                     ? QUrl(QString::fromLatin1(AvatarLoader::kDefaultServer))
                                     : QUrl(m_servers.avatars),
                                 this);
    m_pager = new Pager(*m_players, *m_connection, *m_session,
                        SendRateGuard(*m_session, *m_services.clock), *m_sounds, *m_avatars, this);
    m_pager->registerHandler(*m_dispatcher);
    connect(m_playerHandlers, &PlayerListHandlers::playerLeft, m_pager, &Pager::playerLeft);
    connect(m_pager, &Pager::statsPageRequested, this, &ClientApplication::openStatsPage);
    // A click on the player list: the menu decides what it means.
    connect(new PlayerListClicks(*m_form->ListView2, this), &PlayerListClicks::released, this,
            [this](Qt::MouseButton button, QPoint globalPos) {
                m_windows->frmMenu()->listClicked(button, globalPos);
            });

    m_buddyNotifier = new BuddyNotifier(*m_services.tray, *m_options, *m_services.clock, this);
    connect(m_playerHandlers, &PlayerListHandlers::buddyAnnounced, m_buddyNotifier,
            &BuddyNotifier::buddyAnnounced);
    connect(m_playerHandlers, &PlayerListHandlers::buddyStartedGame, m_buddyNotifier,
            &BuddyNotifier::buddyStartedGame);
}

void ClientApplication::openStatsPage(const QString &id)
{
    QDesktopServices::openUrl(QUrl(statsPageAddress(*m_session, id)));
}

void ClientApplication::buildStats()
{
    // The running game's results logs are read and uploaded as they are written.
    auto *harvester =
        new ResultLogHarvester(*m_connection, *m_services.clock, *m_basRegistry, this);
    connect(new ResultLogWatch(*m_services.folderWatcher, ResultLogWatch::kSettleTime, this),
            &ResultLogWatch::resultLogWritten, harvester, &ResultLogHarvester::harvestResultLog);

    if (!m_services.keyState) {
        m_ownKeyState = std::make_unique<X11KeyState>();
        m_services.keyState = m_ownKeyState.get();
    }
    auto *reset = new StatsReset(*m_connection, *m_session, *m_options, *m_services.keyState,
                                 *m_sounds, *m_services.dialogs, this);
    connect(m_form->picResetStats, &QAbstractButton::clicked, reset,
            &StatsReset::picResetStatsClicked);
    connect(m_tmrStatsReset, &QTimer::timeout, reset, &StatsReset::pollHotKey);
    connect(reset, &StatsReset::statusLine, m_chat, &LobbyChat::addStatusLine);
    connect(m_form->picViewStats, &QAbstractButton::clicked, this,
            [this] { openStatsPage(m_form->picViewStats->tag()); });
}

void ClientApplication::buildTray()
{
    m_tray =
        new TrayController(*m_services.tray, *m_form, *m_session, *m_connection, *m_chat, this);
}

QString ClientApplication::credentialsPath() const
{
    return QDir(m_dataFolder).filePath(QString::fromLatin1(CredentialsFile::kFileName));
}

void ClientApplication::buildLogin()
{
    m_login = new LoginController(*m_connection, *m_dispatcher, *m_session, *m_sounds,
                                  credentialsPath(), LoginController::kReconnectInterval, this);
    connect(m_login, &LoginController::statusLine, m_chat, &LobbyChat::addStatusLine);
    connect(m_login, &LoginController::roomListEmptyRequested, m_rooms, &RoomListModel::clearRows);
    connect(m_login, &LoginController::playerListEmptyRequested, m_players,
            &PlayerListModel::clearList);
    connect(m_login, &LoginController::playerListResetRequested, m_players, [this] {
        m_players->clearList();
        m_players->addGroupRows();
    });
    connect(m_login, &LoginController::loginWindowDone, m_windows, &AppWindows::unloadLogIn);
    // Detection runs first on each tick, the keep-alive after it.
    auto *timer1 = new OnlineTimer(*m_session, OnlineTimer::kInterval, this);
    m_detection = new InGameDetection(*timer1, *m_session, *m_connection, *m_gameScan,
                                      *m_gameWindows, *m_services.folderWatcher, *m_options, this);
    new KeepAlive(*timer1, *m_session, *m_connection, this);
    // The lobby steps aside while a game runs.
    connect(m_detection, &InGameDetection::gameStarted, m_form.get(), &QWidget::hide);
    connect(m_detection, &InGameDetection::gameEnded, m_form.get(), &QWidget::show);
    connect(m_form->picLogIn, &QAbstractButton::clicked, m_login,
            &LoginController::picLogInClicked);
    connect(m_login, &LoginController::loginDialogRequested, this,
            [this] { m_windows->frmLogIn()->showModal(); });
    connect(m_login, &LoginController::statsIdReceived, this, [this](const QString &id) {
        m_session->ownName = CredentialsFile::read(credentialsPath()).name;
        m_buddyNotifier->loggedIn();
        m_form->picViewStats->setTag(id);
        m_form->picViewStats->show();
    });
}

void ClientApplication::buildSelfUpdate()
{
    const UpdateFiles files{m_services.applicationFile};
    m_selfUpdate =
        new SelfUpdate(files, Elevation::forFiles(files), *m_session, *m_services.dialogs, *m_form,
                       *m_services.processes, m_services.updaterOptions, this);
    connect(m_selfUpdate, &SelfUpdate::statusLine, m_chat, &LobbyChat::addStatusLine);
    connect(m_login, &LoginController::updateRequired, m_selfUpdate, &SelfUpdate::updateRequired);
    // The new version runs: the program ends at once, without its shut-down.
    connect(m_selfUpdate, &SelfUpdate::endRequested, this, [this] {
        m_tray->removeIcon();
        Q_EMIT shutDownFinished();
    });
}

void ClientApplication::buildGame()
{
    if (!m_services.processes) {
        m_ownProcesses = std::make_unique<DetachedProcessStarter>(
            QString::fromLatin1(DetachedProcessStarter::kDefaultWine), m_services.winePrefix);
        m_services.processes = m_ownProcesses.get();
    }
    if (!m_services.gameWindowFinder) {
        m_ownWindowFinder = std::make_unique<X11GameWindowFinder>();
        m_services.gameWindowFinder = m_ownWindowFinder.get();
    }
    if (!m_services.tcpTable) {
        m_ownTcpTable = std::make_unique<ProcTcpTable>();
        m_services.tcpTable = m_ownTcpTable.get();
    }
    if (!m_services.folderWatcher)
        m_services.folderWatcher = new InotifyFolderWatcher(this);
    m_gameWindows = std::make_unique<GameWindows>(*m_services.gameWindowFinder);
    m_gameScan =
        std::make_unique<GameServerScan>(*m_gameWindows, *m_services.tcpTable, *m_services.dialogs);
    m_launcher = new GameLauncher(*m_options, *m_services.processes, *m_services.dialogs, this);
    m_launchSites =
        new LaunchSites(*m_launcher, *m_gameWindows, *m_session, *m_connection, *m_rooms, this);
}

void ClientApplication::buildRooms()
{
    m_roomState = new RoomState(this);
    m_roomSession = new RoomSession(
        *m_roomState, *m_rooms, *m_dispatcher, *m_connection, *m_session, *m_services.dialogs,
        [this] { return CredentialsFile::read(credentialsPath()).name; }, this);
    connect(m_roomHandlers, &RoomListHandlers::roomClosing, m_roomSession,
            &RoomSession::roomClosing);
    connect(m_roomSession, &RoomSession::createRoomButtonShown, m_form->picCreateRoom,
            &QWidget::setVisible);
    connect(m_roomSession, &RoomSession::roomWindowShowRequested, this, [this] {
        FrmRoom *window = m_windows->frmRoom();
        window->show();
        window->raise();
    });
    connect(m_roomSession, &RoomSession::roomWindowUnloadRequested, m_windows,
            &AppWindows::unloadRoom);
    connect(m_tray, &TrayController::restored, this, [this] {
        if (m_roomState->hideShowRoom)
            m_windows->frmRoom()->show();
    });
    connect(m_form->picCreateRoom, &QAbstractButton::clicked, this, [this] {
        if (m_session->inGame)
            return;
        FrmMakeRoom *window = m_windows->frmMakeRoom();
        window->show();
        window->raise();
        window->activateWindow();
    });
    // The room's Start and Join, a listed running game and the join that follows the host's
    // start all go to the game launcher; the room window hides and shows with the game.
    connect(m_roomSession, &RoomSession::gameServerStartRequested, m_launcher,
            &GameLauncher::launchGameServer);
    connect(m_roomSession, &RoomSession::gameClientStartRequested, m_launcher,
            &GameLauncher::launchGameClient);
    connect(m_roomSession, &RoomSession::gameClientAutoStartRequested, m_launchSites,
            &LaunchSites::autoJoinGame);
    connect(m_detection, &InGameDetection::gameStarted, this, [this] {
        if (m_roomState->hideShowRoom && m_windows->isRoomLoaded())
            m_windows->frmRoom()->hide();
    });
    connect(m_detection, &InGameDetection::gameEnded, this, [this] {
        if (m_roomState->hideShowRoom)
            m_windows->frmRoom()->show();
    });
    // Creating and joining are possible only while the create-room button is shown: logged
    // in and in no room.
    connect(m_form->ListView1, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex &index) {
                if (!m_form->picCreateRoom->isHidden())
                    m_roomSession->joinRow(index.row());
            });
}

void ClientApplication::startGameQuery()
{
    m_gameQuery = new GameServerQuery(*m_rooms, *m_gameInfo, *m_services.ticks, this);
    connect(m_roomHandlers, &RoomListHandlers::gameRowAdded, m_gameQuery,
            &GameServerQuery::pingGameServer);
    connect(m_form->picRefreshPings, &QAbstractButton::clicked, m_gameQuery,
            &GameServerQuery::refreshPings);
}

void ClientApplication::loadOptions()
{
    // The options are read once, the first time anything needs them.
    if (m_optionsLoaded)
        return;
    m_optionsLoaded = true;
    m_gameFoldersMissing = !m_optionsStore->load();
}

void ClientApplication::showOptions()
{
    FrmOptions *window = m_windows->frmOptions();
    window->setWindowModality(Qt::ApplicationModal);
    window->show();
    window->raise();
    window->activateWindow();
}

void ClientApplication::useLobby(const HostPort &lobby)
{
    m_servers.lobby = lobby;
    m_session->lobbyServerHost = lobby.host;
    m_session->lobbyPort = lobby.port;
    const HostPort web = m_servers.webOrLobbyHost();
    m_session->webHost = web.host;
    m_session->webPort = web.port;
    m_servers.save(m_dataFolder);
}

void ClientApplication::offerFirstSteps()
{
    // A first start finds no game and no login: the user is led to both rather than left
    // before an empty window.
    if (m_gameFoldersMissing &&
        m_services.dialogs->messageBox(applicationTitle(), QString::fromLatin1(kOfferOptionsText),
                                       Dialogs::Buttons::YesNo,
                                       Dialogs::Icon::Question) == Dialogs::Answer::Yes)
        showOptions();
    if (m_options->autoLogIn() || !CredentialsFile::read(credentialsPath()).name.isEmpty())
        return;
    FrmOptions *options = m_windows->isOptionsShown() ? m_windows->frmOptions() : nullptr;
    if (!options) {
        m_windows->frmLogIn()->showModal();
        return;
    }
    connect(
        options, &FrmOptions::closed, this, [this] { m_windows->frmLogIn()->showModal(); },
        Qt::SingleShotConnection);
}

bool ClientApplication::start()
{
    if (m_dataFolder.isEmpty() || !PrivateFiles::makeFolder(m_dataFolder)) {
        m_services.dialogs->messageBox(applicationTitle(),
                                       QStringLiteral("Error %1 in SpecialFolder: %2")
                                           .arg(DataFolder::kNotFoundError)
                                           .arg(QLatin1String(DataFolder::kNotFoundMessage)),
                                       Dialogs::Buttons::Ok, Dialogs::Icon::Critical);
        return false;
    }
    // The program ends through its shut-down only: with the main window hidden to the tray,
    // closing some other window must not end it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    m_form->showAtNormalSize();
    m_session->lobbyServerHost = m_servers.lobby.host;
    m_session->lobbyPort = m_servers.lobby.port;
    const HostPort web = m_servers.webOrLobbyHost();
    m_session->webHost = web.host;
    m_session->webPort = web.port;
    // Started with "update": a new version that installs and starts replaces this program. A
    // failed one leaves this version running, which then knows not to update again.
    if (m_services.installUpdate && m_selfUpdate->mayInstall() && m_selfUpdate->install()) {
        Q_EMIT shutDownFinished();
        return true;
    }
    startGameQuery();
    m_session->textSendTime = m_services.clock->now();
    m_session->inGame = false;
    m_session->exitPager = false;
    m_session->keepAliveTicks = 1;
    // The tray's tip names the saved user from the start.
    m_session->ownName = CredentialsFile::read(credentialsPath()).name;
    m_tray->addIcon();
    loadOptions();
    m_autoStart->applyRunValue();
    if (m_options->autoLogIn())
        m_login->autoLogin();
    offerFirstSteps();
    return true;
}

void ClientApplication::shutDown()
{
    m_session->exitPager = true;
    m_windows->unloadAll();
    m_tray->removeIcon();
    m_connection->close();
    Q_EMIT shutDownFinished();
}

} // namespace client
