#include "client/lobby/keepalive.h"

#include "client/lobby/lobbyconnection.h"
#include "client/lobby/onlinetimer.h"
#include "client/session/sessionstate.h"
#include "protocol/login.h"

namespace client {

KeepAlive::KeepAlive(OnlineTimer &timer1, SessionState &session, LobbyConnection &connection,
                     QObject *parent)
    : QObject(parent), m_session(session), m_connection(connection)
{
    connect(&timer1, &OnlineTimer::tick, this, &KeepAlive::tick);
}

void KeepAlive::tick()
{
    ++m_session.keepAliveTicks;
    if (m_session.keepAliveTicks > 3) {
        m_session.keepAliveTicks = 1;
        m_connection.send(protocol::KeepAlive{});
    }
}

} // namespace client
