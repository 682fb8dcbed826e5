#include "server/buddystore.h"

#include "server/database.h"
#include "server/serverlog.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace server {

BuddyStore::BuddyStore(Database &database) : m_database(database)
{
    m_writer.setSingleShot(true);
    QObject::connect(&m_writer, &QTimer::timeout, [this] {
        if (!flush())
            m_writer.start(kRetryMs);
    });
}

BuddyStore::~BuddyStore()
{
    flush();
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
            return true;
        }
        if (error.isEmpty())
            error = db.lastError().text();
        db.rollback();
    } else {
        error = db.lastError().text();
    }
    qCWarning(lcStore).noquote() << "buddy changes not written, retrying:" << m_queued.size()
                                 << "waiting:" << error;
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
