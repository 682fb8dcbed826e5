#include "server/lobby/presencebroadcaster.h"

#include "protocol/presence.h"
#include "server/lobby/lobby.h"
#include "server/net/session.h"

namespace server {

PresenceBroadcaster::PresenceBroadcaster(Lobby &lobby, int spacingMs)
    : m_lobby(lobby), m_spaced(spacingMs, [this](const Session &session) { send(session); })
{
}

void PresenceBroadcaster::send(const Session &session)
{
    const Player &player = session.player();
    m_lobby.broadcast(protocol::PlayerStatusToClient{
        .name = player.name, .presence = player.presence, .gameAddress = player.gameAddress}
                          .encode());
}

} // namespace server
