#include "client/app/activeservers.h"

#include "client/session/sessionstate.h"

namespace client {

ActiveServers::ActiveServers(ServerAddresses servers, SessionState &session, QString dataFolder)
    : m_servers(std::move(servers)), m_session(session), m_dataFolder(std::move(dataFolder))
{
}

void ActiveServers::applyToSession()
{
    m_session.lobbyServerHost = m_servers.lobby.host;
    m_session.lobbyPort = m_servers.lobby.port;
    const HostPort web = m_servers.webOrLobbyHost();
    m_session.webHost = web.host;
    m_session.webPort = web.port;
}

void ActiveServers::useLobby(const HostPort &lobby)
{
    m_servers.lobby = lobby;
    applyToSession();
    m_servers.save(m_dataFolder);
}

} // namespace client
