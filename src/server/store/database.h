#pragma once

#include <QSqlDatabase>
#include <QString>

namespace server {

// How a write ended: stored; refused for now because another process holds the file's lock
// or the disk is full, worth another try; or failed for good (logged).
enum class WriteOutcome { Written, Busy, Failed };

// The lobby's SQLite file, opened in WAL mode with synchronous=NORMAL: a commit is written to
// the log before it returns, so it survives the process being killed at any moment; only a
// crash of the whole machine can lose the commits since the last checkpoint. Full syncs would
// put a disk flush on the event loop for every write.
//
// Opening checks the file before anyone relies on it: it must be writable, pass SQLite's
// quick check and hold the expected tables; otherwise open() fails with a clear message. A new
// file is created readable by its owner only (it holds password hashes). Each instance has
// its own QtSql connection, so several servers can run in one test process.
class Database
{
public:
    Database();
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Creates the file and its folder when missing. False with errorString() on failure,
    // including a file written by a newer server.
    // `busyTimeoutMs`: how long a statement waits for another process's lock before failing.
    bool open(const QString &path, int busyTimeoutMs = 5000);
    // A reader beside the server's writer (the web pages): the file must exist with this
    // server's schema; nothing is created, migrated or written. Usable from the thread that
    // opened it only, as every QtSql connection.
    bool openReadOnly(const QString &path, int busyTimeoutMs = 1000);
    QString errorString() const { return m_error; }

    QSqlDatabase handle() const { return QSqlDatabase::database(m_connectionName, false); }

    static constexpr int kSchemaVersion = 2;

    // Whether `error` passes with time: SQLite's "database is locked", "table is locked" or
    // "database or disk is full".
    static bool isBusy(const QSqlError &error);

private:
    bool exec(const QString &statement);
    bool migrate();
    bool check(const QString &path);

    QString m_connectionName;
    QString m_error;
};

} // namespace server
