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
// in the order they were made. When the database refuses a batch (another process holds its
// lock, the disk is full) the batch stays queued and is tried again after 0.2 s, then after
// twice as long each time up to 30 s, rather than waited for, so the lobby never stalls on the
// disk. The first refusal is logged, then one line per 30 s while it lasts, and the recovery.
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
    static constexpr int kMaxRetryMs = 30'000;

private:
    struct Change
    {
        bool add = true;
        int ownerId = 0;
        int buddyId = 0;
    };
    void schedule();
    void writeOrRetry();

    Database &m_database;
    QList<Change> m_queued;
    QTimer m_writer;
    QString m_lastError; // why the last flush() was refused
    int m_refusals = 0;  // in a row
};

} // namespace server
