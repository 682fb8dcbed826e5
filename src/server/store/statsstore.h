#pragma once

#include "protocol/stats.h"
#include "server/store/database.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

namespace server {

// A stored round as the pages show it.
struct StoredRound
{
    qint64 id = 0;
    QDateTime received;
    qint64 ownIndex = 0; // 1-based position of the uploader's record
    QString gameType;
    QString headerA;
    QString headerB;
    QList<protocol::StatsRecord> records;
};

// The uploader's own figures in the rounds of one game type.
struct GameTypeTotals
{
    QString gameType;
    int rounds = 0;
    double p1 = 0;
    double p2 = 0;
    double p3 = 0;
};

struct LeaderboardRow
{
    int accountId = 0;
    QString name;
    int rounds = 0;
    double p1 = 0;
    double p2 = 0;
    double p3 = 0;
};

struct RejectedUpload
{
    int senderId = 0;
    QDateTime received;
    QString reason;
    QString upload; // the fields as they came, cut to kMaxRejectedChars
};

// The statistics of the lobby: the rounds players uploaded, the restarts of their figures,
// and the uploads refused as malformed. A round counts for its uploader only, and only
// through his own record; the same round from the same uploader within kRepeatWindowSeconds is
// kept once. A reset keeps every upload and only moves the point from which the figures
// count. Every write is one committed transaction.
class StatsStore
{
public:
    // Busy: another process holds the database's lock or the disk is full; nothing was
    // written.
    enum class Added { Counted, Uncounted, Duplicate, Busy, Failed };

    static constexpr int kRepeatWindowSeconds = 60;
    static constexpr int kRejectedKeptPerSender = 100;
    static constexpr qsizetype kMaxRejectedChars = 4096;

    explicit StatsStore(Database &database);

    // `upload` must be checked (StatsHandler): own index 0..records, numbers where numbers
    // belong. Uncounted: stored, but the uploader named no record of his.
    Added addRound(int uploaderId, const protocol::StatsUpload &upload, const QDateTime &received);
    WriteOutcome addRejected(int senderId, const QString &reason, const QString &upload,
                             const QDateTime &received);
    WriteOutcome reset(int accountId, const QDateTime &at);

    // When the account's figures last restarted; nullopt when they never did.
    std::optional<QDateTime> lastReset(int accountId) const;
    // Since the last reset, by game type in name order.
    QList<GameTypeTotals> totalsByGameType(int accountId) const;
    // The newest `limit` counted rounds since the last reset, newest first, with all players.
    QList<StoredRound> recentRounds(int accountId, int limit) const;
    // Players with counted rounds since their reset: most rounds first, then the highest P3.
    QList<LeaderboardRow> leaderboard(int limit) const;
    QList<RejectedUpload> rejected() const; // oldest first

private:
    qint64 resetMark(int accountId) const;

    Database &m_database;
};

} // namespace server
