#include "server/loginthrottle.h"

#include "server/clock.h"

namespace server {

LoginThrottle::LoginThrottle(const Clock &clock) : m_clock(clock) {}

qint64 LoginThrottle::delayFor(const QString &address) const
{
    const auto it = m_failures.constFind(address);
    if (it == m_failures.cend() || m_clock.nowMs() - it->lastMs >= kForgetMs)
        return 0;
    const int excess = it->count - kFreeFailures;
    if (excess < 0)
        return 0;
    return excess >= 5 ? kMaxDelayMs : qMin(kMaxDelayMs, qint64(1000) << excess);
}

void LoginThrottle::recordFailure(const QString &address)
{
    const qint64 now = m_clock.nowMs();
    Failures &entry = m_failures[address];
    if (now - entry.lastMs >= kForgetMs)
        entry.count = 0;
    ++entry.count;
    entry.lastMs = now;
    if (++m_sincePrune >= 1024)
        prune();
}

void LoginThrottle::recordSuccess(const QString &address)
{
    m_failures.remove(address);
}

void LoginThrottle::prune()
{
    m_sincePrune = 0;
    const qint64 now = m_clock.nowMs();
    m_failures.removeIf([&](const auto &it) { return now - it.value().lastMs >= kForgetMs; });
}

} // namespace server
