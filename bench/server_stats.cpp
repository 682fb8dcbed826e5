// The statistics pages over a large store: 10,000 players with a few rounds each, one of them
// with 10,000 rounds of eight players. Rows:
//   BM_PlayerPage             the heavy player's page (target: under 20 ms)
//   BM_PlayerPageWithoutIndex the same with the index of counted rounds dropped: the baseline
//   BM_FrontPage              "/" with the leaderboard over the 10,000 players (target: < 50 ms)
//   BM_Leaderboard            the leaderboard's query alone, from the running totals
//   BM_LeaderboardByScan      the same ranking summed from the uploads: the baseline
// Options before the benchmark's own: --players=N (10000), --rounds=N (10000).
#include "server/lobby/lobby.h"
#include "server/lobby/roomregistry.h"
#include "server/store/accountstore.h"
#include "server/store/database.h"
#include "server/store/statsstore.h"
#include "server/web/livelobby.h"
#include "server/web/pagestores.h"
#include "server/web/statspages.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <memory>

namespace {

int g_players = 10'000;
int g_rounds = 10'000;

struct Store
{
    QTemporaryDir dir;
    server::Database database;
    std::unique_ptr<server::AccountStore> accounts;
    std::unique_ptr<server::StatsStore> stats;
    server::Lobby lobby;
    server::RoomRegistry rooms;
    std::unique_ptr<server::LiveLobby> live;
    std::unique_ptr<server::PageStores> pageStores;
    std::unique_ptr<server::StatsPages> pages;
    int heavyId = 0;
};
std::unique_ptr<Store> g_store;

protocol::StatsUpload roundOf(int n, int ownIndex, const QString &ownName)
{
    protocol::StatsUpload upload{ownIndex,
                                 QStringLiteral("Round %1").arg(n),
                                 n % 3 ? QStringLiteral("Survival")
                                       : QStringLiteral("Team Survival"),
                                 QStringLiteral("Map %1").arg(n % 17),
                                 {}};
    for (int i = 1; i <= 8; ++i) {
        const QString name = i == ownIndex ? ownName : QStringLiteral("Other%1").arg((n + i) % 97);
        upload.records.append(
            {protocol::NumberText::of((n + i) % 30), name, protocol::NumberText::of(i % 4),
             protocol::NumberText::of((n * i) % 2), QStringLiteral("12"), QStringLiteral("34"),
             QStringLiteral("56"), QStringLiteral("7"), QStringLiteral("Other1")});
    }
    return upload;
}

bool buildStore()
{
    g_store = std::make_unique<Store>();
    Store &s = *g_store;
    if (!s.database.open(s.dir.filePath("stats.sqlite")))
        return false;
    s.accounts = std::make_unique<server::AccountStore>(s.database);
    s.stats = std::make_unique<server::StatsStore>(s.database);
    s.live = std::make_unique<server::LiveLobby>(s.lobby, s.rooms);
    s.pageStores = std::make_unique<server::PageStores>(s.dir.filePath("stats.sqlite"));
    s.pages = std::make_unique<server::StatsPages>(*s.live, *s.pageStores);

    QElapsedTimer timer;
    timer.start();
    s.database.handle().transaction();
    QList<int> ids;
    for (int i = 0; i < g_players; ++i)
        ids.append(s.accounts->create(QStringLiteral("player%1").arg(i), "hash")->id);
    s.database.handle().commit();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    int n = 0;
    // Everyone plays one to three rounds, a tenth of them reset once on the way.
    for (int i = 0; i < g_players; ++i) {
        for (int r = 0; r <= i % 3; ++r)
            s.stats->addRound(ids[i], roundOf(++n, 1 + i % 8, QStringLiteral("player%1").arg(i)),
                              now);
        if (i % 10 == 0)
            s.stats->reset(ids[i], now);
    }
    s.heavyId = ids[g_players / 2];
    for (int r = 0; r < g_rounds; ++r)
        s.stats->addRound(s.heavyId, roundOf(++n, 1 + r % 8, QStringLiteral("heavy")), now);
    std::fprintf(stderr, "store: %d players, %d rounds, built in %.1f s\n", g_players, n,
                 double(timer.elapsed()) / 1000.0);
    return true;
}

void BM_PlayerPage(benchmark::State &state)
{
    const QString id = QString::number(g_store->heavyId);
    qsizetype bytes = 0;
    for (auto _ : state)
        bytes = g_store->pages->playerPage(id)->size();
    state.counters["page_kb"] = double(bytes) / 1024.0;
}

void BM_PlayerPageWithoutIndex(benchmark::State &state)
{
    QSqlQuery query(g_store->database.handle());
    query.exec(QStringLiteral("DROP INDEX stats_uploads_counted"));
    const QString id = QString::number(g_store->heavyId);
    for (auto _ : state)
        benchmark::DoNotOptimize(g_store->pages->playerPage(id));
    query.exec(QStringLiteral("CREATE INDEX stats_uploads_counted ON stats_uploads"
                              " (uploader_id, id, game_type, own_p1, own_p2, own_p3, own_index)"
                              " WHERE own_index > 0"));
}

void BM_FrontPage(benchmark::State &state)
{
    qsizetype bytes = 0;
    for (auto _ : state) {
        g_store->live->publish(); // built afresh, not the copy kept for the same snapshot
        bytes = g_store->pages->frontPage().size();
    }
    state.counters["page_kb"] = double(bytes) / 1024.0;
}

void BM_Leaderboard(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(g_store->stats->leaderboard(server::StatsPages::kLeaderboardRows));
}

// What the leaderboard would cost without running totals: every counted upload since each
// player's last reset, summed per player, then ranked.
void BM_LeaderboardByScan(benchmark::State &state)
{
    int rows = 0;
    for (auto _ : state) {
        QSqlQuery query(g_store->database.handle());
        query.prepare(QStringLiteral(
            "SELECT u.uploader_id, a.name, COUNT(*) AS rounds, TOTAL(u.own_p1), "
            "TOTAL(u.own_p2), TOTAL(u.own_p3) AS p3 FROM stats_uploads u "
            "JOIN accounts a ON a.id = u.uploader_id "
            "WHERE u.own_index > 0 AND u.id > COALESCE((SELECT r.last_upload_id FROM "
            "stats_resets r WHERE r.account_id = u.uploader_id ORDER BY r.id DESC LIMIT 1), 0) "
            "GROUP BY u.uploader_id ORDER BY rounds DESC, p3 DESC, u.uploader_id LIMIT ?"));
        query.addBindValue(server::StatsPages::kLeaderboardRows);
        query.exec();
        rows = 0;
        while (query.next())
            ++rows;
    }
    state.counters["rows"] = rows;
}

BENCHMARK(BM_PlayerPage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlayerPageWithoutIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FrontPage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Leaderboard)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LeaderboardByScan)->Unit(benchmark::kMillisecond);

// Takes this program's own options out of argv before the benchmark library sees them.
void takeSettings(int &argc, char **argv)
{
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        if (arg.startsWith(QLatin1String("--players=")))
            g_players = qMax(2, arg.mid(10).toInt());
        else if (arg.startsWith(QLatin1String("--rounds=")))
            g_rounds = qMax(1, arg.mid(9).toInt());
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    takeSettings(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (!buildStore()) {
        std::fprintf(stderr, "cannot build the store\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_store.reset();
    return 0;
}
