#include "client/presence/presence.h"

#include "client/lobby/lobbyconnection.h"

namespace client {

bool sendPresence(LobbyConnection &connection, Presence state, const QString &gameAddress)
{
    return connection.send(protocol::PlayerStatusToServer{
        state, state == Presence::Playing ? gameAddress : QString()});
}

} // namespace client
