#pragma once

#include <QSet>
#include <QTimer>
#include <functional>

namespace server {

class Session;

// Sends news of a session to others at most about once per spacing: the first change goes out
// at once; further changes before the next tick of the spacing timer are sent together at that
// tick, as the latest state. Nothing is lost to the others (they always end on the latest
// state), while a client that changes state many times a second costs one fan-out per spacing
// instead of one per change.
class SpacedSender
{
public:
    using Send = std::function<void(const Session &)>;

    SpacedSender(int spacingMs, Send send);

    // What `send` tells of `session` has changed.
    void changed(Session &session);
    // Nothing more is sent for `session` (it ended, or what it told of is gone).
    void forget(Session &session);

private:
    void tick();

    Send m_send;
    QTimer m_tick;
    QSet<Session *> m_sentThisTick; // a further change of these waits for the next tick
    QSet<Session *> m_waiting;
};

} // namespace server
