#pragma once

#include <QSet>
#include <QTimer>

namespace server {

class Lobby;
class Session;

// Tells the lobby of players' presence changes ("PS"), each player's at most about once per
// spacing: the first change goes out at once; further changes before the next tick of the
// spacing timer are sent together at that tick, as the player's latest state. Nothing is lost
// to the others (they always end on the latest state), while a client that changes state many
// times a second costs one broadcast to everyone per spacing instead of one per change: with
// thousands logged in, a burst of broadcasts would hold up the chat for a tenth of a second.
class PresenceBroadcaster
{
public:
    PresenceBroadcaster(Lobby &lobby, int spacingMs);

    // The player of `session` has a new presence or game address.
    void changed(Session &session);
    // The session ends: nothing more is sent for it.
    void forget(Session &session);

private:
    void tick();
    void send(const Session &session);

    Lobby &m_lobby;
    QTimer m_tick;
    QSet<Session *> m_sentThisTick; // a further change of these waits for the next tick
    QSet<Session *> m_waiting;
};

} // namespace server
