#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/options/basregistry.h"
#include "client/platform/inotifyfolderwatcher.h"
#include "client/platform/registrylinux.h"
#include "client/stats/resultlog.h"
#include "client/stats/resultlogharvester.h"
#include "client/stats/resultlogname.h"
#include "client/stats/resultlogwatch.h"
#include "protocol/chat.h"
#include "protocol/cp1252.h"
#include "support/clientfakes.h"
#include "support/files.h"
#include "support/scriptedserver.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QTemporaryDir>
#include <QTest>

using namespace client;
using protocol::StatsRecord;
using protocol::StatsUpload;

namespace {

// A player of a hand-made log; the fields the client does not read are fixed.
struct Player
{
    Player(QString name, QString p2 = "2", QString p3 = "0", QString p7 = {})
        : name(std::move(name)), p2(std::move(p2)), p3(std::move(p3)), p7(std::move(p7))
    {
    }
    QString name;
    QString p2; // rounds played
    QString p3; // kills
    QString p7; // killed by
};

StatsRecord record(int team, const QString &name, const QString &p2, const QString &p3,
                   const QString &p7)
{
    return {QString::number(team), name, p2, p3, "1", "30", "10", "33", p7};
}

// A log laid out as the game writes it: 'Key' 'Value' header lines, then twelve lines per
// player, each value at its column and closed by an apostrophe; `dropLines` lines fewer at the
// end.
QByteArray makeLog(const QString &gameType, const QList<Player> &players, int dropLines = 0)
{
    const auto at = [](int column, const QString &value) {
        return QString(column - 1, u'.') + value + u'\'';
    };
    QStringList lines{"'Results' 'Rogue Spear'",
                      "'Date' '2026-01-01'",
                      "'Map' 'Oil Rig'",
                      "'Round' '1'",
                      "'Game Type' '" + gameType + "'",
                      "'Server' 'ann''s game'",
                      "'Players' 'n'"};
    int team = 0;
    for (const Player &p : players)
        lines << "'Player' '1'" << at(15, QString::number(++team)) << "'Ping' '0'" << at(17, p.p2)
              << at(16, p.name) << at(20, p.p3) << at(19, "1") << at(24, "30") << at(24, "10")
              << at(24, p.p7) << at(16, "33") << "'End' ''";
    lines.resize(lines.size() - dropLines);
    return protocol::toCp1252(lines.join("\r\n") + "\r\n");
}

StatsUpload upload(int ownIndex, const QString &gameType, const QList<StatsRecord> &records)
{
    return {ownIndex, "Oil Rig", gameType, "ann''s game", records};
}

// What harvesting makes of a log: "DS" as it would be sent, "error N", or "nothing".
QByteArray outcome(const QByteArray &log, const QString &localName)
{
    const auto read = readResultLog(log, localName);
    if (const ResultLogError *error = std::get_if<ResultLogError>(&read))
        return "error " + QByteArray::number(int(*error));
    const std::optional<StatsUpload> sent = statsUploadOf(std::get<ResultLog>(read));
    return sent ? sent->encode() : "nothing";
}

QByteArray reportOf(const QString &text)
{
    return protocol::PrivateMessageToServer{"QUORVEL", text}.encode();
}

// A harvester connected to a lobby stand-in, with the games' registry in a folder of its own.
struct Rig
{
    QTemporaryDir home;
    ScriptedServer server;
    LobbyDispatcher dispatcher;
    LobbyConnection connection{dispatcher};
    ManualClock clock{QDateTime::currentDateTime()};
    LinuxRegistry registry{
        {home.filePath("autostart"), home.filePath("system.reg"), home.filePath("registry.ini")}};
    BasRegistry basRegistry{registry};
    ResultLogHarvester harvester{connection, clock, basRegistry};

    Rig()
    {
        connection.connectToLobby("127.0.0.1", server.port());
        waitUntil([this] { return connection.isConnected(); });
    }
    bool setPlayerName(const QString &game, const QString &name)
    {
        return writeGamePlayerName(home.filePath("system.reg"), game, name);
    }
    QByteArray sentDuring(const std::function<void()> &action)
    {
        return ::sentDuring(server, connection, action);
    }
};

} // namespace

class TestResultLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesTheLogs()
    {
        for (const char *name : {"RSResults1.log", "RSResults2_final.log"})
            QVERIFY2(isResultLogName(name), name);
        for (const char *name : {"rsresults1.log", "RSResultsA.log", "RSResults1.txt",
                                 "RSResults.log", "RSResults1.log.tmp"})
            QVERIFY2(!isResultLogName(name), name);
    }

    void readsLogs_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QString>("localName");
        QTest::addColumn<QByteArray>("expected");

        const QString dr = "  Dr. Wh\u2122o_1999  ";
        QTest::newRow("own record the last of the local name; names filtered and cut")
            << makeLog("Team Survival", {{dr, "2", "1"},
                                         {"Bob", "3", "0", "Ann-Sofie \u00c5kesson-\u00d6berg"},
                                         {dr, "1"}})
            << dr
            << upload(3, "Team Survival",
                      {record(1, "Dr. Who1999", "2", "1", ""),
                       record(2, "Bob", "3", "0", "Ann-Sofie \u00c5kess"),
                       record(3, "Dr. Who1999", "1", "0", "")})
                   .encode();
        QTest::newRow("German Team Survival: killed by himself counts")
            << makeLog("\u00dcberleben des Teams", {{"Bob", "2", "1", "Bob"}}) << "Al"
            << upload(0, "Team Survival", {record(1, "Bob", "2", "1", "Bob")}).encode();
        // Compared filtered: "Bob_" killed by "Bob" killed himself.
        QTest::newRow("German Survival: killed by himself, one kill less")
            << makeLog("\u00dcberleben", {{"Bob_", "2", "2", "Bob"}, {"Al", "2", "0", "Bob"}})
            << "Al"
            << upload(2, "Survival",
                      {record(1, "Bob", "2", "1", "Bob"), record(2, "Al", "2", "0", "Bob")})
                   .encode();
        // Added up 0.5 -> 0, 0.5 -> 0, 1.5 -> 2; rounding halves up would make 4 > 3.
        QTest::newRow("kills add up rounding halves to even")
            << makeLog("Team Survival", {{"A", "2", "0.5"}, {"B", "2", "0.5"}, {"C", "2", "1.5"}})
            << ""
            << upload(0, "Team Survival",
                      {record(1, "A", "2", "0.5", ""), record(2, "B", "2", "0.5", ""),
                       record(3, "C", "2", "1.5", "")})
                   .encode();
        QList<Player> sixteen;
        QList<StatsRecord> sixteenSent;
        for (int i = 1; i <= 16; ++i) {
            sixteen << Player{"P" + QString::number(i)};
            sixteenSent << record(i, "P" + QString::number(i), "2", "0", "");
        }
        QTest::newRow("16 players") << makeLog("Survival", sixteen) << "P16"
                                    << upload(16, "Survival", sixteenSent).encode();
        QTest::newRow("an empty line ends the players")
            << makeLog("Survival", sixteen.mid(0, 1)) + "\r\nnot a player\r\n"
            << "" << upload(0, "Survival", sixteenSent.mid(0, 1)).encode();

        const QByteArray nothing("nothing");
        QTest::newRow("another game type") << makeLog("Assault", sixteen) << "" << nothing;
        QTest::newRow("more kills than players")
            << makeLog("Survival", {{"A", "2", "2"}, {"B", "2", "1"}}) << "" << nothing;
        QTest::newRow("more kills than players of two rounds")
            << makeLog("Survival", {{"A", "1", "1"}, {"B", "1", "0"}}) << "" << nothing;

        const QByteArray two("error 2"), three("error 3"), five("error 5");
        QTest::newRow("17 players")
            << makeLog("Survival", sixteen + sixteen.mid(0, 1)) << "" << five;
        QTest::newRow("a record cut short") << makeLog("Survival", sixteen, 3) << "" << five;
        QTest::newRow("rounds not a number") << makeLog("Survival", {{"A", "two"}}) << "" << five;
        QTest::newRow("a value line shorter than its column")
            << makeLog("Survival", sixteen).replace(QByteArray(15, '.') + "P2'", "P2'") << ""
            << five;
        QTest::newRow("header of four lines") << makeLog("Survival", {}, 3) << "" << two;
        QTest::newRow("game type without its value")
            << makeLog("Survival", {}).replace("'Game Type' 'Survival'", "'") << "" << three;
    }
    void readsLogs()
    {
        QFETCH(QByteArray, log);
        QFETCH(QString, localName);
        QFETCH(QByteArray, expected);
        QCOMPARE(outcome(log, localName), expected);
    }

    // The game, installed in a watched folder, writes a log after each round: each is
    // uploaded once, with the local player's record found through the registry (Black Ops'
    // name when Rogue Spear has none).
    void uploadsEachRoundTheGameWrites_data()
    {
        QTest::addColumn<QString>("gameType"); // as the game writes it
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("registryGame");
        QTest::newRow("Survival, Black Ops' name") << "Survival"
                                                   << "Survival"
                                                   << "Black Ops";
        QTest::newRow("German Team Survival") << "\u00dcberleben des Teams"
                                              << "Team Survival"
                                              << "Rogue Spear";
    }
    void uploadsEachRoundTheGameWrites()
    {
        QFETCH(QString, gameType);
        QFETCH(QString, sent);
        QFETCH(QString, registryGame);
        Rig r;
        QVERIFY(r.connection.isConnected() && r.setPlayerName(registryGame, "Al"));
        const QString folder = r.home.filePath("RogueSpear");
        QVERIFY(QDir().mkpath(folder) && QFile::copy(kFakeGame, folder + "/roguespear.exe"));
        InotifyFolderWatcher watcher;
        ResultLogWatch logs(watcher);
        connect(&logs, &ResultLogWatch::resultLogWritten, &r.harvester,
                &ResultLogHarvester::harvestResultLog);
        QVERIFY(watcher.startNotify(folder));

        ServerProcess game;
        QVERIFY(game.start(folder + "/roguespear.exe",
                           {"-server", "0", "-bind", "127.0.0.1", "-round", "1", "-gametype",
                            gameType, "-player", "Bob:1:40", "-player", "Al:2:55"}));
        const QByteArray ds = StatsUpload{
            2,
            "Training Grounds",
            sent,
            "Rogue Spear",
            {{"1", "Bob", "2", "1", "0", "30", "10", "33", ""},
             {"2", "Al", "2", "0", "1", "31", "11", "33",
              "Bob"}}}.encode();
        QVERIFY(waitUntil([&] { return r.server.received().size() >= 2 * ds.size(); }, 10000));
        const QByteArray received = r.server.received();
        QCOMPARE(received, ds.repeated(received.size() / ds.size()));
    }

    // Logs that cannot be used are reported to the service account.
    void reportsLogsItCannotUse_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<int>("age"); // seconds since it was written
        QTest::addColumn<QByteArray>("expected");
        const QByteArray good = makeLog("Survival", {{"Al"}});
        QTest::newRow("15 s old")
            << good << 15 << upload(0, "Survival", {record(1, "Al", "2", "0", "")}).encode();
        QTest::newRow("16 s old") << good << 16 << reportOf("old file: ").chopped(1);
        QTest::newRow("broken") << makeLog("Survival", {{"Al"}}, 1) << 0
                                << reportOf("getStats errorLine: 5");
    }
    void reportsLogsItCannotUse()
    {
        QFETCH(QByteArray, log);
        QFETCH(int, age);
        QFETCH(QByteArray, expected);
        Rig r;
        const QString path = r.home.filePath("RSResults1.log");
        QVERIFY(writeFile(path, log));
        const QDateTime written = QFileInfo(path).lastModified();
        r.clock.set(written.addSecs(age));
        const QByteArray sent = r.sentDuring([&] { r.harvester.harvestResultLog(path); });
        if (age > 15)
            QVERIFY2(sent.startsWith(expected) && sent.contains(" - "), sent.constData());
        else
            QCOMPARE(sent, expected);
    }
};

QTEST_GUILESS_MAIN(TestResultLog)
#include "tst_resultlog.moc"
