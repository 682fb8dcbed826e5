// Statistics uploads and resets over a real lobby connection, and the web pages that show them.
#include "lobbytest.h"

#include "protocol/stats.h"

#include <QSqlQuery>

using protocol::StatsRecord;
using protocol::StatsUpload;
using server::StoredRound;

namespace {

StatsRecord player(const QString &name, const QString &p1 = "3", const QString &p2 = "2",
                   const QString &p3 = "1")
{
    using protocol::NumberText;
    return {NumberText::read(p1),
            name,
            NumberText::read(p2),
            NumberText::read(p3),
            "4",
            "5",
            "6",
            "8",
            "Killer"};
}

StatsUpload round(qint64 own, const QList<StatsRecord> &players, const QString &headerA = "Round 1")
{
    return {own, headerA, "Survival", "Map", players};
}

int roundsOf(const TestLobby &lobby, int accountId)
{
    int rounds = 0;
    for (const server::GameTypeTotals &t : lobby.stats.totalsByGameType(accountId))
        rounds += t.rounds;
    return rounds;
}

QString pageOf(TestLobby &lobby, int accountId)
{
    return lobby.fetch(QStringLiteral("/?p=stats&id=%1").arg(accountId)).body;
}

// 16 players with texts as long as the lobby keeps them: more than a page of records.
StatsUpload bigRound()
{
    StatsRecord other = player("Other");
    other.p4 = other.p5 = other.p6 = other.p8 = QString(server::StatsHandler::kMaxTextChars, u'o');
    return round(1, QList<StatsRecord>{player("Anna")} + QList<StatsRecord>(15, other));
}

// Plays a full disk for the server's connection: not one page more than the file has now.
bool setDiskFull(TestLobby &lobby, bool full)
{
    QSqlQuery query(lobby.database.handle());
    if (!query.exec("PRAGMA page_count") || !query.next())
        return false;
    const QString limit = full ? query.value(0).toString() : QStringLiteral("1073741823");
    return query.exec("PRAGMA max_page_count = " + limit);
}

// The fields of a round with `records` copies of one record, as a client would send them.
QStringList uploadFields(const QString &own, const QString &gameType, int records)
{
    QStringList fields{own, "A", gameType, "B"};
    for (int i = 0; i < records; ++i)
        fields += QStringList{"1", "Anna", "2", "0", "4", "5", "6", "8", "Anna"};
    return fields << QString();
}

} // namespace

class TstStats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void malformedUploadsAreKeptApart_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("reason");
        const auto one = [](qsizetype field, const QString &value) {
            QStringList fields = uploadFields("1", "Survival", 1);
            fields[field] = value;
            return fields;
        };
        QTest::newRow("game type unknown (untranslated)")
            << uploadFields("1", QString::fromUtf8("Überleben"), 1) << "game type";
        QStringList partial = uploadFields("1", "Survival", 1);
        partial.insert(partial.size() - 1, "extra");
        // Anything the decoder refuses (its cases are the protocol's to test) is kept too.
        QTest::newRow("part of a record") << partial << "records of 9";
        QTest::newRow("17 records") << uploadFields("1", "Team Survival", 17) << "more than 16";
        QTest::newRow("own index past the records")
            << uploadFields("2", "Survival", 1) << "own index";
        QTest::newRow("negative own index") << uploadFields("-1", "Survival", 1) << "own index";
        QTest::newRow("P1 not a number") << one(4, "lots") << "P1";
        QTest::newRow("P3 a hex number") << one(7, "0x10") << "P3";
        // Counted figures have one form: what the games write, and no other.
        QTest::newRow("P2 negative") << one(6, "-5") << "P2";
        QTest::newRow("P2 with a plus") << one(6, "+5") << "P2";
        QTest::newRow("P2 with a fraction") << one(6, "5.0") << "P2";
        QTest::newRow("P2 with a blank") << one(6, " 5") << "P2";
        QTest::newRow("P3 of ten digits") << one(7, "1234567890") << "P3";
        QTest::newRow("P1 only a minus") << one(4, "-") << "P1";
        QTest::newRow("own index with a plus") << uploadFields("+1", "Survival", 1) << "own index";
    }
    void malformedUploadsAreKeptApart()
    {
        QFETCH(QStringList, fields);
        QFETCH(QString, reason);
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        anna->send(Code::StatsUpload, fields);
        QVERIFY(lobby.sync(anna));

        const QList<server::RejectedUpload> rejected = lobby.stats.rejected();
        QCOMPARE(rejected.size(), 1);
        QCOMPARE(rejected[0].senderId, lobby.idOf("Anna"));
        QVERIFY2(rejected[0].reason.contains(reason), qPrintable(rejected[0].reason));
        QVERIFY(rejected[0].upload.contains(fields[2])); // what came, for whoever looks into it
        QCOMPARE(roundsOf(lobby, lobby.idOf("Anna")), 0);
        QVERIFY(anna->isConnected());
    }

    // A round counts once for each player who uploads it, and then only with his own record,
    // until he resets.
    void figuresBelongToTheUploader()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        const int annaId = lobby.idOf("Anna");
        const int bertId = lobby.idOf("Bert");
        const QList<StatsRecord> players{player("Bert", "90", "90", "90"),
                                         player("Anna", "1", "2", "1")};

        anna->sendRaw(round(2, players).encode());
        anna->sendRaw(round(2, players).encode()); // the log reported twice
        anna->sendRaw(round(1, players).encode()); // the same round, claiming Bert's record
        anna->sendRaw(round(0, players, "Round 2").encode()); // found no record of hers
        QVERIFY(lobby.sync(anna));
        QCOMPARE(roundsOf(lobby, annaId), 1);
        QCOMPARE(roundsOf(lobby, bertId), 0);
        const server::GameTypeTotals annas = lobby.stats.totalsByGameType(annaId).value(0);
        QCOMPARE(annas.p1 + annas.p2 + annas.p3, 4.0);
        QVERIFY(pageOf(lobby, bertId).contains("No rounds yet."));

        bert->sendRaw(round(1, players).encode());
        QVERIFY(lobby.sync(bert));
        QCOMPARE(roundsOf(lobby, annaId), 1);
        QCOMPARE(roundsOf(lobby, bertId), 1);
        QCOMPARE(lobby.stats.totalsByGameType(bertId).value(0).p3, 90.0);
        const QList<server::LeaderboardRow> leaders = lobby.stats.leaderboard(10);
        QCOMPARE(leaders.size(), 2);
        QCOMPARE(leaders[0].name, "Bert"); // one round each; Bert's P3 is higher
        QCOMPARE(leaders[1].p3, 1.0);
        // Each page shows the round with both players.
        for (const int id : {annaId, bertId}) {
            const QString page = pageOf(lobby, id);
            QVERIFY(page.contains("<td>Anna</td>") && page.contains("<td>Bert</td>"));
        }

        // A reset restarts the sender's figures only, and deletes nothing.
        QVERIFY(pageOf(lobby, annaId).contains("<td>Survival</td><td>1</td>"));
        anna->send(Code::StatsReset);
        anna->sendRaw(round(2, players).encode()); // the round before the reset, again
        QVERIFY(lobby.sync(anna));
        QCOMPARE(roundsOf(lobby, annaId), 0);
        QCOMPARE(roundsOf(lobby, bertId), 1);
        const QString annasPage = pageOf(lobby, annaId);
        QVERIFY(annasPage.contains("No rounds yet.") && annasPage.contains("since the reset"));
        QVERIFY(pageOf(lobby, bertId).contains("<td>Survival</td><td>1</td>"));
        QCOMPARE(lobby.stats.leaderboard(10).size(), 1);

        anna->sendRaw(round(2, players, "Round 3").encode());
        QVERIFY(lobby.sync(anna));
        QCOMPARE(roundsOf(lobby, annaId), 1);
        QCOMPARE(lobby.stats.recentRounds(annaId, 10).value(0).headerA, "Round 3");
        QCOMPARE(lobby.stats.leaderboard(10).size(), 2);
        QSqlQuery kept(lobby.database.handle());
        QVERIFY(kept.exec("SELECT COUNT(*) FROM stats_uploads") && kept.next());
        QCOMPARE(kept.value(0).toInt(), 4); // Anna's three rounds and Bert's one

        QVERIFY(annasPage.contains("Online now, in the lobby."));
        anna->close();
        QVERIFY(waitUntil([&] { return !lobby.server->lobby().findByAccount(annaId); }));
        QVERIFY(pageOf(lobby, annaId).contains("Not online."));
    }

    // The same round again within a minute is its log reported twice; later it was played again.
    void aRoundPlayedAgainCountsAgain()
    {
        TestLobby lobby;
        lobby.addAccount("Anna");
        const int annaId = lobby.idOf("Anna");
        const StatsUpload upload = round(1, {player("Anna")});
        const QDateTime start = QDateTime::currentDateTimeUtc();
        using Added = server::StatsStore::Added;
        QCOMPARE(lobby.stats.addRound(annaId, upload, start), Added::Counted);
        QCOMPARE(lobby.stats.addRound(annaId, upload, start.addSecs(59)), Added::Duplicate);
        QCOMPARE(lobby.stats.addRound(annaId, upload, start.addSecs(61)), Added::Counted);
        QCOMPARE(roundsOf(lobby, annaId), 2);
    }

    void writesWaitOutALockedDatabase_data()
    {
        QTest::addColumn<QList<Code>>("sent");
        QTest::addColumn<int>("rounds");   // Anna's counted rounds once the lock is gone
        QTest::addColumn<int>("rejected"); // uploads kept as malformed
        QTest::newRow("round") << QList{Code::StatsUpload} << 1 << 0;
        QTest::newRow("round, then reset") << QList{Code::StatsUpload, Code::StatsReset} << 0 << 0;
        QTest::newRow("malformed upload") << QList{Code::KeepAlive} << 0 << 1;
        QTest::newRow("round, disk full") << QList{Code::StatsUpload} << 1 << -1;
    }

    // Another process (an admin command, a backup) holds the write lock, or the disk is full
    // (rejected -1; played by a page limit on the server's connection): nothing is lost, and the
    // writes land in the order they came once the database takes them again.
    void writesWaitOutALockedDatabase()
    {
        QFETCH(QList<Code>, sent);
        QFETCH(int, rounds);
        QFETCH(int, rejected);
        const bool diskFull = rejected < 0;
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        const int annaId = lobby.idOf("Anna");
        QVERIFY(diskFull ? setDiskFull(lobby, true) : lobby.lockDatabase());
        for (const Code code : sent) {
            if (code == Code::StatsUpload)
                anna->sendRaw(bigRound().encode());
            else if (code == Code::StatsReset)
                anna->send(Code::StatsReset);
            else
                anna->send(Code::StatsUpload, uploadFields("1", "Survival", 0) << "x");
        }
        QVERIFY(lobby.sync(anna));
        QCOMPARE(lobby.stats.rejected().size() + roundsOf(lobby, annaId), 0);
        QVERIFY(diskFull ? setDiskFull(lobby, false) : lobby.unlockDatabase());
        QSqlQuery uploads(lobby.database.handle());
        QVERIFY(waitUntil([&] {
            return uploads.exec("SELECT COUNT(*) FROM stats_uploads") && uploads.next() &&
                   uploads.value(0).toInt() + lobby.stats.rejected().size() == 1;
        }));
        QVERIFY(waitUntil([&] { return roundsOf(lobby, annaId) == rounds; }));
        QCOMPARE(lobby.stats.rejected().size(), std::max(rejected, 0));
    }

    // Texts are stored without controls and no longer than a results log holds them (a kill of
    // himself makes a player's kills negative); a refused upload's field reaches the log as one
    // escaped line of bounded length, however it tries to look like more.
    void textsAreCleanedAndCut()
    {
        LogCapture log;
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        StatsRecord record = player(QString(10'000, u'n'), "-7", "2", "-1");
        record.p4 = QStringLiteral("a\x1b[31mb\x7f\u0081c\u009d\x01"); // C1 as the code page has it
        record.killedBy = QString(10'000, u'k');
        anna->sendRaw(
            StatsUpload{1, "Map\r\nforged", "Survival", QString(10'000, u'b'), {record}}.encode());
        QVERIFY(lobby.sync(anna));
        const StoredRound stored = lobby.stats.recentRounds(lobby.idOf("Anna"), 1).value(0);
        QCOMPARE(stored.headerA, "Mapforged");
        QCOMPARE(stored.headerB, QString(server::StatsHandler::kMaxTextChars, u'b'));
        const StatsRecord kept = stored.records.value(0);
        QCOMPARE(kept.playerName, QString(server::StatsHandler::kMaxNameChars, u'n'));
        QCOMPARE(kept.killedBy, QString(server::StatsHandler::kMaxNameChars, u'k'));
        QCOMPARE(kept.p4, "a[31mbc");
        QCOMPARE(lobby.stats.totalsByGameType(lobby.idOf("Anna")).value(0).p3, -1.0);

        const QString forged =
            "\n2026-01-01T00:00:00.000 warning quorvel.login forged\x1b[2J" + QString(60'000, u'x');
        anna->send(Code::StatsUpload, uploadFields("1", "Survival" + forged, 1));
        QVERIFY(lobby.sync(anna));
        const QStringList lines = log.lines().filter("forged");
        QCOMPARE(lines.size(), 1);
        const QString &line = lines[0];
        QVERIFY(line.contains("Survival\\x0a2026-01-01") && line.contains("forged\\x1b[2J"));
        QVERIFY(std::none_of(line.cbegin(), line.cend(), [](QChar c) { return c < u' '; }));
        QVERIFY(line.size() <= server::kMaxLogTextChars + 1);
        QVERIFY(line.endsWith(QChar(0x2026)));
    }

    // A counted round of players in a room is told in the room once, with the page that lists it.
    void roundIsToldInTheRoom()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        anna->send(Code::AddRoom, {"Anna's room"});
        bert->send(Code::JoinRoom, {"Anna", QString()});
        QVERIFY(anna->take(Code::MemberJoined));
        StatsUpload played{1,
                           "Oil Refinery",
                           "Team Survival",
                           "Server",
                           {player("Anna", "3", "2", "0"), player("Bert", "3", "2", "2"),
                            player("Eve", "3", "2", "1"), player("Finn", "3", "2", "-1")}};
        anna->sendRaw(played.encode());
        const QString path = QStringLiteral("/?p=stats&id=%1").arg(lobby.idOf("Anna"));
        const QString line =
            QStringLiteral("QUORVEL: Team Survival on Oil Refinery, most kills: Bert 2, Eve 1, "
                           "Anna 0 - http://127.0.0.1:%1%2")
                .arg(lobby.web->serverPort())
                .arg(path);
        for (TestClient *member : {anna, bert})
            QCOMPARE(member->fields(Code::RoomChat), Rows{{line}});

        played.ownIndex = 2; // Bert's upload of the same round
        bert->sendRaw(played.encode());
        QVERIFY(lobby.sync(bert));
        QCOMPARE(roundsOf(lobby, lobby.idOf("Bert")), 1);
        QVERIFY(!anna->hasPending(Code::RoomChat) && !bert->hasPending(Code::RoomChat));
        const QString page = lobby.fetch(path).body;
        QVERIFY(page.contains("Oil Refinery") && page.contains("<td>Finn</td>"));
    }

    void playerTextIsEscapedOnEveryPage()
    {
        TestLobby lobby;
        const QString hostile = "<script>";
        TestClient *client = lobby.loggedIn(hostile); // an account from before the name rules
        const int id = lobby.idOf(hostile);
        client->send(Code::AddRoom, {hostile + "room"});
        client->send(Code::PlayerStatus, {"2", "\"><script>"});
        client->sendRaw(
            StatsUpload{1, hostile, "Survival", hostile, {player(hostile), player("\"&<b>")}}
                .encode());
        QVERIFY(lobby.sync(client));
        QCOMPARE(roundsOf(lobby, id), 1);

        for (const QString &address :
             {QStringLiteral("/"), QStringLiteral("/?p=stats&id=%1").arg(id)}) {
            const WebReply reply = lobby.fetch(address);
            QCOMPARE(reply.status, 200);
            QVERIFY2(!reply.body.contains("<script") && !reply.body.contains("<b>"),
                     qPrintable(address));
            QVERIFY2(reply.body.contains("&lt;script&gt;"), qPrintable(address));
        }
        QVERIFY(lobby.fetch("/").body.contains("&lt;script&gt;room"));
        QVERIFY(pageOf(lobby, id).contains("&quot;&amp;&lt;b&gt;"));
    }

    void addresses_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("status");
        QTest::newRow("lobby") << "/" << 200;
        QTest::newRow("player") << "/?p=stats&id=1" << 200;
        QTest::newRow("player, id first") << "/?id=1&p=stats" << 200;
        QTest::newRow("unknown id") << "/?p=stats&id=999" << 404;
        QTest::newRow("id not only digits") << "/?p=stats&id=1x" << 404;
        QTest::newRow("id too long") << "/?p=stats&id=99999999999999999999" << 404;
        QTest::newRow("no id, or an empty one") << "/?p=stats" << 404;
        QTest::newRow("unknown page") << "/?p=rooms" << 404;
        QTest::newRow("unknown path") << "/stats?p=stats&id=1" << 404;
    }
    void addresses()
    {
        QFETCH(QString, address);
        QFETCH(int, status);
        TestLobby lobby;
        QCOMPARE(lobby.addAccount("Anna"), 1);
        const WebReply reply = lobby.fetch(address);
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.contentType, "text/html; charset=utf-8");
        QVERIFY(reply.body.startsWith("<!DOCTYPE html>"));
        QCOMPARE(reply.body.contains("<h1>Anna</h1>"), address.contains("id=1") && status == 200);
    }

    void uploadsAreRateLimited()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        for (int i = 0; i < server::AccountLimits::kStatsUploads.events + 5; ++i)
            anna->sendRaw(round(1, {player("Anna")}, QStringLiteral("Round %1").arg(i)).encode());
        QVERIFY(lobby.sync(anna));
        QCOMPARE(roundsOf(lobby, lobby.idOf("Anna")), server::AccountLimits::kStatsUploads.events);
    }

    // A file of the version before statistics gains their tables and keeps its accounts.
    void olderFileIsUpgraded()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("lobby.sqlite");
        {
            server::Database database;
            QVERIFY(database.open(path));
            QVERIFY(server::AccountStore(database).create("Anna", "hash"));
            QSqlQuery query(database.handle());
            for (const char *table : {"stats_records", "stats_uploads", "stats_resets",
                                      "stats_totals", "stats_rejected"})
                QVERIFY(query.exec(QStringLiteral("DROP TABLE %1").arg(table)));
            QVERIFY(query.exec("PRAGMA user_version = 1"));
        }
        server::Database database;
        QVERIFY2(database.open(path), qPrintable(database.errorString()));
        QVERIFY(server::AccountStore(database).findByName("Anna"));
        server::StatsStore stats(database);
        QCOMPARE(stats.addRound(1, round(1, {player("Anna")}), QDateTime::currentDateTimeUtc()),
                 server::StatsStore::Added::Counted);
    }
};

QTEST_GUILESS_MAIN(TstStats)
#include "tst_stats.moc"
