#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/playerlisthandlers.h"
#include "client/presence/playerlistmodel.h"
#include "client/presence/playerlistview.h"
#include "client/presence/presence.h"
#include "protocol/message.h"
#include "support/scriptedserver.h"

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QTest>
#include <QTreeView>
#include <optional>

using namespace client;

using protocol::Code;
using Model = PlayerListModel;
using Messages = QList<QByteArray>;

namespace {

QByteArray an(const QString &name, const QString &index, const QString &state,
              const QString &address = {}, const QString &buddy = "0",
              const QString &highlight = "False")
{
    return protocol::buildMessage(Code::AddPlayer,
                                  {name, index, state, address, buddy, highlight, "hash-" + name});
}

QByteArray rn(const QString &name)
{
    return protocol::RemovePlayer{name}.encode();
}

QByteArray ps(const QString &name, const QString &state, const QString &address = {})
{
    return protocol::buildMessage(Code::PlayerStatus, {name, state, address});
}

// The rows top to bottom: a group row by its name, an entry as "name code index @address",
// marked "*" when bold and "!" when orange.
QString describe(const Model &model)
{
    QStringList rows;
    for (int r = 0; r < model.rowCount(); ++r) {
        const QString code = model.text(r, Model::PlayerStatus);
        if (code == "9" || code == "6" || code == "3") {
            rows << model.text(r, Model::Name).trimmed();
            continue;
        }
        const QVariant colour = model.index(r, 0).data(Qt::ForegroundRole);
        QString row = QStringLiteral("%1%2%3 %4 %5")
                          .arg(model.isBold(r) ? "*" : "",
                               colour.isValid() ? colour.value<QColor>().name() : "",
                               model.text(r, Model::Name), code, model.text(r, Model::Index));
        if (!model.text(r, Model::IpToGame).isEmpty())
            row += " @" + model.text(r, Model::IpToGame);
        rows << row.replace("#ff8000", "!");
    }
    return rows.join(", ");
}

// The player list as the connect step leaves it, fed through the real dispatcher, with what
// it asks of the room list and the pager.
struct PlayerList
{
    explicit PlayerList(bool withGroupRows = true) : handlers(model, dispatcher)
    {
        if (withGroupRows)
            model.addGroupRows();
        QObject::connect(&handlers, &PlayerListHandlers::addGameRowRequested,
                         [this](const QString &address) { calls << "add " + address; });
        QObject::connect(&handlers, &PlayerListHandlers::removeGameRowRequested,
                         [this](const QString &address) {
                             calls << "remove " + address +
                                          (model.hasGameAddress(address) ? " (still played)" : "");
                         });
        QObject::connect(&handlers, &PlayerListHandlers::playerLeft,
                         [this](qint64 index) { calls << "left " + QString::number(index); });
    }
    void receive(const Messages &messages)
    {
        dispatcher.receive(messages.join()); // one arrival, as the server's burst would be
    }

    LobbyDispatcher dispatcher;
    Model model;
    PlayerListHandlers handlers;
    QStringList calls;
};

} // namespace

class TestPlayerList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // What the number reader makes of odd fields is the protocol's to test; here one row per
    // path through the list.
    void handlesMessages_data()
    {
        QTest::addColumn<Messages>("messages");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<QStringList>("calls");

        const QString b = "Bob", a = "Ann", c = "Cid", g1 = "10.0.0.1", g2 = "10.0.0.2";
        QTest::newRow("buddy above the other lobby player; only the highlighted is orange")
            << Messages{an(b, "1", "3", {}, "0", "True"), an(a, "2", "3", {}, "1")}
            << "Lobby (2), *Ann 8 2, !Bob 7 1, Playing (0), Away (0)" << QStringList{};
        QTest::newRow("each state under its group")
            << Messages{an(a, "1", "1"), an(b, "2", "2", g1, "1"), an(c, "3", "3")}
            << "Lobby (1), Cid 7 3, Playing (1), *Bob 5 2 @10.0.0.1, Away (1), Ann 1 1"
            << QStringList{"add 10.0.0.1"};
        QTest::newRow("a name twice stands twice; one RN removes the first")
            << Messages{an(b, "1", "3"), an(b, "2", "3"), rn(b)}
            << "Lobby (1), Bob 7 2, Playing (0), Away (0)" << QStringList{"left 1"};
        QTest::newRow("PS moves a player into a game")
            << Messages{an(b, "1", "3"), an(a, "2", "3"), ps(b, "2", g1)}
            << "Lobby (1), Ann 7 2, Playing (1), Bob 4 1 @10.0.0.1, Away (0)"
            << QStringList{"add 10.0.0.1"};
        QTest::newRow("PS and RN for unknown names change nothing")
            << Messages{an(b, "1", "3"), ps(a, "2", g1), rn(c)}
            << "Lobby (1), Bob 7 1, Playing (0), Away (0)" << QStringList{};
        QTest::newRow("PS with a state outside 1..3 keeps the group, changes the address")
            << Messages{an(b, "1", "3"), ps(b, "4", g2), ps(b, "x", g1)}
            << "Lobby (1), Bob 7 1 @10.0.0.1, Playing (0), Away (0)"
            << QStringList{"add 10.0.0.2", "add 10.0.0.1"};
        QTest::newRow("AN with a state outside 1..3 sorts last and counts nowhere")
            << Messages{an(b, "1", "0"), an(a, "2", "3")}
            << "Lobby (1), Ann 7 2, Playing (0), Away (0), Bob  1" << QStringList{};
        QTest::newRow("from one game to another keeps the old row")
            << Messages{an(b, "1", "2", g1), ps(b, "2", g2)}
            << "Lobby (0), Playing (1), Bob 4 1 @10.0.0.2, Away (0)"
            << QStringList{"add 10.0.0.1", "add 10.0.0.2"};
        QTest::newRow("a game still played by another")
            << Messages{an(b, "1", "2", g1), an(a, "2", "2", g1), ps(b, "3"), rn(a)}
            << "Lobby (1), Bob 7 1, Playing (0), Away (0)"
            << QStringList{"add 10.0.0.1", "add 10.0.0.1", "remove 10.0.0.1 (still played)",
                           "left 2", "remove 10.0.0.1"};
    }
    void handlesMessages()
    {
        QFETCH(Messages, messages);
        QFETCH(QString, rows);
        QFETCH(QStringList, calls);
        PlayerList list;
        list.receive(messages);
        QCOMPARE(describe(list.model), rows);
        QCOMPARE(list.calls, calls);
    }

    // Random traffic, in phases that grow the list to several hundred entries and shrink it
    // again, against a plain reference: a list that takes each new or re-coded entry off,
    // appends it and stable-sorts everything by code, descending, after every message.
    void matchesFullResortUnderRandomTraffic()
    {
        struct Ref
        {
            QString name, ip;
            int state; // 0 is outside 1..3
            bool buddy;
            int code() const { return state ? 3 * state - 2 + buddy : 0; }
        };
        QList<Ref> ref;
        PlayerList list(false);
        // Checks every insert, move and removal signal against the model's contents while the
        // list is small: it walks the whole model each time.
        std::optional<QAbstractItemModelTester> tester;
        tester.emplace(&list.model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTreeView view;
        configurePlayerListView(view, list.model);
        for (int c = 0; c < Model::ColumnCount; ++c)
            QCOMPARE(view.isColumnHidden(c), c != Model::Name);
        QRandomGenerator random(20261123);
        for (int step = 0; step < 6000; ++step) {
            if (step == 500)
                tester.reset();
            const QString name = QStringLiteral("p%1").arg(random.bounded(300));
            const int state = int(random.bounded(4));
            const QString ip =
                random.bounded(2) ? QStringLiteral("10.0.0.%1").arg(random.bounded(4)) : QString();
            const auto first =
                std::find_if(ref.begin(), ref.end(), [&](const Ref &r) { return r.name == name; });
            const int action = int(random.bounded(10));
            if (action < ((step / 1500) % 2 ? 2 : 6)) {
                const bool buddy = random.bounded(4) == 0;
                list.receive({an(name, "1", QString::number(state), ip, buddy ? "1" : "0")});
                ref.append({name, ip, state, buddy});
            } else if (action < 8) {
                list.receive({rn(name)});
                if (first != ref.end())
                    ref.erase(first);
            } else {
                list.receive({ps(name, QString::number(state), ip)});
                if (first != ref.end()) {
                    first->ip = ip;
                    if (state && state != first->state) {
                        const Ref moved{name, ip, state, first->buddy};
                        ref.erase(first);
                        ref.append(moved);
                    }
                }
            }
            std::stable_sort(ref.begin(), ref.end(),
                             [](const Ref &x, const Ref &y) { return x.code() > y.code(); });
            if (step % 10)
                continue; // the counts and the order are kept across messages: faults persist
            QStringList expected;
            for (const Ref &r : ref)
                expected << (r.buddy ? "*" : "") + r.name + u' ' +
                                (r.state ? QString::number(r.code()) : "") + " 1" +
                                (r.ip.isEmpty() ? "" : " @" + r.ip);
            QCOMPARE(describe(list.model), expected.join(", "));
            for (int g = 0; g < 3; ++g)
                QCOMPARE(list.model.groupCount(Model::Group(g)),
                         int(std::count_if(ref.begin(), ref.end(),
                                           [&](const Ref &r) { return r.state == 3 - g; })));
        }
        // Connecting again starts the counts from nothing.
        list.model.clearList();
        list.model.addGroupRows();
        list.receive({an("Bob", "1", "3")});
        QCOMPARE(describe(list.model), QStringLiteral("Lobby (1), Bob 7 1, Playing (0), Away (0)"));
    }

    // The context menu acts on the selected entry: the selection follows it when it moves.
    void selectionFollowsAMovedEntry()
    {
        PlayerList list;
        list.receive({an("Ann", "1", "3"), an("Bob", "2", "3")});
        QItemSelectionModel selection(&list.model);
        selection.setCurrentIndex(list.model.index(list.model.findEntry("Ann"), 0),
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        list.receive({ps("Ann", "1"), an("Cid", "3", "1"), rn("Bob")});
        QCOMPARE(selection.selectedRows().size(), 1);
        QCOMPARE(selection.selectedRows().first().data().toString(), QStringLiteral("Ann"));
        QCOMPARE(selection.currentIndex().data().toString(), QStringLiteral("Ann"));
    }

    void sendsPresence()
    {
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        ScriptedServer server;
        connection.connectToLobby("127.0.0.1", server.port());
        QVERIFY(QTest::qWaitFor([&] { return connection.isConnected(); }));
        QVERIFY(sendPresence(connection, Presence::Away));
        QVERIFY(sendPresence(connection, Presence::Playing, "10.0.0.1"));
        QVERIFY(sendPresence(connection, Presence::Lobby, "10.0.0.1"));
        QVERIFY(server.expect("PS1\x0E\x0FPS2\x0E"
                              "10.0.0.1\x0FPS3\x0E\x0F"));
    }
};

QTEST_MAIN(TestPlayerList)
#include "tst_playerlist.moc"
