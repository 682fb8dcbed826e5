#pragma once

#include <QSet>

namespace server {

class Database;

// Each account's buddy list: the ids of the accounts it marked as buddies.
class BuddyStore
{
public:
    explicit BuddyStore(Database &database);

    // False when either account does not exist or the write failed; adding twice is fine.
    bool add(int ownerId, int buddyId);
    bool remove(int ownerId, int buddyId);
    QSet<int> buddiesOf(int ownerId) const;

private:
    Database &m_database;
};

} // namespace server
