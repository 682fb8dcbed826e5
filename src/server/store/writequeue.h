#pragma once

#include "server/store/database.h"

#include <QString>
#include <QTimer>
#include <deque>
#include <functional>

namespace server {

// Writes that find the database locked by another process (an admin command, a backup) or the
// disk full wait here and are tried again, oldest first, every kRetryMs; a write that comes while
// others wait queues behind them, so that an upload and a reset after it keep their order. The
// lobby never blocks on the lock. Past kMaxWaiting waiting writes, new ones are dropped with a log
// line.
class WriteQueue
{
public:
    // Busy keeps the write waiting; Written and Failed (logged by the write) end it.
    using Write = std::function<WriteOutcome()>;

    // A try may hold the event loop for the database's busy timeout; tries are a second apart.
    static constexpr int kRetryMs = 1000;
    static constexpr qsizetype kMaxWaiting = 10000;

    explicit WriteQueue(QString what);

    void submit(Write write);
    qsizetype waiting() const { return qsizetype(m_waiting.size()); }

private:
    void drain();

    QString m_what;
    std::deque<Write> m_waiting;
    QTimer m_retry;
};

} // namespace server
