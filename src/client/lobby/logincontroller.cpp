#include "client/lobby/logincontroller.h"

#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/session/eventsounds.h"
#include "client/session/sessionstate.h"

#include <QCoreApplication>
#include <QTimer>

namespace client {

using protocol::Code;

LoginController::LoginController(LobbyConnection &connection, LobbyDispatcher &dispatcher,
                                 SessionState &session, EventSounds &sounds, QTimer &tmrReconnet,
                                 QTimer &timer1, Hooks hooks, QObject *parent)
    : QObject(parent), m_connection(connection), m_session(session), m_sounds(sounds),
      m_tmrReconnet(tmrReconnet), m_timer1(timer1), m_hooks(std::move(hooks))
{
    connect(&m_connection, &LobbyConnection::connected, this, &LoginController::onConnected);
    connect(&m_connection, &LobbyConnection::dropped, this, &LoginController::onDropped);
    connect(&m_connection, &LobbyConnection::connectFailed, this,
            &LoginController::onConnectFailed);
    connect(&m_tmrReconnet, &QTimer::timeout, this, &LoginController::reconnect);

    dispatcher.setHandler(Code::SendLogin, [this](const protocol::Message &) {
        if (!m_connection.isConnected())
            return;
        const Credentials credentials = m_hooks.credentials();
        m_connection.sendLobbyMessage(Code::Login, {credentials.name, credentials.password});
    });
    dispatcher.setHandler(Code::LoginAccepted, [this](const protocol::Message &message) {
        m_session.lobbyStatsId = message.field(0);
        Q_EMIT statsIdReceived(m_session.lobbyStatsId);
        m_hooks.statusLine(QStringLiteral("Connected"));
        m_session.setOnline(true);
        m_timer1.start();
    });
    dispatcher.setHandler(Code::LoginFailed, [this](const protocol::Message &) {
        m_hooks.statusLine(QStringLiteral("Wrong name or password"));
        m_timer1.stop();
        // Closing from this side raises no drop, so nothing reconnects.
        m_connection.close();
    });
}

void LoginController::autoLogin()
{
    m_sounds.play(EventSounds::Event::Connecting);
    m_hooks.emptyRoomList();
    m_hooks.statusLine(QStringLiteral("Trying to connect..."));
    connectToLobby();
    m_hooks.unloadLoginWindow();
}

void LoginController::loginPressed()
{
    m_session.loggedOFF = false;
    m_tmrReconnet.stop();
    autoLogin();
}

void LoginController::picLogInClicked()
{
    if (m_session.isOnline())
        logOut();
    else
        Q_EMIT loginDialogRequested();
}

void LoginController::logOut()
{
    m_session.inGame = false;
    m_tmrReconnet.stop();
    m_session.loggedOFF = true;
    m_connection.close();
    m_session.setOnline(false);
    m_sounds.play(EventSounds::Event::LoggedOut);
    m_hooks.statusLine(QStringLiteral("Logged out"));
    m_timer1.stop();
}

void LoginController::connectToLobby()
{
    // connectToLobby closes a connection that is not closed yet first.
    m_connection.connectToLobby(m_session.lobbyServerHost, m_session.lobbyPort);
    QCoreApplication::processEvents();
}

void LoginController::onConnected()
{
    m_hooks.resetPlayerList();
    m_hooks.emptyRoomList();
    m_tmrReconnet.stop();
    m_connection.sendLobbyMessage(Code::Version, {m_hooks.clientVersion()});
    QCoreApplication::processEvents();
}

void LoginController::onDropped()
{
    m_session.inGame = false;
    m_sounds.play(EventSounds::Event::ConnectionDropped);
    m_hooks.statusLine(QStringLiteral("Diconnected"));
    m_session.setOnline(false);
    m_timer1.stop();
    if (!m_session.loggedOFF)
        m_tmrReconnet.start();
}

void LoginController::onConnectFailed()
{
    m_hooks.statusLine(QStringLiteral("Could not connect"));
}

void LoginController::reconnect()
{
    m_hooks.statusLine(QStringLiteral("Trying to reconnect"));
    m_session.loggedOFF = false;
    m_hooks.emptyPlayerList();
    m_hooks.emptyRoomList();
    connectToLobby();
}

} // namespace client
