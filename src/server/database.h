#pragma once

#include <QSqlDatabase>
#include <QString>

namespace server {

// The lobby's SQLite file: opened in WAL mode with full syncs, so that every committed change
// survives the process being killed, and its schema created or upgraded on open. Each
// instance has its own QtSql connection, so several servers can run in one test process.
class Database
{
public:
    Database();
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Creates the file and its folder when missing. False with errorString() on failure,
    // including a file written by a newer server.
    bool open(const QString &path);
    QString errorString() const { return m_error; }

    QSqlDatabase handle() const { return QSqlDatabase::database(m_connectionName, false); }

    static constexpr int kSchemaVersion = 1;

private:
    bool exec(const QString &statement);
    bool migrate();

    QString m_connectionName;
    QString m_error;
};

} // namespace server
