#pragma once

#include <QList>
#include <QSet>
#include <QTimer>

namespace server {

class Database;

// Each account's buddy list: the ids of the accounts it marked as buddies.
//
// Changes are written in the background of the event loop: add() and remove() queue them,
// and all changes queued during one turn of the loop go to the database in one transaction,
// in the order they were made. When another process holds the database's lock the batch is
// retried a little later rather than waited for, so the lobby never stalls on the disk.
// Reads see the queued changes.
class BuddyStore
{
public:
    explicit BuddyStore(Database &database);
    ~BuddyStore();

    void add(int ownerId, int buddyId);
    void remove(int ownerId, int buddyId);
    QSet<int> buddiesOf(int ownerId) const;

    // Writes what is queued now; false when the database refused it (it stays queued).
    bool flush();

    static constexpr int kRetryMs = 200;

private:
    struct Change
    {
        bool add = true;
        int ownerId = 0;
        int buddyId = 0;
    };
    void schedule();

    Database &m_database;
    QList<Change> m_queued;
    QTimer m_writer;
};

} // namespace server
