#include "client/game/gameinfo.h"
#include "udpresponder.h"

#include <QRandomGenerator>
#include <QStandardItemModel>
#include <QTest>

namespace {

QString example(bool withTimeLimit = true)
{
    return QString::fromLatin1(exampleReply(withTimeLimit));
}

QString without(QString reply, const QString &key)
{
    // Drops "\key\value" from a reply.
    const qsizetype at = reply.indexOf(u'\\' + key + u'\\');
    const qsizetype valueEnd = reply.indexOf(u'\\', at + key.size() + 2);
    return reply.remove(at, valueEnd - at);
}

QString withValue(QString reply, const QString &key, const QString &value)
{
    const QString marker = u'\\' + key + u'\\';
    const qsizetype start = reply.indexOf(marker) + marker.size();
    const qsizetype end = reply.indexOf(u'\\', start);
    return reply.replace(start, end - start, value);
}

QString players(int count)
{
    QString text;
    for (int j = 0; j < count; ++j)
        text += QStringLiteral("\\player_%1\\P%1\\team_%1\\1\\ping_%1\\%2").arg(j).arg(10 + j);
    return text + QStringLiteral("\\final\\\\queryid\\1.1");
}

} // namespace

class TestGameInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exampleReplyFillsTable()
    {
        GameInfo info;
        info.addInfo(example(), false);

        const QList<std::tuple<int, int, QString>> cells{
            {1, 3, "hostname\\"},  {2, 3, "\\My Game\\"}, {2, 1, "\\roguespear\\"},
            {2, 8, "\\2\\"},       {2, 13, "\\1\\"},      {2, 18, "\\600\\"},
            {1, 19, "player_0\\"}, {2, 19, ""},           {0, 3, ""},
            {2, 20, ""},           {2, 21, ""},           {3, 3, ""}};
        for (const auto &[column, row, text] : cells)
            QVERIFY2(info.getTestArray(column, row) == text, qPrintable(text));

        QCOMPARE(info.getSpelare(), QStringLiteral("\\Bob\\"));
        const QList<StatusTable::Player> &held = info.table().players();
        QCOMPARE(held.size(), 2);
        QCOMPARE((QStringList{held[0].team, held[0].ping, held[1].name, held[1].ping}),
                 (QStringList{"\\1\\", "\\40\\", "\\Al\\", "\\55\\"}));
        QStandardItemModel *list = info.playersModel();
        QCOMPARE((QStringList{list->item(0, 0)->text(), list->item(0, 1)->text(),
                              list->item(1, 0)->text(), list->item(1, 1)->text()}),
                 (QStringList{"Bob", "40", "Al", "55"}));
    }

    // A second reply that lacks a key (or the key after it) keeps the first reply's value.
    void missingKeysKeepEarlierValues_data()
    {
        QTest::addColumn<QString>("second");
        QTest::addColumn<QList<int>>("keptRows");

        const QString renamed =
            withValue(withValue(example(), QStringLiteral("hostname"), QStringLiteral("Other")),
                      QStringLiteral("mapname"), QStringLiteral("Peaks"));
        QTest::newRow("all keys") << renamed << QList<int>{};
        QTest::newRow("no mapname: it and the key before keep")
            << without(renamed, QStringLiteral("mapname")) << QList<int>{5, 6};
        QTest::newRow("no hostname: it and the key before keep")
            << without(renamed, QStringLiteral("hostname")) << QList<int>{2, 3};
        QTest::newRow("no timelimit")
            << without(renamed, QStringLiteral("timelimit")) << QList<int>{17, 18};
        QTest::newRow("no players: the time limit keeps")
            << renamed.left(renamed.indexOf(QStringLiteral("\\player_0"))) +
                   QStringLiteral("\\final\\\\queryid\\1.1")
            << QList<int>{18};
        QTest::newRow("keys out of order: the misplaced one keeps")
            << without(renamed, QStringLiteral("gametype"))
                   .replace(QStringLiteral("\\gamename\\"),
                            QStringLiteral("\\gametype\\CTF\\gamename\\"))
            << QList<int>{6, 7};
    }
    void missingKeysKeepEarlierValues()
    {
        QFETCH(QString, second);
        QFETCH(QList<int>, keptRows);

        GameInfo first;
        first.addInfo(example(), false);
        GameInfo fresh;
        fresh.addInfo(second, false);
        GameInfo both;
        both.addInfo(example(), false);
        both.addInfo(second, false);

        for (int row = 1; row <= 18; ++row) {
            const QString expected =
                keptRows.contains(row) ? first.getTestArray(2, row) : fresh.getTestArray(2, row);
            QVERIFY2(both.getTestArray(2, row) == expected, qPrintable(QString::number(row)));
        }
    }

    void playerCount_data()
    {
        QTest::addColumn<QString>("numplayers");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("names");

        QTest::newRow("two") << "2" << players(2) << 2 << QStringList{"\\P0\\", "\\P1\\"};
        QTest::newRow("fraction truncated")
            << "2.9" << players(3) << 2 << QStringList{"\\P0\\", "\\P1\\"};
        QTest::newRow("not a number") << "abc" << players(2) << 0 << QStringList{};
        QTest::newRow("leading number") << "1x" << players(2) << 1 << QStringList{"\\P0\\"};
        QTest::newRow("negative") << "-3" << players(2) << 0 << QStringList{};
        QTest::newRow("empty") << "" << players(2) << 0 << QStringList{};
        QTest::newRow("more than the reply lists")
            << "3" << players(2) << 3 << QStringList{"\\P0\\", "\\P1\\", ""};
        QStringList sixteen;
        for (int j = 0; j < 16; ++j)
            sixteen << QStringLiteral("\\P%1\\").arg(j);
        QTest::newRow("forty, sixteen read") << "40" << players(40) << 40 << sixteen;
        QTest::newRow("huge") << "99999999999" << players(1) << std::numeric_limits<int>::max()
                              << QStringList{"\\P0\\"} + QStringList(15, QString());
    }
    void playerCount()
    {
        QFETCH(QString, numplayers);
        QFETCH(QString, reply);
        QFETCH(int, count);
        QFETCH(QStringList, names);

        const QString data =
            withValue(example(), QStringLiteral("numplayers"), numplayers)
                .replace(QRegularExpression(QStringLiteral(R"(\\player_0.*)")), reply);
        GameInfo info;
        info.addInfo(data, false);
        QCOMPARE(info.table().playerCount(), count);
        QStringList held;
        for (const StatusTable::Player &player : info.table().players())
            held << player.name;
        QCOMPARE(held, names);
        QCOMPARE(info.playersModel()->rowCount(), names.size());
    }

    // A reply without players must not leave the previous server's first player behind.
    void playersAreNotCarriedOver()
    {
        GameInfo info;
        info.addInfo(example(), false);
        info.addInfo(withValue(example(), QStringLiteral("numplayers"), QStringLiteral("0")),
                     false);
        QCOMPARE(info.getSpelare(), QString());
        QCOMPARE(info.playersModel()->rowCount(), 0);
    }

    void labels_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QStringList>("texts");

        const QStringList exampleTexts{
            "Room name: My Game", "Map: Training", "Game type: Team Survival", "Players: 2/16",
            "Password: NO",       "Locked: YES",   "Timelimit: 10 min"};
        QTest::newRow("example") << example() << exampleTexts;
        QStringList noLimit = exampleTexts;
        noLimit[6] = QStringLiteral("Timelimit: none");
        QTest::newRow("no time limit") << example(false) << noLimit;

        QStringList odd = exampleTexts;
        odd[4] = QStringLiteral("Password: YES");
        odd[5] = QStringLiteral("Locked: NO");
        odd[6] = QStringLiteral("Timelimit: 1.5 min");
        QString oddReply = withValue(example(), QStringLiteral("password"), QStringLiteral("1"));
        oddReply = withValue(oddReply, QStringLiteral("rs_serverlocked"), QStringLiteral("0"));
        oddReply = withValue(oddReply, QStringLiteral("timelimit"), QStringLiteral("90"));
        QTest::newRow("password, unlocked, 90 s") << oddReply << odd;

        QStringList garbled = exampleTexts;
        garbled[4] = QStringLiteral("Password: YES");
        garbled[6] = QStringLiteral("Timelimit: 0 min");
        QString garbledReply = withValue(example(), QStringLiteral("password"), QString());
        garbledReply = withValue(garbledReply, QStringLiteral("timelimit"), QStringLiteral("x"));
        QTest::newRow("empty flag, word for a limit") << garbledReply << garbled;

        const QString longName(40, u'n');
        QStringList cut = exampleTexts;
        cut[0] = QStringLiteral("Room name: ") + QString(35, u'n');
        cut[1] = QStringLiteral("Map: ") + QString(35, u'm');
        QTest::newRow("long names cut to 35")
            << withValue(withValue(example(), QStringLiteral("hostname"), longName),
                         QStringLiteral("mapname"), QString(36, u'm'))
            << cut;
    }
    void labels()
    {
        QFETCH(QString, reply);
        QFETCH(QStringList, texts);

        GameInfo info;
        info.addInfo(reply, false);
        const GameInfoLabels labels = info.labels();
        QCOMPARE((QStringList{labels.roomName, labels.map, labels.gameType, labels.players,
                              labels.password, labels.locked, labels.timeLimit}),
                 texts);
        QCOMPARE(labels.roomNameTip, withoutBackslashes(info.getTestArray(2, 3)));
        QCOMPARE(labels.mapTip, withoutBackslashes(info.getTestArray(2, 6)));
    }

    // Random replies, half of them made of real keys and markers: whatever they hold, every
    // value starts at a key's backslash and no more than sixteen players are read.
    void randomRepliesNeverBreakTheTable()
    {
        const QStringList pieces{"\\",           "gamename\\",   "hostname\\",  "mapname\\",
                                 "numplayers\\", "maxplayers\\", "timelimit\\", "player_0\\",
                                 "\\player_1\\", "\\team_0\\",   "\\ping_0\\",  "final\\",
                                 "queryid",      "17",           "x",           "rs_serverlocked\\",
                                 "password\\",   "player_",      "\\ping_1\\"};
        QRandomGenerator random(7);
        GameInfo info;
        for (int round = 0; round < 20000; ++round) {
            QString data;
            const int length = random.bounded(60);
            for (int i = 0; i < length; ++i) {
                if (random.bounded(2))
                    data += pieces[random.bounded(pieces.size())];
                else
                    data += QChar(char16_t(random.bounded(1, 256)));
            }
            info.addInfo(data, round % 2);
            for (int row = 1; row <= 18; ++row) {
                const QString value = info.getTestArray(2, row);
                QVERIFY(value.isEmpty() || value.startsWith(u'\\'));
            }
            QVERIFY(info.table().players().size() <= StatusTable::kMaxPlayers);
            QCOMPARE(info.playersModel()->rowCount(), info.table().players().size());
            (void)info.labels();
        }
    }
};

QTEST_GUILESS_MAIN(TestGameInfo)
#include "tst_gameinfo.moc"
