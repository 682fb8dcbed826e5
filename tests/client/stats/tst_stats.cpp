#include "client/app/form1.h"
#include "client/lobby/lobbyconnection.h"
#include "client/pager/pager.h"
#include "client/platform/folderwatcher.h"
#include "client/session/sessionstate.h"
#include "client/settings/options.h"
#include "client/stats/resultlog.h"
#include "client/stats/resultlogname.h"
#include "client/ui/picturebutton.h"
#include "protocol/chat.h"
#include "protocol/cp1252.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/scriptedserver.h"
#include "support/serverprocess.h"

#include <QDesktopServices>
#include <QTest>

using namespace client;
using protocol::StatsRecord;
using protocol::StatsUpload;

namespace {

// A player of a hand-made log; the fields the client does not read are fixed.
struct Player
{
    QString name;
    QString p2 = "2"; // rounds played
    QString p3 = "0"; // kills
    QString p7 = {};  // killed by
};

StatsRecord record(int team, const QString &name, const QString &p2, const QString &p3,
                   const QString &p7)
{
    using protocol::NumberText;
    return {NumberText::of(team),
            name,
            NumberText::read(p2),
            NumberText::read(p3),
            "1",
            "30",
            "10",
            "33",
            p7};
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

// The client connected to a lobby stand-in, sounds off, the reset sound in its game folder.
struct Rig
{
    AppHarness h;
    ScriptedServer server;
    const QString game = h.home.filePath("RogueSpear");

    Rig()
    {
        writeFile(game + "/data/sound/English/ref_clr1.wav");
        h.app.options().setPathRS(game);
        h.app.start();
        h.app.connection().connectToLobby("127.0.0.1", server.port());
        waitUntil([this] { return h.app.connection().isConnected(); });
        h.dialogs.asked.clear(); // the notice of a missing Black Ops folder
    }
    QByteArray sentDuring(const std::function<void()> &action)
    {
        return ::sentDuring(server, h.app.connection(), action);
    }
};

} // namespace

class TestStats : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    // The browser, as the desktop would start it.
    void openUrl(const QUrl &url) { m_opened << url.toString(); }

private Q_SLOTS:
    void initTestCase() { QDesktopServices::setUrlHandler("http", this, "openUrl"); }
    void cleanupTestCase() { QDesktopServices::unsetUrlHandler("http"); }

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

    // The game, in the watched game folder, writes a log after each round: each is uploaded
    // once, with the local player's record found through the registry, Black Ops' name when
    // Rogue Spear has none. (The German game types and Rogue Spear's name are the log table's
    // and the end-to-end test's.)
    void uploadsEachRoundTheGameWrites()
    {
        Rig r;
        QVERIFY(writeGamePlayerName(r.h.home.filePath("system.reg"), "Black Ops", "Al"));
        QVERIFY(QFile::copy(kFakeGame, r.game + "/roguespear.exe"));
        QVERIFY(r.h.app.folderWatcher().startNotify(r.game));
        r.h.clock.set(QDateTime::currentDateTime());
        QList<StatsRecord> records{record(1, "Bob", "2", "1", ""),
                                   record(2, "Al", "2", "0", "Bob")};
        records[0].p4 = "0";
        records[1].p5 = "31";
        records[1].p6 = "11";
        const QByteArray ds =
            StatsUpload{2, "Training Grounds", "Survival", "Rogue Spear", records}.encode();
        ServerProcess game;
        const QByteArray received = r.sentDuring([&] {
            QVERIFY(game.start(r.game + "/roguespear.exe",
                               {"-server", "0", "-bind", "127.0.0.1", "-round", "1", "-gametype",
                                "Survival", "-player", "Bob:1:40", "-player", "Al:2:55"}));
            QVERIFY(waitUntil([&] { return r.server.received().count(ds) >= 2; }, 10000));
        });
        QVERIFY(received.size() >= 2 * ds.size());
        QCOMPARE(received, ds.repeated(received.size() / ds.size()));
    }

    // Logs that cannot be used are reported to the service account.
    void reportsLogsItCannotUse_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<int>("age"); // seconds since it was written, by the client's clock
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("a minute old")
            << makeLog("Survival", {{"Al"}}) << 60 << reportOf("old file: ").chopped(1);
        QTest::newRow("broken") << makeLog("Survival", {{"Al"}}, 1) << 0
                                << reportOf("getStats errorLine: 5");
    }
    void reportsLogsItCannotUse()
    {
        QFETCH(QByteArray, log);
        QFETCH(int, age);
        QFETCH(QByteArray, expected);
        Rig r;
        QVERIFY(r.h.app.folderWatcher().startNotify(r.game));
        r.h.clock.set(QDateTime::currentDateTime().addSecs(age));
        const QByteArray sent = r.sentDuring([&] {
            writeFile(r.game + "/RSResults7.log", log);
            QVERIFY(waitUntil([&] { return r.server.received().contains("PMQUORVEL"); }));
        });
        if (age > 0)
            QVERIFY2(sent.startsWith(expected) && sent.contains(" - "), sent.constData());
        else
            QCOMPARE(sent, expected);
    }

    // Every statistics address is the web host, "?p=stats&id=" and the id: the own page from
    // `picViewStats` after the login gave the id, a player's from the pager.
    void statsPagesOpenTheWebHost_data()
    {
        QTest::addColumn<QString>("webHost");
        QTest::addColumn<quint16>("port");
        QTest::addColumn<QString>("host");
        QTest::newRow("port 80") << "lobby.example" << quint16(80) << "lobby.example";
        QTest::newRow("port 8080") << "lobby.example" << quint16(8080) << "lobby.example:8080";
        QTest::newRow("IPv6, port 80") << "2001:db8::1" << quint16(80) << "[2001:db8::1]";
        QTest::newRow("IPv6, port 8080") << "2001:db8::1" << quint16(8080) << "[2001:db8::1]:8080";
    }
    void statsPagesOpenTheWebHost()
    {
        QFETCH(QString, webHost);
        QFETCH(quint16, port);
        QFETCH(QString, host);
        Rig r;
        r.h.app.session().webHost = webHost;
        r.h.app.session().webPort = port;
        m_opened.clear();
        r.h.app.session().lobbyStatsId = "42";
        r.h.app.form().picViewStats->click();
        Q_EMIT r.h.app.pager().statsPageRequested("7");
        QCOMPARE(m_opened, (QStringList{"http://" + host + "?p=stats&id=42",
                                        "http://" + host + "?p=stats&id=7"}));
    }

private:
    QStringList m_opened;
};

QTEST_MAIN(TestStats)
#include "tst_stats.moc"
