#pragma once

namespace client {

class Clock;
class SessionState;

// The one guard that lobby chat and private messages share: at most one accepted send per
// more than three seconds, counted in whole seconds from `SessionState::textSendTime`.
class SendRateGuard
{
public:
    static constexpr int kIntervalSeconds = 3;

    SendRateGuard(SessionState &session, const Clock &clock);

    // True when more than three seconds have passed since the last accepted send; the send
    // is then accepted and the guard starts again from now. False changes nothing.
    bool tryPass();
    // Whole seconds until `tryPass` would pass; 0 when it would now.
    int secondsToWait() const;

private:
    SessionState &m_session;
    const Clock &m_clock;
};

} // namespace client
