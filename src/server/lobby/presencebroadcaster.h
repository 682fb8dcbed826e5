#pragma once

#include "server/lobby/spacedsender.h"

namespace server {

class Lobby;
class Session;

// Tells the lobby of players' presence changes ("PS"), each player's at most about once per
// spacing, as the latest state (see SpacedSender): with thousands logged in, a burst of
// broadcasts would hold up the chat for a tenth of a second.
class PresenceBroadcaster
{
public:
    PresenceBroadcaster(Lobby &lobby, int spacingMs);

    // The player of `session` has a new presence or game address.
    void changed(Session &session) { m_spaced.changed(session); }
    // The session ends: nothing more is sent for it.
    void forget(Session &session) { m_spaced.forget(session); }

private:
    void send(const Session &session);

    Lobby &m_lobby;
    SpacedSender m_spaced;
};

} // namespace server
