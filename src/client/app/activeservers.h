#pragma once

#include "client/settings/lobbyaddress.h"

namespace client {

class SessionState;

// The lobby, web and avatar addresses this client uses: those it was started with, until the
// user logs in to another lobby from the login window, which is then used and kept in the
// data folder for later starts. The session's hosts follow them.
class ActiveServers
{
public:
    ActiveServers(ServerAddresses servers, SessionState &session, QString dataFolder);

    const ServerAddresses &servers() const { return m_servers; }
    // Puts the lobby and web hosts into the session.
    void applyToSession();
    // The lobby address typed in the login window: used from now on and kept.
    void useLobby(const HostPort &lobby);

private:
    ServerAddresses m_servers;
    SessionState &m_session;
    QString m_dataFolder;
};

} // namespace client
