#pragma once

#include <QHash>
#include <QString>

namespace server {

class Clock;

// Slows down password guessing from one address. The first kFreeFailures failures cost
// nothing. After that, attempts from the address take turns, however many connections they
// come on: each waits kFirstDelayMs after the one before, doubling with every further failure
// up to kMaxDelayMs, so a player who mistyped a few times waits seconds, never minutes, while
// a guesser gets one try per few seconds. An address is forgotten after kForgetMs without a
// failure, or on success.
class LoginThrottle
{
public:
    static constexpr int kFreeFailures = 3;
    static constexpr qint64 kFirstDelayMs = 500;
    static constexpr qint64 kMaxDelayMs = 4'000;
    static constexpr qint64 kForgetMs = 15 * 60'000;

    explicit LoginThrottle(const Clock &clock);

    // How long a login from `address` arriving now waits before it is checked; the turn is
    // taken, so the next one waits longer.
    qint64 reserveTurn(const QString &address);
    void recordFailure(const QString &address);
    void recordSuccess(const QString &address);

private:
    struct Failures
    {
        int count = 0;
        qint64 lastMs = 0;
        qint64 nextTurnMs = 0;
    };
    static qint64 stepFor(int failures);
    void prune();

    const Clock &m_clock;
    QHash<QString, Failures> m_failures;
    int m_sincePrune = 0;
};

} // namespace server
