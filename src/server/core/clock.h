#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

namespace server {

// Monotonic milliseconds for the limits that count time (chat rate, login slow-down), so that
// tests can move time on without waiting.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual qint64 nowMs() const = 0;
};

class SteadyClock final : public Clock
{
public:
    SteadyClock() { m_timer.start(); }
    qint64 nowMs() const override { return m_timer.elapsed(); }

private:
    QElapsedTimer m_timer;
};

} // namespace server
