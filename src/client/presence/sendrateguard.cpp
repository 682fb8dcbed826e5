#include "client/presence/sendrateguard.h"

#include "client/platform/clock.h"
#include "client/session/sessionstate.h"

namespace client {

namespace {

QDateTime toWholeSeconds(QDateTime time)
{
    const QTime t = time.time();
    time.setTime(QTime(t.hour(), t.minute(), t.second()));
    return time;
}

} // namespace

SendRateGuard::SendRateGuard(SessionState &session, const Clock &clock)
    : m_session(session), m_clock(clock)
{
}

int SendRateGuard::secondsToWait() const
{
    const QDateTime last = m_session.textSendTime;
    if (!last.isValid())
        return 0;
    const qint64 passed = toWholeSeconds(last).secsTo(toWholeSeconds(m_clock.now()));
    // A clock that went back waits the whole interval from now.
    if (passed < 0)
        return kIntervalSeconds + 1;
    return int(std::max<qint64>(0, kIntervalSeconds + 1 - passed));
}

bool SendRateGuard::tryPass()
{
    const QDateTime now = toWholeSeconds(m_clock.now());
    const QDateTime last = m_session.textSendTime;
    // An unset time (nothing sent, start-up not done) lets the first send through.
    if (last.isValid() && toWholeSeconds(last).secsTo(now) <= kIntervalSeconds)
        return false;
    m_session.textSendTime = now;
    return true;
}

} // namespace client
