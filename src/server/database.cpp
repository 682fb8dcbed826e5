#include "server/database.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

namespace server {

namespace {
QAtomicInteger<int> s_connectionCounter;

// Version 1: accounts with a case-folded unique key, buddy lists, diagnostics.
const char *const kTables[] = {"accounts", "buddies", "diagnostics"};

const char *const kSchemaV1[] = {
    "CREATE TABLE accounts ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " name TEXT NOT NULL,"
    " name_key TEXT NOT NULL UNIQUE,"
    " password_hash TEXT NOT NULL,"
    " email TEXT NOT NULL DEFAULT '',"
    " moderator INTEGER NOT NULL DEFAULT 0,"
    " chat_colour INTEGER NOT NULL DEFAULT 0,"
    " created TEXT NOT NULL)",
    "CREATE TABLE buddies ("
    " owner_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,"
    " buddy_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,"
    " PRIMARY KEY (owner_id, buddy_id)) WITHOUT ROWID",
    "CREATE TABLE diagnostics ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " sender_id INTEGER NOT NULL REFERENCES accounts(id),"
    " received TEXT NOT NULL,"
    " text TEXT NOT NULL)",
};
} // namespace

Database::Database()
    : m_connectionName(
          QStringLiteral("quorvel-server-%1").arg(s_connectionCounter.fetchAndAddRelaxed(1)))
{
}

Database::~Database()
{
    {
        QSqlDatabase db = handle();
        if (db.isValid())
            db.close();
    }
    if (QSqlDatabase::contains(m_connectionName))
        QSqlDatabase::removeDatabase(m_connectionName);
}

bool Database::exec(const QString &statement)
{
    QSqlQuery query(handle());
    if (!query.exec(statement)) {
        m_error = query.lastError().text();
        return false;
    }
    return true;
}

bool Database::open(const QString &path, int busyTimeoutMs)
{
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath())) {
        m_error = QStringLiteral("cannot create the folder %1").arg(info.absolutePath());
        return false;
    }
    if (!info.exists()) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) ||
            !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
            m_error = QStringLiteral("cannot create %1: %2").arg(path, file.errorString());
            return false;
        }
    } else if (!info.isWritable()) {
        m_error = QStringLiteral("%1 is not writable").arg(path);
        return false;
    }
    // The log and index files beside it are created and removed as the server runs.
    if (!QFileInfo(info.absolutePath()).isWritable()) {
        m_error = QStringLiteral("the folder %1 is not writable").arg(info.absolutePath());
        return false;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    db.setDatabaseName(path);
    if (!db.open()) {
        m_error = db.lastError().text();
        return false;
    }
    // A busy timeout lets the admin commands write while a server runs on the same file.
    if (!exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(busyTimeoutMs)))
        return false;
    QSqlQuery mode(handle());
    if (!mode.exec(QStringLiteral("PRAGMA journal_mode = WAL")) || !mode.next() ||
        mode.value(0).toString().compare(QLatin1String("wal"), Qt::CaseInsensitive) != 0) {
        m_error = QStringLiteral("%1 is not a database this server can use (%2)")
                      .arg(path, mode.lastError().text());
        return false;
    }
    mode.finish();
    if (!exec(QStringLiteral("PRAGMA synchronous = NORMAL")) ||
        !exec(QStringLiteral("PRAGMA foreign_keys = ON")))
        return false;
    return migrate() && check(path);
}

bool Database::check(const QString &path)
{
    QSqlQuery query(handle());
    if (!query.exec(QStringLiteral("PRAGMA quick_check")) || !query.next() ||
        query.value(0).toString() != QLatin1String("ok")) {
        const QString detail =
            query.lastError().isValid() ? query.lastError().text() : query.value(0).toString();
        m_error = QStringLiteral("%1 is damaged (%2)").arg(path, detail);
        return false;
    }
    query.finish();
    for (const char *table : kTables) {
        query.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND "
                                     "name = ?"));
        query.addBindValue(QString::fromLatin1(table));
        if (!query.exec() || !query.next()) {
            m_error = QStringLiteral("%1 lacks the table %2").arg(path, QString::fromLatin1(table));
            return false;
        }
        query.finish();
    }
    // A write that changes nothing proves the file takes writes (a read-only mount does not).
    if (!exec(QStringLiteral("BEGIN IMMEDIATE")) || !exec(QStringLiteral("ROLLBACK"))) {
        m_error = QStringLiteral("%1 does not take writes (%2)").arg(path, m_error);
        return false;
    }
    return true;
}

bool Database::migrate()
{
    QSqlQuery query(handle());
    if (!query.exec(QStringLiteral("PRAGMA user_version")) || !query.next()) {
        m_error = query.lastError().text();
        return false;
    }
    const int version = query.value(0).toInt();
    query.finish();
    if (version > kSchemaVersion) {
        m_error = QStringLiteral("the database has schema version %1, newer than this server's %2")
                      .arg(version)
                      .arg(kSchemaVersion);
        return false;
    }
    if (version == kSchemaVersion)
        return true;

    QSqlDatabase db = handle();
    if (!db.transaction()) {
        m_error = db.lastError().text();
        return false;
    }
    if (version < 1) {
        for (const char *statement : kSchemaV1) {
            if (!exec(QString::fromLatin1(statement))) {
                db.rollback();
                return false;
            }
        }
    }
    if (!exec(QStringLiteral("PRAGMA user_version = %1").arg(kSchemaVersion))) {
        db.rollback();
        return false;
    }
    if (!db.commit()) {
        m_error = db.lastError().text();
        return false;
    }
    return true;
}

} // namespace server
