#pragma once

#include <QDateTime>

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

// A clock that stands still until it is set or advanced.
class ManualClock final : public Clock
{
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 1, 1), QTime(12, 0)))
        : m_now(std::move(start))
    {
    }
    QDateTime now() const override { return m_now; }
    void set(const QDateTime &time) { m_now = time; }
    void advanceSeconds(qint64 seconds) { m_now = m_now.addSecs(seconds); }

private:
    QDateTime m_now;
};
