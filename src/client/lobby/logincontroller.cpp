#include "client/lobby/logincontroller.h"

#include "client/lobby/credentialsfile.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/platform/eventsounds.h"
#include "client/session/clientversion.h"
#include "client/session/sessionstate.h"
#include "client/settings/lobbyaddress.h"
#include "protocol/login.h"

#include <QCoreApplication>
#include <QTimer>

namespace client {

LoginController::LoginController(LobbyConnection &connection, LobbyDispatcher &dispatcher,
                                 SessionState &session, EventSounds &sounds,
                                 QString credentialsPath,
                                 std::chrono::milliseconds reconnectInterval, QObject *parent)
    : QObject(parent), m_connection(connection), m_session(session), m_sounds(sounds),
      m_credentialsPath(std::move(credentialsPath)), m_tmrReconnet(new QTimer(this))
{
    m_tmrReconnet->setObjectName(QStringLiteral("tmrReconnet"));
    m_tmrReconnet->setInterval(reconnectInterval);
    connect(m_tmrReconnet, &QTimer::timeout, this, &LoginController::reconnect);
    connect(&m_connection, &LobbyConnection::connected, this, &LoginController::onConnected);
    connect(&m_connection, &LobbyConnection::dropped, this, &LoginController::onDropped);
    connect(&m_connection, &LobbyConnection::connectFailed, this,
            &LoginController::onConnectFailed);

    dispatcher.on<protocol::SendLogin>([this](const protocol::SendLogin &) {
        if (!m_connection.isConnected())
            return;
        // What was last saved, not what may stand typed in an open login window.
        const Credentials credentials = CredentialsFile::read(m_credentialsPath);
        m_connection.send(protocol::Login{credentials.name, credentials.password});
    });
    dispatcher.on<protocol::LoginAccepted>([this](const protocol::LoginAccepted &accepted) {
        m_refusal.clear();
        m_session.lobbyStatsId = accepted.statsId.text;
        Q_EMIT statsIdReceived(m_session.lobbyStatsId);
        Q_EMIT statusLine(QStringLiteral("Connected"));
        m_session.setOnline(true);
    });
    dispatcher.on<protocol::LoginFailed>([this](const protocol::LoginFailed &) {
        Q_EMIT statusLine(m_refusal.isEmpty() ? QStringLiteral("Wrong name or password")
                                              : m_refusal);
        m_refusal.clear();
        // Closing from this side raises no drop, so nothing reconnects.
        m_connection.close();
    });
    dispatcher.on<protocol::OldVersion>([this](const protocol::OldVersion &) { onOldVersion(); });
}

void LoginController::noteRefusal(const QString &reason)
{
    if (!m_session.isOnline())
        m_refusal = reason;
}

void LoginController::autoLogin()
{
    m_sounds.play(EventSounds::Event::Connecting);
    Q_EMIT roomListEmptyRequested();
    Q_EMIT statusLine(QStringLiteral("Trying to connect..."));
    connectToLobby();
    Q_EMIT loginWindowDone();
}

void LoginController::loginPressed()
{
    m_session.loggedOFF = false;
    m_tmrReconnet->stop();
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
    m_tmrReconnet->stop();
    m_session.loggedOFF = true;
    m_connection.close();
    m_session.setOnline(false);
    m_sounds.play(EventSounds::Event::LoggedOut);
    Q_EMIT statusLine(QStringLiteral("Logged out"));
}

void LoginController::connectToLobby()
{
    // connectToLobby closes a connection that is not closed yet first.
    m_connection.connectToLobby(m_session.lobbyServerHost, m_session.lobbyPort);
    QCoreApplication::processEvents();
}

void LoginController::onConnected()
{
    Q_EMIT playerListResetRequested();
    Q_EMIT roomListEmptyRequested();
    m_tmrReconnet->stop();
    m_connection.send(protocol::Version{clientVersion()});
    QCoreApplication::processEvents();
}

void LoginController::onDropped()
{
    m_session.inGame = false;
    m_sounds.play(EventSounds::Event::ConnectionDropped);
    Q_EMIT statusLine(QStringLiteral("Diconnected"));
    m_session.setOnline(false);
    if (!m_session.loggedOFF)
        m_tmrReconnet->start();
}

void LoginController::onConnectFailed()
{
    // The address tried, so that a mistyped or stale lobby address can be seen.
    Q_EMIT statusLine(
        QStringLiteral("Could not connect to %1")
            .arg(HostPort{m_session.lobbyServerHost, m_session.lobbyPort}.toString()));
}

void LoginController::onOldVersion()
{
    // The server ends the session after "OV"; closing first keeps that from counting as a
    // drop, and with `loggedOFF` nothing reconnects: a server that refuses this version would
    // refuse it again every 20 s. The session is over before the update asks anything.
    m_tmrReconnet->stop();
    m_session.loggedOFF = true;
    m_connection.close();
    m_session.setOnline(false);
    Q_EMIT updateRequired();
}

void LoginController::reconnect()
{
    Q_EMIT statusLine(QStringLiteral("Trying to reconnect"));
    m_session.loggedOFF = false;
    Q_EMIT playerListEmptyRequested();
    Q_EMIT roomListEmptyRequested();
    connectToLobby();
}

} // namespace client
