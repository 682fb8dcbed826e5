#include "server/store/statsstore.h"

#include "protocol/number.h"

#include "server/core/serverlog.h"
#include "server/store/database.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace server {

namespace {

QString timeText(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QDateTime timeFrom(const QVariant &value)
{
    QDateTime time = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    time.setTimeSpec(Qt::UTC);
    return time;
}

// The same round sent by the same player again has the same key, whichever record he claims.
QByteArray roundKey(const protocol::StatsUpload &upload)
{
    protocol::StatsUpload content = upload;
    content.ownIndex = 0;
    return QCryptographicHash::hash(content.encode(), QCryptographicHash::Sha256);
}

QString notNull(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text; // a null QString binds as SQL NULL
}

// Runs `steps` in one transaction. Busy when another process holds the lock or the disk is
// full (nothing is written and the caller may try again); Failed, logged as `what`, when a step or
// the commit fails otherwise.
template <typename Steps>
WriteOutcome inTransaction(Database &database, const char *what, Steps steps)
{
    QSqlDatabase db = database.handle();
    QSqlError error;
    if (!db.transaction()) {
        error = db.lastError();
    } else if (!steps(error) || !db.commit()) {
        if (!error.isValid())
            error = db.lastError();
        db.rollback();
    } else {
        return WriteOutcome::Written;
    }
    if (Database::isBusy(error))
        return WriteOutcome::Busy;
    qCWarning(lcStore).noquote() << what << "not stored:" << error.text();
    return WriteOutcome::Failed;
}

bool run(QSqlQuery &query, QSqlError &error)
{
    if (query.exec())
        return true;
    error = query.lastError();
    return false;
}

} // namespace

StatsStore::StatsStore(Database &database) : m_database(database) {}

StatsStore::Added StatsStore::addRound(int uploaderId, const protocol::StatsUpload &upload,
                                       const QDateTime &received)
{
    const bool counted = upload.ownIndex > 0 && upload.ownIndex <= upload.records.size();
    protocol::StatsRecord own;
    if (counted)
        own = upload.records[upload.ownIndex - 1];
    Added added = counted ? Added::Counted : Added::Uncounted;
    const WriteOutcome outcome =
        inTransaction(m_database, "statistics upload", [&](QSqlError &error) {
            // A log is uploaded only while it is seconds old, so the same content again within a
            // minute is that log reported twice; later, it is another round that went the same way.
            QSqlQuery earlier(m_database.handle());
            earlier.prepare(QStringLiteral("SELECT 1 FROM stats_uploads WHERE uploader_id = ? AND "
                                           "round_key = ? AND received > ? LIMIT 1"));
            earlier.addBindValue(uploaderId);
            earlier.addBindValue(roundKey(upload));
            earlier.addBindValue(timeText(received.addSecs(-kRepeatWindowSeconds)));
            if (!run(earlier, error))
                return false;
            if (earlier.next()) {
                added = Added::Duplicate;
                return true;
            }
            QSqlQuery round(m_database.handle());
            round.prepare(QStringLiteral(
                "INSERT INTO stats_uploads (uploader_id, received, round_key, own_index, "
                "game_type, header_a, header_b, own_p1, own_p2, own_p3) "
                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
            round.addBindValue(uploaderId);
            round.addBindValue(timeText(received));
            round.addBindValue(roundKey(upload));
            round.addBindValue(upload.ownIndex);
            round.addBindValue(notNull(upload.gameType));
            round.addBindValue(notNull(upload.headerA));
            round.addBindValue(notNull(upload.headerB));
            round.addBindValue(own.p1.value.value_or(0));
            round.addBindValue(own.rounds.value.value_or(0));
            round.addBindValue(own.kills.value.value_or(0));
            if (!run(round, error))
                return false;
            const qint64 id = round.lastInsertId().toLongLong();

            QSqlQuery record(m_database.handle());
            record.prepare(
                QStringLiteral("INSERT INTO stats_records (upload_id, position, p1, name, "
                               "p2, p3, p4, p5, p6, p8, p7) "
                               "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
            for (qsizetype i = 0; i < upload.records.size(); ++i) {
                const protocol::StatsRecord &r = upload.records[i];
                record.bindValue(0, id);
                record.bindValue(1, i + 1);
                int column = 2;
                for (const QString *field :
                     {&r.p1.text, &r.playerName, &r.rounds.text, &r.kills.text, &r.p4, &r.p5, &r.p6,
                      &r.p8, &r.killedBy})
                    record.bindValue(column++, notNull(*field));
                if (!run(record, error))
                    return false;
            }
            if (!counted)
                return true;
            QSqlQuery totals(m_database.handle());
            totals.prepare(QStringLiteral(
                "INSERT INTO stats_totals (account_id, rounds, p1, p2, p3) VALUES (?, 1, ?, ?, ?) "
                "ON CONFLICT (account_id) DO UPDATE SET rounds = rounds + 1, "
                "p1 = p1 + excluded.p1, p2 = p2 + excluded.p2, p3 = p3 + excluded.p3"));
            totals.addBindValue(uploaderId);
            totals.addBindValue(own.p1.value.value_or(0));
            totals.addBindValue(own.rounds.value.value_or(0));
            totals.addBindValue(own.kills.value.value_or(0));
            return run(totals, error);
        });
    switch (outcome) {
    case WriteOutcome::Written:
        return added;
    case WriteOutcome::Busy:
        return Added::Busy;
    case WriteOutcome::Failed:
        break;
    }
    return Added::Failed;
}

WriteOutcome StatsStore::addRejected(int senderId, const QString &reason, const QString &upload,
                                     const QDateTime &received)
{
    return inTransaction(m_database, "rejected statistics upload", [&](QSqlError &error) {
        QSqlQuery insert(m_database.handle());
        insert.prepare(QStringLiteral("INSERT INTO stats_rejected (sender_id, received, reason, "
                                      "upload) VALUES (?, ?, ?, ?)"));
        insert.addBindValue(senderId);
        insert.addBindValue(timeText(received));
        insert.addBindValue(notNull(reason.left(kMaxRejectedChars)));
        insert.addBindValue(notNull(upload.left(kMaxRejectedChars)));
        QSqlQuery prune(m_database.handle());
        prune.prepare(QStringLiteral("DELETE FROM stats_rejected WHERE sender_id = ? AND id NOT IN "
                                     "(SELECT id FROM stats_rejected WHERE sender_id = ? "
                                     "ORDER BY id DESC LIMIT ?)"));
        prune.addBindValue(senderId);
        prune.addBindValue(senderId);
        prune.addBindValue(kRejectedKeptPerSender);
        return run(insert, error) && run(prune, error);
    });
}

WriteOutcome StatsStore::reset(int accountId, const QDateTime &at)
{
    return inTransaction(m_database, "statistics reset", [&](QSqlError &error) {
        QSqlQuery mark(m_database.handle());
        mark.prepare(QStringLiteral("INSERT INTO stats_resets (account_id, at, last_upload_id) "
                                    "VALUES (?, ?, (SELECT COALESCE(MAX(id), 0) FROM "
                                    "stats_uploads))"));
        mark.addBindValue(accountId);
        mark.addBindValue(timeText(at));
        // The running totals are derived from the uploads after the mark: none yet.
        QSqlQuery totals(m_database.handle());
        totals.prepare(QStringLiteral("DELETE FROM stats_totals WHERE account_id = ?"));
        totals.addBindValue(accountId);
        return run(mark, error) && run(totals, error);
    });
}

qint64 StatsStore::resetMark(int accountId) const
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT last_upload_id FROM stats_resets WHERE account_id = ? "
                                 "ORDER BY id DESC LIMIT 1"));
    query.addBindValue(accountId);
    if (!query.exec() || !query.next())
        return 0;
    return query.value(0).toLongLong();
}

std::optional<QDateTime> StatsStore::lastReset(int accountId) const
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral(
        "SELECT at FROM stats_resets WHERE account_id = ? ORDER BY id DESC LIMIT 1"));
    query.addBindValue(accountId);
    if (!query.exec() || !query.next())
        return std::nullopt;
    return timeFrom(query.value(0));
}

QList<GameTypeTotals> StatsStore::totalsByGameType(int accountId) const
{
    QList<GameTypeTotals> rows;
    QSqlQuery query(m_database.handle());
    query.prepare(
        QStringLiteral("SELECT game_type, COUNT(*), TOTAL(own_p1), TOTAL(own_p2), TOTAL(own_p3) "
                       "FROM stats_uploads WHERE uploader_id = ? AND own_index > 0 AND id > ? "
                       "GROUP BY game_type ORDER BY game_type"));
    query.addBindValue(accountId);
    query.addBindValue(resetMark(accountId));
    if (!query.exec())
        return rows;
    while (query.next()) {
        rows.append({query.value(0).toString(), query.value(1).toInt(), query.value(2).toDouble(),
                     query.value(3).toDouble(), query.value(4).toDouble()});
    }
    return rows;
}

QList<StoredRound> StatsStore::recentRounds(int accountId, int limit) const
{
    QList<StoredRound> rounds;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral(
        "SELECT id, received, own_index, game_type, header_a, header_b FROM stats_uploads "
        "WHERE uploader_id = ? AND own_index > 0 AND id > ? ORDER BY id DESC LIMIT ?"));
    query.addBindValue(accountId);
    query.addBindValue(resetMark(accountId));
    query.addBindValue(limit);
    if (!query.exec())
        return rounds;
    while (query.next()) {
        rounds.append({query.value(0).toLongLong(),
                       timeFrom(query.value(1)),
                       query.value(2).toLongLong(),
                       query.value(3).toString(),
                       query.value(4).toString(),
                       query.value(5).toString(),
                       {}});
    }
    QSqlQuery records(m_database.handle());
    records.prepare(QStringLiteral("SELECT p1, name, p2, p3, p4, p5, p6, p8, p7 FROM "
                                   "stats_records WHERE upload_id = ? ORDER BY position"));
    for (StoredRound &round : rounds) {
        records.bindValue(0, round.id);
        if (!records.exec())
            continue;
        while (records.next()) {
            const auto f = [&records](int i) { return records.value(i).toString(); };
            const auto n = [&f](int i) { return protocol::NumberText::read(f(i)); };
            round.records.append({n(0), f(1), n(2), n(3), f(4), f(5), f(6), f(7), f(8)});
        }
    }
    return rounds;
}

QList<LeaderboardRow> StatsStore::leaderboard(int limit) const
{
    QList<LeaderboardRow> rows;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral(
        "SELECT t.account_id, a.name, t.rounds, t.p1, t.p2, t.p3 FROM stats_totals t "
        "JOIN accounts a ON a.id = t.account_id WHERE t.rounds > 0 "
        "ORDER BY t.rounds DESC, t.p3 DESC, t.account_id LIMIT ?"));
    query.addBindValue(limit);
    if (!query.exec())
        return rows;
    while (query.next()) {
        rows.append({query.value(0).toInt(), query.value(1).toString(), query.value(2).toInt(),
                     query.value(3).toDouble(), query.value(4).toDouble(),
                     query.value(5).toDouble()});
    }
    return rows;
}

QList<RejectedUpload> StatsStore::rejected() const
{
    QList<RejectedUpload> rows;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral(
        "SELECT sender_id, received, reason, upload FROM stats_rejected ORDER BY id"));
    if (!query.exec())
        return rows;
    while (query.next()) {
        rows.append({query.value(0).toInt(), timeFrom(query.value(1)), query.value(2).toString(),
                     query.value(3).toString()});
    }
    return rows;
}

} // namespace server
