#include "server/ratelimiter.h"

namespace server {

bool RateLimiter::tryAcquire(qint64 nowMs)
{
    // m_next is the oldest of the last kLines once the ring is full.
    if (m_count == kLines && nowMs - m_accepted[m_next] < kWindowMs)
        return false;
    m_accepted[m_next] = nowMs;
    m_next = (m_next + 1) % kLines;
    if (m_count < kLines)
        ++m_count;
    return true;
}

} // namespace server
