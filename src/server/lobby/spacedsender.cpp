#include "server/lobby/spacedsender.h"

namespace server {

SpacedSender::SpacedSender(int spacingMs, Send send) : m_send(std::move(send))
{
    m_tick.setInterval(spacingMs);
    QObject::connect(&m_tick, &QTimer::timeout, [this] { tick(); });
}

void SpacedSender::changed(Session &session)
{
    if (m_sentThisTick.contains(&session)) {
        m_waiting.insert(&session);
        return;
    }
    m_send(session);
    m_sentThisTick.insert(&session);
    if (!m_tick.isActive())
        m_tick.start();
}

void SpacedSender::forget(Session &session)
{
    m_sentThisTick.remove(&session);
    m_waiting.remove(&session);
}

void SpacedSender::tick()
{
    for (const Session *session : std::as_const(m_waiting))
        m_send(*session);
    // Those just sent wait a whole spacing before their next change goes out.
    m_sentThisTick = std::exchange(m_waiting, {});
    if (m_sentThisTick.isEmpty())
        m_tick.stop();
}

} // namespace server
