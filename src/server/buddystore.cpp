#include "server/buddystore.h"

#include "server/database.h"

#include <QSqlQuery>
#include <QVariant>

namespace server {

BuddyStore::BuddyStore(Database &database) : m_database(database) {}

bool BuddyStore::add(int ownerId, int buddyId)
{
    QSqlQuery query(m_database.handle());
    query.prepare(
        QStringLiteral("INSERT OR IGNORE INTO buddies (owner_id, buddy_id) VALUES (?, ?)"));
    query.addBindValue(ownerId);
    query.addBindValue(buddyId);
    return query.exec();
}

bool BuddyStore::remove(int ownerId, int buddyId)
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("DELETE FROM buddies WHERE owner_id = ? AND buddy_id = ?"));
    query.addBindValue(ownerId);
    query.addBindValue(buddyId);
    return query.exec();
}

QSet<int> BuddyStore::buddiesOf(int ownerId) const
{
    QSet<int> ids;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT buddy_id FROM buddies WHERE owner_id = ?"));
    query.addBindValue(ownerId);
    if (!query.exec())
        return ids;
    while (query.next())
        ids.insert(query.value(0).toInt());
    return ids;
}

} // namespace server
