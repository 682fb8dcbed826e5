#include "client/app/clientapplication.h"

#include "client/app/appwindows.h"
#include "client/app/clock.h"
#include "client/app/eventsounds.h"
#include "client/app/form1.h"
#include "client/app/plainwindow.h"
#include "client/app/sessionlooks.h"
#include "client/app/sessionstate.h"
#include "client/app/traycontroller.h"
#include "client/lobby/frmlogin.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/lobby/logincontroller.h"
#include "client/platform/datafolder.h"
#include "client/platform/trayservice.h"
#include "client/rooms/roomlistmodel.h"

#include "client/app/picturebutton.h"

#include <QLabel>
#include <QMessageBox>
#include <QTextBrowser>
#include <QTreeView>

ClientApplication::ClientApplication(Services services, ServerAddresses servers, QObject *parent)
    : QObject(parent), m_services(services), m_servers(std::move(servers)),
      m_session(new SessionState(this)), m_dispatcher(new LobbyDispatcher(this)),
      m_connection(new LobbyConnection(*m_dispatcher, this)), m_rooms(new RoomListModel(this)),
      m_form(std::make_unique<Form1>())
{
    m_sounds = new EventSounds(
        *m_services.sounds, [] { return false; }, [] { return QString(); }, this);
    m_looks = new SessionLooks(*m_form, *m_services.tray, *m_session, this);
    buildWindows();

    m_form->ListView1->setModel(m_rooms);

    TrayController::Hooks trayHooks;
    m_tray = new TrayController(*m_services.tray, *m_form, *m_session, *m_connection,
                                std::move(trayHooks), this);

    LoginController::Hooks loginHooks;
    loginHooks.statusLine = [this](const QString &text) { statusLine(text); };
    loginHooks.emptyRoomList = [this] { m_rooms->clearRows(); };
    loginHooks.emptyPlayerList = [] {};
    loginHooks.resetPlayerList = [] {};
    loginHooks.credentials = [this] { return m_windows->frmLogIn()->credentials(); };
    loginHooks.unloadLoginWindow = [this] { m_windows->unloadLogIn(); };
    loginHooks.clientVersion = [this] { return m_form->Label3->text(); };
    m_login =
        new LoginController(*m_connection, *m_dispatcher, *m_session, *m_sounds,
                            *m_form->tmrReconnet, *m_form->Timer1, std::move(loginHooks), this);
    connect(m_form->picLogIn, &QAbstractButton::clicked, m_login,
            &LoginController::picLogInClicked);
    connect(m_login, &LoginController::loginDialogRequested, this,
            [this] { m_windows->frmLogIn()->showModal(); });
    connect(m_login, &LoginController::statsIdReceived, this, [this](const QString &id) {
        m_form->picViewStats->setTag(id);
        m_form->picViewStats->show();
    });

    connect(m_form.get(), &Form1::unloading, this, &ClientApplication::shutDown);
}

ClientApplication::~ClientApplication() = default;

void ClientApplication::buildWindows()
{
    AppWindows::Factories factories;
    factories.logIn = [this] {
        auto *window =
            new FrmLogIn(DataFolder::filePath(QString::fromLatin1(CredentialsFile::kFileName)));
        connect(window, &FrmLogIn::loginRequested, m_login, &LoginController::loginPressed);
        return window;
    };
    factories.options = [] {
        return new PlainWindow(QStringLiteral("frmOptions"), QStringLiteral("Options"), {360, 300});
    };
    factories.room = [] {
        return new PlainWindow(QStringLiteral("frmRoom"), QStringLiteral("Room"), {520, 400});
    };
    factories.menu = [] {
        return new PlainWindow(QStringLiteral("frmMenu"), QStringLiteral("Player"), {160, 120});
    };
    factories.pager = [] {
        return new PlainWindow(QStringLiteral("frmPager"), QStringLiteral("Messages"), {420, 360});
    };
    factories.makeRoom = [] {
        return new PlainWindow(QStringLiteral("frmMakeRoom"), QStringLiteral("Create room"),
                               {300, 160});
    };
    factories.gameInfo = [] {
        return new PlainWindow(QStringLiteral("frmGameInfo"), QStringLiteral("Game Info"),
                               {300, 360});
    };
    m_windows = new AppWindows(std::move(factories), this);
}

void ClientApplication::statusLine(const QString &text)
{
    m_form->txtChat->append(text);
}

bool ClientApplication::start()
{
    if (!DataFolder::ensureExists()) {
        QMessageBox::critical(nullptr, QStringLiteral("QUORVEL"),
                              QStringLiteral("Error %1: %2")
                                  .arg(DataFolder::kNotFoundError)
                                  .arg(QLatin1String(DataFolder::kNotFoundMessage)));
        return false;
    }
    m_form->showAtNormalSize();
    m_session->lobbyServerHost = m_servers.lobby.host;
    m_session->lobbyPort = m_servers.lobby.port;
    const HostPort web = m_servers.webOrLobbyHost();
    m_session->webHost = web.host;
    m_session->webPort = web.port;
    m_session->textSendTime = m_services.clock->now();
    m_session->inGame = false;
    m_session->exitPager = false;
    m_session->keepAliveTicks = 1;
    m_tray->addIcon();
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
