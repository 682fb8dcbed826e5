#include "server/presencebroadcaster.h"

#include "protocol/presence.h"
#include "server/lobby.h"
#include "server/session.h"

namespace server {

PresenceBroadcaster::PresenceBroadcaster(Lobby &lobby, int spacingMs) : m_lobby(lobby)
{
    m_tick.setInterval(spacingMs);
    QObject::connect(&m_tick, &QTimer::timeout, [this] { tick(); });
}

void PresenceBroadcaster::changed(Session &session)
{
    if (m_sentThisTick.contains(&session)) {
        m_waiting.insert(&session);
        return;
    }
    send(session);
    m_sentThisTick.insert(&session);
    if (!m_tick.isActive())
        m_tick.start();
}

void PresenceBroadcaster::forget(Session &session)
{
    m_sentThisTick.remove(&session);
    m_waiting.remove(&session);
}

void PresenceBroadcaster::tick()
{
    for (const Session *session : std::as_const(m_waiting))
        send(*session);
    // Those just sent wait a whole spacing before their next change goes out.
    m_sentThisTick = std::exchange(m_waiting, {});
    if (m_sentThisTick.isEmpty())
        m_tick.stop();
}

void PresenceBroadcaster::send(const Session &session)
{
    const Player &player = session.player();
    m_lobby.broadcast(protocol::PlayerStatusToClient{
        .name = player.name, .presence = player.presence, .gameAddress = player.gameAddress}
                          .encode());
}

} // namespace server
