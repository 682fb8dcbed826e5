#pragma once

#include "server/core/ratelimiter.h"

#include <QHash>
#include <QString>

namespace server {

class Clock;

// How many accounts one address may register: at most `perHour` in any hour, so that open
// registration cannot be used to fill the database from one host. Addresses with no
// registration in the last hour are forgotten.
class RegistrationCap
{
public:
    static constexpr qint64 kWindowMs = 3'600'000;

    RegistrationCap(const Clock &clock, int perHour);

    // True when `address` may register one more account now; then it counts.
    bool tryRegister(const QString &address);

private:
    const Clock &m_clock;
    RateRule m_rule;
    QHash<QString, RateLimiter> m_addresses;
};

} // namespace server
