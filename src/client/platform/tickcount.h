#pragma once

#include <QElapsedTimer>

namespace client {

// A millisecond tick counter for measuring round trips, so that tests can set the time.
class TickCount
{
public:
    virtual ~TickCount() = default;
    virtual qint64 now() const = 0;
};

// Milliseconds on the monotonic clock, counted from the object's creation; wall-clock
// changes never show up as pings.
class SystemTickCount final : public TickCount
{
public:
    SystemTickCount() { m_started.start(); }
    qint64 now() const override { return m_started.elapsed(); }

private:
    QElapsedTimer m_started;
};

} // namespace client
