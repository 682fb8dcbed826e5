#pragma once

#include <QtGlobal>
#include <vector>

namespace server {

// How many events are accepted in any window of so many milliseconds.
struct RateRule
{
    int events = 5;
    qint64 windowMs = 10'000;
};

// At most rule.events accepted events in any window of rule.windowMs: an event is accepted
// when fewer than that were accepted in the window before it. Rejected events do not count.
class RateLimiter
{
public:
    explicit RateLimiter(RateRule rule = {});

    bool tryAcquire(qint64 nowMs);
    // True when no accepted event lies within the window before `nowMs`: the limiter is back
    // in its initial state and may be forgotten.
    bool isIdle(qint64 nowMs) const;

private:
    RateRule m_rule;
    std::vector<qint64> m_accepted; // ring of the last rule.events acceptance times
    int m_next = 0;
    int m_count = 0;
};

} // namespace server
