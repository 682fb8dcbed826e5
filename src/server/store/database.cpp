#include "server/store/database.h"

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
// Version 2: statistics: uploaded rounds and their player records, resets, running totals
// for the leaderboard, and uploads rejected as malformed.
const char *const kTables[] = {"accounts",      "buddies",      "diagnostics",  "stats_uploads",
                               "stats_records", "stats_resets", "stats_totals", "stats_rejected"};

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

// A round is kept once per uploader: round_key identifies its content, whoever sent it, and the
// same content from the same uploader within a minute is one round reported twice. The
// uploader's own record is copied into own_p1..own_p3 so that his figures are summed from
// one covering index; stats_totals holds the same sums since his last reset, for ranking.
const char *const kSchemaV2[] = {
    "CREATE TABLE stats_uploads ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " uploader_id INTEGER NOT NULL REFERENCES accounts(id),"
    " received TEXT NOT NULL,"
    " round_key BLOB NOT NULL,"
    " own_index INTEGER NOT NULL,"
    " game_type TEXT NOT NULL,"
    " header_a TEXT NOT NULL,"
    " header_b TEXT NOT NULL,"
    " own_p1 REAL NOT NULL DEFAULT 0,"
    " own_p2 REAL NOT NULL DEFAULT 0,"
    " own_p3 REAL NOT NULL DEFAULT 0)",
    "CREATE INDEX stats_uploads_by_key ON stats_uploads (uploader_id, round_key, received)",
    "CREATE INDEX stats_uploads_counted ON stats_uploads"
    " (uploader_id, id, game_type, own_p1, own_p2, own_p3, own_index) WHERE own_index > 0",
    "CREATE TABLE stats_records ("
    " upload_id INTEGER NOT NULL REFERENCES stats_uploads(id),"
    " position INTEGER NOT NULL,"
    " p1 TEXT NOT NULL, name TEXT NOT NULL, p2 TEXT NOT NULL, p3 TEXT NOT NULL,"
    " p4 TEXT NOT NULL, p5 TEXT NOT NULL, p6 TEXT NOT NULL, p8 TEXT NOT NULL,"
    " p7 TEXT NOT NULL,"
    " PRIMARY KEY (upload_id, position)) WITHOUT ROWID",
    "CREATE TABLE stats_resets ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " account_id INTEGER NOT NULL REFERENCES accounts(id),"
    " at TEXT NOT NULL,"
    " last_upload_id INTEGER NOT NULL)",
    "CREATE INDEX stats_resets_by_account ON stats_resets (account_id, id)",
    "CREATE TABLE stats_totals ("
    " account_id INTEGER PRIMARY KEY REFERENCES accounts(id),"
    " rounds INTEGER NOT NULL,"
    " p1 REAL NOT NULL, p2 REAL NOT NULL, p3 REAL NOT NULL)",
    "CREATE INDEX stats_totals_rank ON stats_totals (rounds DESC, p3 DESC, account_id)",
    "CREATE TABLE stats_rejected ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " sender_id INTEGER NOT NULL REFERENCES accounts(id),"
    " received TEXT NOT NULL,"
    " reason TEXT NOT NULL,"
    " upload TEXT NOT NULL)",
    "CREATE INDEX stats_rejected_by_sender ON stats_rejected (sender_id, id)",
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

bool Database::openReadOnly(const QString &path, int busyTimeoutMs)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    db.setDatabaseName(path);
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!db.open()) {
        m_error = db.lastError().text();
        return false;
    }
    if (!exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(busyTimeoutMs)))
        return false;
    QSqlQuery version(handle());
    if (!version.exec(QStringLiteral("PRAGMA user_version")) || !version.next() ||
        version.value(0).toInt() != kSchemaVersion) {
        m_error = QStringLiteral("%1 does not hold this server's tables").arg(path);
        return false;
    }
    return true;
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
    if (version < 2) {
        for (const char *statement : kSchemaV2) {
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

bool Database::isBusy(const QSqlError &error)
{
    bool isNumber = false;
    const int code = error.nativeErrorCode().toInt(&isNumber) & 0xFF; // extended codes too
    return isNumber && (code == 5 /* SQLITE_BUSY */ || code == 6 /* SQLITE_LOCKED */ ||
                        code == 13 /* SQLITE_FULL */);
}

} // namespace server
