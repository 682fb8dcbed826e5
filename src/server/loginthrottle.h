#pragma once

#include <QHash>
#include <QString>

namespace server {

class Clock;

// Slows down password guessing from one address: after kFreeFailures failed logins, each
// further attempt from that address waits before it is checked, 1 s doubling per failure up
// to kMaxDelayMs. An address is forgotten after kForgetMs without a failure, or on success.
class LoginThrottle
{
public:
    static constexpr int kFreeFailures = 3;
    static constexpr qint64 kMaxDelayMs = 30'000;
    static constexpr qint64 kForgetMs = 15 * 60'000;

    explicit LoginThrottle(const Clock &clock);

    qint64 delayFor(const QString &address) const;
    void recordFailure(const QString &address);
    void recordSuccess(const QString &address);

private:
    struct Failures
    {
        int count = 0;
        qint64 lastMs = 0;
    };
    void prune();

    const Clock &m_clock;
    QHash<QString, Failures> m_failures;
    int m_sincePrune = 0;
};

} // namespace server
