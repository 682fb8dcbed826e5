#include "server/lobby/registrationcap.h"

#include "server/core/clock.h"

namespace server {

RegistrationCap::RegistrationCap(const Clock &clock, int perHour)
    : m_clock(clock), m_rule{perHour, kWindowMs}
{
}

bool RegistrationCap::tryRegister(const QString &address)
{
    const qint64 now = m_clock.nowMs();
    if (m_addresses.size() > 1024) // bounded by the addresses that registered within the hour
        m_addresses.removeIf([now](const auto &entry) { return entry.value().isIdle(now); });
    auto found = m_addresses.find(address);
    if (found == m_addresses.end())
        found = m_addresses.insert(address, RateLimiter(m_rule));
    return found->tryAcquire(now);
}

} // namespace server
