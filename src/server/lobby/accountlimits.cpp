#include "server/lobby/accountlimits.h"

#include "server/core/clock.h"

namespace server {

namespace {
constexpr int kPruneEvery = 4096;
} // namespace

AccountLimits::AccountLimits(const Clock &clock) : m_clock(clock) {}

bool AccountLimits::tryAcquire(int accountId, const QString &kind, RateRule rule)
{
    const qint64 now = m_clock.nowMs();
    if (++m_sincePrune >= kPruneEvery)
        prune(now);
    auto it = m_limiters.find({accountId, kind});
    if (it == m_limiters.end())
        it = m_limiters.insert({accountId, kind}, RateLimiter(rule));
    return it->tryAcquire(now);
}

void AccountLimits::prune(qint64 nowMs)
{
    m_sincePrune = 0;
    m_limiters.removeIf([nowMs](const auto &it) { return it.value().isIdle(nowMs); });
}

} // namespace server
