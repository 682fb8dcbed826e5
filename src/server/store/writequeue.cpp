#include "server/store/writequeue.h"

#include "server/core/serverlog.h"

namespace server {

WriteQueue::WriteQueue(QString what) : m_what(std::move(what))
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(kRetryMs);
    QObject::connect(&m_retry, &QTimer::timeout, [this] { drain(); });
}

void WriteQueue::submit(Write write)
{
    if (m_waiting.empty() && write() != WriteOutcome::Busy)
        return;
    if (qsizetype(m_waiting.size()) >= kMaxWaiting) {
        qCWarning(lcStore).noquote()
            << m_what << "dropped: the database has been locked for" << kMaxWaiting << "writes";
        return;
    }
    // The first to wait was just tried; the others wait behind it without a try of their own.
    if (m_waiting.empty()) {
        qCWarning(lcStore).noquote() << m_what << "waits: the database refuses writes for now";
        m_retry.start();
    }
    m_waiting.push_back(std::move(write));
}

void WriteQueue::drain()
{
    while (!m_waiting.empty()) {
        if (m_waiting.front()() == WriteOutcome::Busy) {
            m_retry.start();
            return;
        }
        m_waiting.pop_front();
    }
    qCInfo(lcStore).noquote() << m_what << "written after the database took writes again";
}

} // namespace server
