#include "server/store/buddystore.h"

#include "server/core/serverlog.h"
#include "server/store/database.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>

namespace server {

BuddyStore::BuddyStore(Database &database) : m_database(database)
{
    m_writer.setSingleShot(true);
    QObject::connect(&m_writer, &QTimer::timeout, [this] { writeOrRetry(); });
}

BuddyStore::~BuddyStore()
{
    if (!flush())
        qCWarning(lcStore).noquote() << "buddy changes lost at shut-down:" << m_queued.size()
                                     << "not written:" << m_lastError;
}

void BuddyStore::add(int ownerId, int buddyId)
{
    m_queued.append({true, ownerId, buddyId});
    schedule();
}

void BuddyStore::remove(int ownerId, int buddyId)
{
    m_queued.append({false, ownerId, buddyId});
    schedule();
}

void BuddyStore::schedule()
{
    if (!m_writer.isActive())
        m_writer.start(0);
}

void BuddyStore::writeOrRetry()
{
    if (flush()) {
        if (m_refusals > 0)
            qCInfo(lcStore).noquote()
                << "buddy changes written after" << m_refusals << "refused tries";
        m_refusals = 0;
        return;
    }
    const int delay = std::min(kRetryMs << std::min(m_refusals, 8), kMaxRetryMs);
    if (m_refusals == 0 || delay == kMaxRetryMs)
        qCWarning(lcStore).noquote() << "buddy changes not written, retrying in" << delay
                                     << "ms:" << m_queued.size() << "waiting:" << m_lastError;
    ++m_refusals;
    m_writer.start(delay);
}

bool BuddyStore::flush()
{
    if (m_queued.isEmpty())
        return true;
    QSqlDatabase db = m_database.handle();
    QString error;
    if (db.transaction()) {
        QSqlQuery insert(db);
        QSqlQuery erase(db);
        insert.prepare(
            QStringLiteral("INSERT OR IGNORE INTO buddies (owner_id, buddy_id) VALUES (?, ?)"));
        erase.prepare(QStringLiteral("DELETE FROM buddies WHERE owner_id = ? AND buddy_id = ?"));
        for (const Change &change : std::as_const(m_queued)) {
            QSqlQuery &query = change.add ? insert : erase;
            query.bindValue(0, change.ownerId);
            query.bindValue(1, change.buddyId);
            if (!query.exec()) {
                error = query.lastError().text();
                break;
            }
        }
        if (error.isEmpty() && db.commit()) {
            m_queued.clear();
            m_lastError.clear();
            return true;
        }
        if (error.isEmpty())
            error = db.lastError().text();
        db.rollback();
    } else {
        error = db.lastError().text();
    }
    m_lastError = error;
    return false;
}

QSet<int> BuddyStore::buddiesOf(int ownerId) const
{
    QSet<int> ids;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT buddy_id FROM buddies WHERE owner_id = ?"));
    query.addBindValue(ownerId);
    if (query.exec()) {
        while (query.next())
            ids.insert(query.value(0).toInt());
    } else {
        qCWarning(lcStore).noquote()
            << "buddy list of" << ownerId << "not read:" << query.lastError().text();
    }
    for (const Change &change : m_queued) {
        if (change.ownerId != ownerId)
            continue;
        if (change.add)
            ids.insert(change.buddyId);
        else
            ids.remove(change.buddyId);
    }
    return ids;
}

} // namespace server
