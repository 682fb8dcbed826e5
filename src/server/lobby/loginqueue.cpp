#include "server/lobby/loginqueue.h"

namespace server {

LoginQueue::LoginQueue(int parallel, int perAddress, int total, QObject *parent)
    : QObject(parent), m_parallel(qMax(1, parallel)), m_perAddress(perAddress), m_total(total)
{
}

bool LoginQueue::add(const QString &address, QObject *owner, Check check,
                     std::function<void()> abandoned)
{
    std::deque<Entry> &queue = m_byAddress[address];
    if (m_waiting >= m_total || qsizetype(queue.size()) >= m_perAddress) {
        if (queue.empty())
            m_byAddress.remove(address);
        return false;
    }
    if (queue.empty())
        m_turns.push_back(address);
    queue.push_back({owner, std::move(check), std::move(abandoned)});
    ++m_waiting;
    startNext();
    return true;
}

void LoginQueue::startNext()
{
    while (m_running < m_parallel && !m_turns.empty()) {
        const QString address = m_turns.front();
        m_turns.pop_front();
        const auto it = m_byAddress.find(address);
        Entry entry = std::move(it->front());
        it->pop_front();
        --m_waiting;
        if (it->empty())
            m_byAddress.erase(it);
        else
            m_turns.push_back(address);
        if (!entry.owner) {
            entry.abandoned();
            continue;
        }
        ++m_running;
        // Guarded: a result may arrive after the queue is gone at shut-down.
        entry.check([self = QPointer<LoginQueue>(this)] {
            if (!self)
                return;
            --self->m_running;
            self->startNext();
        });
    }
}

} // namespace server
