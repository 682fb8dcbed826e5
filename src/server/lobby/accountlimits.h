#pragma once

#include "server/core/ratelimiter.h"

#include <QHash>
#include <QString>

namespace server {

class Clock;

// Rate limits that belong to an account rather than to a connection, so logging in again
// does not start them afresh. Each kind of message that reaches other players (or the disk)
// has its own limit, chosen well above what an honest client sends; any handler can add a
// kind of its own by naming it.
class AccountLimits
{
public:
    // Lobby chat and private messages together: the client itself sends one line per 3 s.
    static constexpr RateRule kChat{5, 10'000};
    // Presence changes: a few per game started or joined.
    static constexpr RateRule kPresence{10, 10'000};
    // Opening, closing, locking a room and setting its status.
    static constexpr RateRule kRoomChanges{10, 10'000};
    // Room chat and ready changes.
    static constexpr RateRule kRoomChat{10, 10'000};
    // Buddy list changes, each a write to the database.
    static constexpr RateRule kBuddies{10, 10'000};
    // Wrong passwords for locked rooms: someone who mistypes tries again, a guesser waits.
    static constexpr RateRule kRoomPasswords{5, 60'000};
    // Statistics uploads, each a write: one per round played, sometimes twice.
    static constexpr RateRule kStatsUploads{10, 60'000};
    // Statistics resets: the in-game hot key repeats twice a second while held.
    static constexpr RateRule kStatsResets{10, 10'000};

    explicit AccountLimits(const Clock &clock);

    // True when account `accountId` may do one more `kind` of thing under `rule` now; then
    // it counts. The same kind is always to be asked with the same rule.
    bool tryAcquire(int accountId, const QString &kind, RateRule rule);

private:
    void prune(qint64 nowMs);

    const Clock &m_clock;
    QHash<std::pair<int, QString>, RateLimiter> m_limiters;
    int m_sincePrune = 0;
};

} // namespace server
