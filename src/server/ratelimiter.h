#pragma once

#include <QtGlobal>
#include <array>

namespace server {

// At most kLines accepted events in any window of kWindowMs: an event is accepted when fewer
// than kLines were accepted in the window before it. Rejected events do not count.
class RateLimiter
{
public:
    static constexpr int kLines = 5;
    static constexpr qint64 kWindowMs = 10'000;

    bool tryAcquire(qint64 nowMs);

private:
    std::array<qint64, kLines> m_accepted{}; // ring of the last kLines acceptance times
    int m_next = 0;
    int m_count = 0;
};

} // namespace server
