#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/playerlisthandlers.h"
#include "client/presence/playerlistmodel.h"
#include "client/presence/playerlistview.h"
#include "client/presence/playerorder.h"
#include "client/presence/presence.h"
#include "loopbacklobby.h"
#include "protocol/message.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

using protocol::Code;
using Model = PlayerListModel;

namespace {

QByteArray an(const QString &name, const QString &index, const QString &state,
              const QString &address = {}, const QString &buddy = QStringLiteral("0"),
              const QString &highlight = QStringLiteral("False"))
{
    return protocol::buildMessage(Code::AddPlayer, {name, index, state, address, buddy, highlight,
                                                    QStringLiteral("hash-") + name});
}

QByteArray rn(const QString &name)
{
    return protocol::buildMessage(Code::RemovePlayer, {name});
}

QByteArray ps(const QString &name, const QString &state, const QString &address = {})
{
    return protocol::buildMessage(Code::PlayerStatus, {name, state, address});
}

// One line per row, top to bottom: "*" when bold, then name|code|index|ipToGame.
QStringList describe(const Model &model)
{
    QStringList rows;
    for (int r = 0; r < model.rowCount(); ++r) {
        rows << QStringLiteral("%1%2|%3|%4|%5")
                    .arg(model.isBold(r) ? QStringLiteral("*") : QString(),
                         model.text(r, Model::Name), model.text(r, Model::PlayerStatus),
                         model.text(r, Model::Index), model.text(r, Model::IpToGame));
    }
    return rows;
}

// The player list as the connect step leaves it, fed through the real dispatcher.
struct PlayerList
{
    explicit PlayerList(bool withGroupRows = true) : handlers(model, dispatcher)
    {
        if (withGroupRows)
            model.addGroupRows();
    }
    void receive(const QList<QByteArray> &messages)
    {
        dispatcher.receive(messages.join()); // one arrival, as the server's burst would be
    }

    LobbyDispatcher dispatcher;
    Model model;
    PlayerListHandlers handlers;
};

} // namespace

class TestPlayerList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupRowsAfterConnecting()
    {
        PlayerList list;
        list.receive({an(QStringLiteral("Bob"), QStringLiteral("1"), QStringLiteral("3"))});
        list.model.clearList();
        list.model.addGroupRows();
        QCOMPARE(describe(list.model), (QStringList{QStringLiteral("* Lobby (0)|9||"),
                                                    QStringLiteral("* Playing (0)|6||"),
                                                    QStringLiteral("* Away (0)|3||")}));
        QCOMPARE(list.model.icon(0), 5);
        QCOMPARE(list.model.icon(1), 6);
        QCOMPARE(list.model.icon(2), 7);
    }

    void handlesMessages_data()
    {
        QTest::addColumn<bool>("groupRows");
        QTest::addColumn<QList<QByteArray>>("messages");
        QTest::addColumn<QStringList>("rows");

        const QString b = QStringLiteral("Bob"), a = QStringLiteral("Ann"),
                      c = QStringLiteral("Cid");
        const QString g1 = QStringLiteral("10.0.0.1"), g2 = QStringLiteral("10.0.0.2");
        QTest::newRow("buddy above the other lobby player")
            << true << QList<QByteArray>{an(b, "1", "3"), an(a, "2", "3", {}, "1")}
            << QStringList{"* Lobby (2)|9||", "*Ann|8|2|", "Bob|7|1|", "* Playing (0)|6||",
                           "* Away (0)|3||"};
        QTest::newRow("each state under its group")
            << true << QList<QByteArray>{an(a, "1", "1"), an(b, "2", "2", g1, "1"), an(c, "3", "3")}
            << QStringList{"* Lobby (1)|9||",   "Cid|7|3|",       "* Playing (1)|6||",
                           "*Bob|5|2|10.0.0.1", "* Away (1)|3||", "Ann|1|1|"};
        QTest::newRow("same code keeps arrival order")
            << true << QList<QByteArray>{an(c, "3", "3"), an(a, "1", "3"), an(b, "2", "3")}
            << QStringList{"* Lobby (3)|9||", "Cid|7|3|",          "Ann|7|1|",
                           "Bob|7|2|",        "* Playing (0)|6||", "* Away (0)|3||"};
        QTest::newRow("a name twice stands twice; one RN removes the first")
            << true << QList<QByteArray>{an(b, "1", "3"), an(b, "2", "3"), rn(b)}
            << QStringList{"* Lobby (1)|9||", "Bob|7|2|", "* Playing (0)|6||", "* Away (0)|3||"};
        QTest::newRow("PS moves a player into a game and back")
            << true << QList<QByteArray>{an(b, "1", "3"), an(a, "2", "3"), ps(b, "2", g1)}
            << QStringList{"* Lobby (1)|9||", "Ann|7|2|", "* Playing (1)|6||", "Bob|4|1|10.0.0.1",
                           "* Away (0)|3||"};
        QTest::newRow("a moved player goes to the end of its new group")
            << true << QList<QByteArray>{an(b, "1", "3"), an(a, "2", "3"), ps(b, "1"), ps(b, "3")}
            << QStringList{"* Lobby (2)|9||", "Ann|7|2|", "Bob|7|1|", "* Playing (0)|6||",
                           "* Away (0)|3||"};
        QTest::newRow("PS for the same state keeps the place")
            << true << QList<QByteArray>{an(b, "1", "3"), an(a, "2", "3"), ps(b, "3")}
            << QStringList{"* Lobby (2)|9||", "Bob|7|1|", "Ann|7|2|", "* Playing (0)|6||",
                           "* Away (0)|3||"};
        QTest::newRow("a buddy stays bold through PS")
            << true << QList<QByteArray>{an(b, "1", "3", {}, "1"), ps(b, "1")}
            << QStringList{"* Lobby (0)|9||", "* Playing (0)|6||", "* Away (1)|3||", "*Bob|2|1|"};
        QTest::newRow("PS and RN for unknown names change nothing")
            << true << QList<QByteArray>{an(b, "1", "3"), ps(a, "2", g1), rn(c)}
            << QStringList{"* Lobby (1)|9||", "Bob|7|1|", "* Playing (0)|6||", "* Away (0)|3||"};
        QTest::newRow("PS with a state outside 1..3 keeps the group, changes the address")
            << true << QList<QByteArray>{an(b, "1", "3"), ps(b, "4", g2), ps(b, "x", g1)}
            << QStringList{"* Lobby (1)|9||", "Bob|7|1|10.0.0.1", "* Playing (0)|6||",
                           "* Away (0)|3||"};
        QTest::newRow("AN with a state outside 1..3 sorts last and counts nowhere")
            << true << QList<QByteArray>{an(b, "1", "0"), an(a, "2", "3")}
            << QStringList{"* Lobby (1)|9||", "Ann|7|2|", "* Playing (0)|6||", "* Away (0)|3||",
                           "Bob||1|"};
        QTest::newRow("non-numeric state and index are taken as absent")
            << true << QList<QByteArray>{an(b, "abc", "three", {}, "1")}
            << QStringList{"* Lobby (0)|9||", "* Playing (0)|6||", "* Away (0)|3||", "*Bob||0|"};
        QTest::newRow("fractions are rounded down")
            << true << QList<QByteArray>{an(b, "12.9", "2.7"), an(a, "-1.5", "3")}
            << QStringList{"* Lobby (1)|9||", "Ann|7|-2|", "* Playing (1)|6||", "Bob|4|12|",
                           "* Away (0)|3||"};
        QTest::newRow("only \"1\" makes a buddy")
            << true << QList<QByteArray>{an(b, "1", "3", {}, "True"), an(a, "2", "3", {}, "1 ")}
            << QStringList{"* Lobby (2)|9||", "Bob|7|1|", "Ann|7|2|", "* Playing (0)|6||",
                           "* Away (0)|3||"};
        QTest::newRow("without group rows the counts are not shown")
            << false << QList<QByteArray>{an(b, "1", "1"), an(a, "2", "3")}
            << QStringList{"Ann|7|2|", "Bob|1|1|"};
    }

    void handlesMessages()
    {
        QFETCH(bool, groupRows);
        QFETCH(QList<QByteArray>, messages);
        QFETCH(QStringList, rows);
        PlayerList list(groupRows);
        list.receive(messages);
        QCOMPARE(describe(list.model), rows);
    }

    void highlight_data()
    {
        QTest::addColumn<QString>("flag");
        QTest::addColumn<bool>("orange");
        QTest::newRow("True") << QStringLiteral("True") << true;
        QTest::newRow("lower case") << QStringLiteral("true") << false;
        QTest::newRow("upper case") << QStringLiteral("TRUE") << false;
        QTest::newRow("trailing blank") << QStringLiteral("True ") << false;
        QTest::newRow("1") << QStringLiteral("1") << false;
    }

    void highlight()
    {
        QFETCH(QString, flag);
        QFETCH(bool, orange);
        PlayerList list;
        list.receive({an(QStringLiteral("Bob"), QStringLiteral("1"), QStringLiteral("3"), {},
                         QStringLiteral("0"), flag)});
        const QModelIndex bob = list.model.index(list.model.findEntry(QStringLiteral("Bob")), 0);
        const QVariant colour = bob.data(Qt::ForegroundRole);
        QCOMPARE(colour.isValid(), orange);
        if (orange)
            QCOMPARE(colour.value<QColor>(), QColor(255, 128, 0));
    }

    void gameRows_data()
    {
        QTest::addColumn<QList<QByteArray>>("messages");
        QTest::addColumn<QStringList>("calls");

        const QString b = QStringLiteral("Bob"), a = QStringLiteral("Ann");
        const QString g1 = QStringLiteral("10.0.0.1"), g2 = QStringLiteral("10.0.0.2");
        QTest::newRow("AN in a game adds its row")
            << QList<QByteArray>{an(b, "1", "2", g1), an(a, "2", "3")}
            << QStringList{"add 10.0.0.1"};
        QTest::newRow("into a game and back")
            << QList<QByteArray>{an(b, "1", "3"), ps(b, "2", g1), ps(b, "3")}
            << QStringList{"add 10.0.0.1", "remove 10.0.0.1"};
        QTest::newRow("from one game to another keeps the old row")
            << QList<QByteArray>{an(b, "1", "2", g1), ps(b, "2", g2)}
            << QStringList{"add 10.0.0.1", "add 10.0.0.2"};
        QTest::newRow("leaving the lobby from a game")
            << QList<QByteArray>{an(b, "1", "2", g1), rn(b)}
            << QStringList{"add 10.0.0.1", "remove 10.0.0.1"};
        QTest::newRow("lobby players touch no rows")
            << QList<QByteArray>{an(b, "1", "3"), ps(b, "1"), ps(b, "3"), rn(b)} << QStringList{};
        QTest::newRow("unknown names touch no rows")
            << QList<QByteArray>{ps(b, "2", g1), rn(b)} << QStringList{};
    }

    void gameRows()
    {
        QFETCH(QList<QByteArray>, messages);
        QFETCH(QStringList, calls);
        PlayerList list;
        QStringList seen;
        connect(&list.handlers, &PlayerListHandlers::addGameRowRequested, this,
                [&](const QString &address) { seen << QStringLiteral("add ") + address; });
        connect(&list.handlers, &PlayerListHandlers::removeGameRowRequested, this,
                [&](const QString &address) {
                    // The entry no longer carries the address when the room list is asked.
                    QVERIFY(!list.model.hasGameAddress(address));
                    seen << QStringLiteral("remove ") + address;
                });
        list.receive(messages);
        QCOMPARE(seen, calls);
    }

    void gameStillPlayedByAnother()
    {
        PlayerList list;
        const QString game = QStringLiteral("10.0.0.1");
        list.receive({an(QStringLiteral("Bob"), QStringLiteral("1"), QStringLiteral("2"), game),
                      an(QStringLiteral("Ann"), QStringLiteral("2"), QStringLiteral("2"), game)});
        QSignalSpy removed(&list.handlers, &PlayerListHandlers::removeGameRowRequested);
        list.receive({ps(QStringLiteral("Bob"), QStringLiteral("3"))});
        QCOMPARE(removed.count(), 1);
        QVERIFY(list.model.hasGameAddress(game)); // so the room list keeps the row
        list.receive({rn(QStringLiteral("Ann"))});
        QVERIFY(!list.model.hasGameAddress(game));
    }

    void leavingPlayerReachesThePager()
    {
        PlayerList list;
        QSignalSpy left(&list.handlers, &PlayerListHandlers::playerLeft);
        list.receive({an(QStringLiteral("Bob"), QStringLiteral("42"), QStringLiteral("3")),
                      rn(QStringLiteral("Bob")), rn(QStringLiteral("Bob"))});
        QCOMPARE(left.count(), 1);
        QCOMPARE(left.at(0).at(0).toLongLong(), 42);
    }

    // Random traffic against a plain reference: a list that takes each new or re-coded entry
    // off, appends it and stable-sorts everything by code, descending, after every message.
    void matchesFullResortUnderRandomTraffic()
    {
        struct Ref
        {
            QString name, code, ip;
            bool buddy;
        };
        QList<Ref> ref;
        const auto resort = [&] {
            std::stable_sort(ref.begin(), ref.end(),
                             [](const Ref &x, const Ref &y) { return x.code > y.code; });
        };
        const auto codeFor = [](int state, bool buddy) {
            return QString::number(3 * (state - 1) + 1 + (buddy ? 1 : 0));
        };

        PlayerList list(false);
        // Checks every insert, move and removal signal against the model's contents.
        QAbstractItemModelTester tester(&list.model,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTreeView view;
        configurePlayerListView(view, list.model);
        QRandomGenerator random(20261123);
        for (int step = 0; step < 3000; ++step) {
            const QString name = QStringLiteral("p%1").arg(random.bounded(40));
            const int state = 1 + int(random.bounded(3));
            const QString ip =
                random.bounded(2) ? QStringLiteral("10.0.0.%1").arg(random.bounded(4)) : QString();
            const auto first =
                std::find_if(ref.begin(), ref.end(), [&](const Ref &r) { return r.name == name; });
            switch (random.bounded(3)) {
            case 0: {
                const bool buddy = random.bounded(4) == 0;
                list.receive({an(name, QStringLiteral("1"), QString::number(state), ip,
                                 buddy ? QStringLiteral("1") : QStringLiteral("0"))});
                ref.append({name, codeFor(state, buddy), ip, buddy});
                break;
            }
            case 1:
                list.receive({rn(name)});
                if (first != ref.end())
                    ref.erase(first);
                break;
            default:
                list.receive({ps(name, QString::number(state), ip)});
                if (first != ref.end()) {
                    Ref moved = *first;
                    moved.ip = ip;
                    const QString code = codeFor(state, moved.buddy);
                    if (code != moved.code) {
                        moved.code = code;
                        ref.erase(first);
                        ref.append(moved);
                    } else {
                        *first = moved;
                    }
                }
                break;
            }
            resort();

            QCOMPARE(list.model.rowCount(), ref.size());
            for (int r = 0; r < ref.size(); ++r) {
                QCOMPARE(list.model.text(r, Model::Name), ref[r].name);
                QCOMPARE(list.model.text(r, Model::PlayerStatus), ref[r].code);
                QCOMPARE(list.model.text(r, Model::IpToGame), ref[r].ip);
                QCOMPARE(list.model.isBold(r), ref[r].buddy);
            }
            const auto firstNow =
                std::find_if(ref.begin(), ref.end(), [&](const Ref &r) { return r.name == name; });
            QCOMPARE(list.model.findEntry(name),
                     firstNow == ref.end() ? -1 : int(firstNow - ref.begin()));
            const auto counted = [&](const char *x, const char *y) {
                return int(std::count_if(ref.begin(), ref.end(), [&](const Ref &r) {
                    return r.code == QLatin1String(x) || r.code == QLatin1String(y);
                }));
            };
            QCOMPARE(list.model.groupCount(Model::Group::Away), counted("1", "2"));
            QCOMPARE(list.model.groupCount(Model::Group::Playing), counted("4", "5"));
            QCOMPARE(list.model.groupCount(Model::Group::Lobby), counted("7", "8"));
            for (int g = 0; g < 4; ++g) {
                const QString game = QStringLiteral("10.0.0.%1").arg(g);
                QCOMPARE(list.model.hasGameAddress(game),
                         std::any_of(ref.begin(), ref.end(),
                                     [&](const Ref &r) { return r.ip == game; }));
            }
        }
    }

    // The order itself at sizes where its trees are many levels deep, with long runs of
    // removals (which compact a group) and codes other than the usual digits.
    void orderMatchesReferenceAtScale()
    {
        PlayerOrder order;
        QList<std::pair<QString, PlayerRow *>> ref; // code, entry; in display order
        const QStringList codes{"9", "8", "7", "", "10", "a"};
        QRandomGenerator random(7);
        const auto insert = [&](const QString &code, std::unique_ptr<PlayerRow> entry) {
            // The end of the code's group in a list sorted by code, descending.
            const auto at =
                std::find_if(ref.begin(), ref.end(), [&](const auto &e) { return e.first < code; });
            ref.insert(at, {code, entry.get()});
            order.insert(std::move(entry), code);
        };
        for (int step = 0; step < 6000; ++step) {
            const bool growing = (step / 1500) % 2 == 0;
            const QString code = codes[random.bounded(codes.size())];
            if (ref.isEmpty() || random.bounded(10) < (growing ? 7 : 2)) {
                insert(code, std::make_unique<PlayerRow>());
            } else {
                const auto at = random.bounded(ref.size());
                PlayerRow *entry = ref[at].second;
                QCOMPARE(order.rowOf(entry), int(at));
                std::unique_ptr<PlayerRow> taken = order.take(entry);
                ref.removeAt(at);
                if (random.bounded(2))
                    insert(code, std::move(taken)); // a change of code
            }
            if (step % 500 == 0 || step == 5999) {
                QCOMPARE(order.size(), int(ref.size()));
                for (int r = 0; r < ref.size(); ++r) {
                    QCOMPARE(order.at(r), ref[r].second);
                    QCOMPARE(order.rowOf(ref[r].second), r);
                }
                for (const QString &c : codes) {
                    const auto before = std::count_if(ref.begin(), ref.end(),
                                                      [&](const auto &e) { return e.first > c; });
                    const auto same = std::count_if(ref.begin(), ref.end(),
                                                    [&](const auto &e) { return e.first == c; });
                    QCOMPARE(order.groupStart(c), int(before));
                    QCOMPARE(order.groupEnd(c), int(before + same));
                }
            }
        }
    }

    // The context menu acts on the selected entry: the selection follows it when it moves.
    void selectionFollowsAMovedEntry()
    {
        PlayerList list;
        list.receive({an(QStringLiteral("Ann"), QStringLiteral("1"), QStringLiteral("3")),
                      an(QStringLiteral("Bob"), QStringLiteral("2"), QStringLiteral("3"))});
        QItemSelectionModel selection(&list.model);
        selection.setCurrentIndex(list.model.index(list.model.findEntry(QStringLiteral("Ann")), 0),
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        list.receive({ps(QStringLiteral("Ann"), QStringLiteral("1")),
                      an(QStringLiteral("Cid"), QStringLiteral("3"), QStringLiteral("1")),
                      rn(QStringLiteral("Bob"))});
        const QModelIndexList rows = selection.selectedRows();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().data().toString(), QStringLiteral("Ann"));
        QCOMPARE(selection.currentIndex().data().toString(), QStringLiteral("Ann"));
    }

    void viewShowsOnlyTheName()
    {
        PlayerList list;
        QTreeView view;
        configurePlayerListView(view, list.model);
        QCOMPARE(view.model(), &list.model);
        QVERIFY(!view.isColumnHidden(Model::Name));
        for (int c = 1; c < Model::ColumnCount; ++c)
            QVERIFY2(view.isColumnHidden(c), qPrintable(QString::number(c)));
        QCOMPARE(list.model.headerData(Model::Name, Qt::Horizontal).toString(),
                 QStringLiteral("Name"));
        QCOMPARE(list.model.headerData(Model::VanTrue, Qt::Horizontal).toString(),
                 QStringLiteral("vänTrue"));
    }

    void sendsPresence()
    {
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        QVERIFY(!sendPresence(connection, Presence::Away));

        LoopbackLobby lobby;
        QVERIFY(lobby.accept(connection));
        QVERIFY(sendPresence(connection, Presence::Away));
        QVERIFY(sendPresence(connection, Presence::Playing, QStringLiteral("10.0.0.1")));
        QVERIFY(sendPresence(connection, Presence::Lobby, QStringLiteral("10.0.0.1")));
        QCOMPARE(lobby.receivedThrough("PS3\x0E\x0F"), QByteArray("PS1\x0E\x0F"
                                                                  "PS2\x0E"
                                                                  "10.0.0.1\x0F"
                                                                  "PS3\x0E\x0F"));
    }
};

QTEST_MAIN(TestPlayerList)
#include "tst_playerlist.moc"
