#include "server/core/ratelimiter.h"

namespace server {

RateLimiter::RateLimiter(RateRule rule)
    : m_rule{qMax(1, rule.events), rule.windowMs}, m_accepted(size_t(m_rule.events))
{
}

bool RateLimiter::tryAcquire(qint64 nowMs)
{
    // m_next is the oldest of the last rule.events once the ring is full.
    if (m_count == m_rule.events && nowMs - m_accepted[size_t(m_next)] < m_rule.windowMs)
        return false;
    m_accepted[size_t(m_next)] = nowMs;
    m_next = (m_next + 1) % m_rule.events;
    if (m_count < m_rule.events)
        ++m_count;
    return true;
}

bool RateLimiter::isIdle(qint64 nowMs) const
{
    if (m_count == 0)
        return true;
    const int newest = (m_next + m_rule.events - 1) % m_rule.events;
    return nowMs - m_accepted[size_t(newest)] >= m_rule.windowMs;
}

} // namespace server
