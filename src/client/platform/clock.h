#pragma once

#include <QDateTime>

namespace client {

// Where the client reads the current time, so that tests can set it.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

class SystemClock final : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

} // namespace client
