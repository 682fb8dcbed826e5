#include "server/lobby/loginthrottle.h"

#include "server/core/clock.h"

namespace server {

LoginThrottle::LoginThrottle(const Clock &clock) : m_clock(clock) {}

qint64 LoginThrottle::stepFor(int failures)
{
    const int excess = failures - kFreeFailures;
    if (excess < 0)
        return 0;
    return excess >= 4 ? kMaxDelayMs : qMin(kMaxDelayMs, kFirstDelayMs << excess);
}

qint64 LoginThrottle::reserveTurn(const QString &address)
{
    const auto it = m_failures.find(address);
    const qint64 now = m_clock.nowMs();
    if (it == m_failures.end() || now - it->lastMs >= kForgetMs)
        return 0;
    const qint64 step = stepFor(it->count);
    if (step == 0)
        return 0;
    const qint64 turn = qMax(now, it->nextTurnMs);
    it->nextTurnMs = turn + step;
    return turn - now;
}

void LoginThrottle::recordFailure(const QString &address)
{
    const qint64 now = m_clock.nowMs();
    Failures &entry = m_failures[address];
    if (now - entry.lastMs >= kForgetMs)
        entry = {};
    ++entry.count;
    entry.lastMs = now;
    entry.nextTurnMs = qMax(entry.nextTurnMs, now + stepFor(entry.count));
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
