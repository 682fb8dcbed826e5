#include "client/game/fullgamewatch.h"

#include "client/platform/tickcount.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"

namespace client {

FullGameWatch::FullGameWatch(const RoomListModel &rooms, const SessionState &session,
                             const TickCount &ticks, QObject *parent)
    : QObject(parent), m_rooms(rooms), m_session(session), m_ticks(ticks)
{
    // A second is fine enough for a 15 s interval and costs nothing without a watch.
    m_checks.setInterval(1000);
    connect(&m_checks, &QTimer::timeout, this, &FullGameWatch::check);
}

bool FullGameWatch::canWatch(const QString &address) const
{
    const int row = m_rooms.findRowByTag(address, true);
    return row >= 0 && m_rooms.isFull(row) && find(address) < 0 && m_watches.size() < kMaxWatches &&
           !m_session.inGame;
}

bool FullGameWatch::watch(const QString &address)
{
    if (!canWatch(address))
        return false;
    m_watches.append(Watch{address});
    m_checks.start();
    ask(m_watches.last());
    Q_EMIT watchesChanged();
    return true;
}

void FullGameWatch::stop(const QString &address)
{
    if (endWhere([&](const Watch &watch) { return watch.address == address; }))
        Q_EMIT watchesChanged();
}

bool FullGameWatch::isWatching(const QString &address) const
{
    return find(address) >= 0;
}

QStringList FullGameWatch::watched() const
{
    QStringList addresses;
    for (const Watch &watch : m_watches)
        addresses << watch.address;
    return addresses;
}

void FullGameWatch::check()
{
    const qint64 now = m_ticks.now();
    QStringList due;
    const bool ended = endWhere([&](const Watch &watch) {
        if (m_session.inGame || m_rooms.findRowByTag(watch.address, true) < 0)
            return true;
        if (now - watch.askedAt < kAskIntervalMs)
            return false;
        if (watch.unanswered >= kMaxUnanswered)
            return true;
        due << watch.address;
        return false;
    });
    // Asked only after the list is settled: a slot that answers at once may end its watch.
    for (const QString &address : std::as_const(due)) {
        const qsizetype at = find(address);
        if (at >= 0)
            ask(m_watches[at]);
    }
    if (ended)
        Q_EMIT watchesChanged();
}

void FullGameWatch::gameAnswered(const QString &address, bool full)
{
    const qsizetype at = find(address);
    if (at < 0 || m_session.inGame)
        return;
    m_watches[at].unanswered = 0;
    if (full)
        return;
    m_watches.removeAt(at);
    if (m_watches.isEmpty())
        m_checks.stop();
    Q_EMIT roomFreed(address);
    Q_EMIT watchesChanged();
}

void FullGameWatch::ask(Watch &watch)
{
    watch.askedAt = m_ticks.now();
    ++watch.unanswered;
    Q_EMIT statusWanted(watch.address);
}

qsizetype FullGameWatch::find(const QString &address) const
{
    for (qsizetype i = 0; i < m_watches.size(); ++i) {
        if (m_watches[i].address == address)
            return i;
    }
    return -1;
}

bool FullGameWatch::endWhere(const std::function<bool(const Watch &)> &ends)
{
    const qsizetype before = m_watches.size();
    m_watches.removeIf(ends);
    if (m_watches.isEmpty())
        m_checks.stop();
    return m_watches.size() != before;
}

} // namespace client
