#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/playerlistfilter.h"
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

// The rows top to bottom, of the model or of what the filter shows of it: a group row by its
// name, an entry as "name code index @address", marked "*" when bold and "!" when orange.
QString describe(const QAbstractItemModel &shown)
{
    QStringList rows;
    for (int r = 0; r < shown.rowCount(); ++r) {
        const auto text = [&](Model::Column c) { return shown.index(r, c).data().toString(); };
        const QString code = text(Model::PlayerStatus);
        if (code == "9" || code == "6" || code == "3") {
            rows << text(Model::Name).trimmed();
            continue;
        }
        const QVariant colour = shown.index(r, 0).data(Qt::ForegroundRole);
        const bool bold = shown.index(r, 0).data(Qt::FontRole).value<QFont>().bold();
        QString row =
            QStringLiteral("%1%2%3 %4 %5")
                .arg(bold ? "*" : "", colour.isValid() ? colour.value<QColor>().name() : "",
                     text(Model::Name), code, text(Model::Index));
        if (!text(Model::IpToGame).isEmpty())
            row += " @" + text(Model::IpToGame);
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
    IgnoreList ignored{QString()};
    PlayerListFilter filter{model, ignored};
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
        QTest::newRow("a group's players by name, case ignored; equal names as announced")
            << Messages{an(c, "1", "3"), an("bob", "2", "3"), an("ann", "3", "3"),
                        an(b, "4", "3"), an("bob", "5", "3"), ps("ann", "1"),
                        ps("ann", "3")}
            << "Lobby (5), ann 7 3, Bob 7 4, bob 7 2, bob 7 5, Cid 7 1, Playing (0), Away (0)"
            << QStringList{};
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
    // again, against a plain reference sorted whole after every message: by code, descending,
    // then by name without regard to case, equal names in order of announcement. What the
    // filter shows is checked too, while its text and the folded groups change now and then.
    void matchesFullResortUnderRandomTraffic()
    {
        struct Ref
        {
            QString name, ip;
            int state; // 0 is outside 1..3
            bool buddy;
            int arrival;
            int code() const { return state ? 3 * state - 2 + buddy : 0; }
            bool operator<(const Ref &o) const
            {
                if (code() != o.code())
                    return code() > o.code();
                const int c = name.toCaseFolded().compare(o.name.toCaseFolded());
                return c ? c < 0 : name != o.name ? name < o.name : arrival < o.arrival;
            }
        };
        QList<Ref> ref;
        PlayerList list(false);
        // Checks every signal of the model and of the filter against their contents while the
        // list is small: each walks the whole model each time.
        std::optional<QAbstractItemModelTester> tester, filterTester;
        tester.emplace(&list.model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        filterTester.emplace(&list.filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTreeView view;
        configurePlayerListView(view, list.filter);
        QCOMPARE(view.model()->columnCount(), 1); // the internal columns reach no one
        QCOMPARE(view.model()->headerData(0, Qt::Horizontal),
                 list.model.headerData(Model::Name, Qt::Horizontal));
        QRandomGenerator random(20261123);
        int arrivals = 0;
        for (int step = 0; step < 6000; ++step) {
            if (step == 500) {
                tester.reset();
                filterTester.reset();
            }
            const QString name =
                QStringLiteral("%1%2").arg(random.bounded(2) ? "p" : "P").arg(random.bounded(150));
            const int state = int(random.bounded(4));
            const QString ip =
                random.bounded(2) ? QStringLiteral("10.0.0.%1").arg(random.bounded(4)) : QString();
            const auto first =
                std::find_if(ref.begin(), ref.end(), [&](const Ref &r) { return r.name == name; });
            const int action = int(random.bounded(10));
            if (action < ((step / 1500) % 2 ? 2 : 6)) {
                const bool buddy = random.bounded(4) == 0;
                list.receive({an(name, "1", QString::number(state), ip, buddy ? "1" : "0")});
                ref.append({name, ip, state, buddy, ++arrivals});
            } else if (action < 8) {
                list.receive({rn(name)});
                if (first != ref.end())
                    ref.erase(first);
            } else {
                list.receive({ps(name, QString::number(state), ip)});
                if (first != ref.end()) {
                    first->ip = ip;
                    if (state)
                        first->state = state;
                }
            }
            std::sort(ref.begin(), ref.end());
            if (step % 37 == 0) {
                list.filter.setNameFilter(QStringList{"", "1", " P2", "p1"}[random.bounded(4)]);
                list.filter.setFolded(Model::Group(random.bounded(3)), random.bounded(2));
            }
            if (step % 10)
                continue; // the counts and the order are kept across messages: faults persist
            QStringList expected, shown;
            for (const Ref &r : ref) {
                const QString row = (r.buddy ? "*" : "") + r.name + u' ' +
                                    (r.state ? QString::number(r.code()) : "") + " 1" +
                                    (r.ip.isEmpty() ? "" : " @" + r.ip);
                expected << row;
                if (r.name.contains(list.filter.nameFilter(), Qt::CaseInsensitive) &&
                    !(r.state && list.filter.isFolded(Model::Group(3 - r.state))))
                    shown << row;
            }
            QCOMPARE(describe(list.model), expected.join(", "));
            QCOMPARE(describe(list.filter), shown.join(", "));
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

    // The filter is set first, then the traffic comes: what it shows follows every message.
    void filtersAndFolds_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QList<int>>("folded"); // Model::Group
        QTest::addColumn<Messages>("messages");
        QTest::addColumn<QString>("shown");

        enum G { Lobby, Playing, Away };
        const Messages evening{an("Ann", "1", "3"), an("Bob", "2", "2", "10.0.0.1"),
                               an("bobby", "3", "1"), an("Cid", "4", "3")};
        QTest::newRow("part of a name, case ignored; groups keep their counts")
            << " BOB" << QList<int>{} << evening
            << "Lobby (2), Playing (1), Bob 4 2 @10.0.0.1, Away (1), bobby 1 3";
        QTest::newRow("into a folded group (its row and count stay) and out of it")
            << "" << QList<int>{Playing} << evening + Messages{ps("Bob", "3"), ps("Ann", "2")}
            << "Lobby (2), Bob 7 2, Cid 7 4, Playing (1), Away (1), bobby 1 3";
        QTest::newRow("group rows stay unmatched; a player of no group is never folded")
            << "x" << QList<int>{Lobby, Playing, Away}
            << Messages{an("Ann", "1", "3"), an("Max", "2", "0")}
            << "Lobby (1), Playing (0), Away (0), Max  2";
    }
    void filtersAndFolds()
    {
        QFETCH(QString, filter);
        QFETCH(QList<int>, folded);
        QFETCH(Messages, messages);
        QFETCH(QString, shown);
        PlayerList list;
        QAbstractItemModelTester tester(&list.filter,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        list.filter.setNameFilter(filter);
        for (int group : folded)
            list.filter.setFolded(Model::Group(group), true);
        list.receive(messages);
        QCOMPARE(describe(list.filter), shown);
    }

    // A click on a group row, or Space or Enter, folds or unfolds it and never selects it; when
    // the selected player leaves with many others, the selection does not fall onto a group row
    // either.
    void groupRowsFoldAndAreNeverSelected()
    {
        PlayerList list;
        QTreeView view;
        configurePlayerListView(view, list.filter);
        view.resize(200, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        Messages joins{an("Zed", "99", "2")}, leaves;
        for (int i = 0; i < 40; ++i) {
            joins << an(QStringLiteral("p%1").arg(i), QString::number(i), "3");
            leaves << rn(QStringLiteral("p%1").arg(i));
        }
        list.receive(joins);
        const auto click = [&](int row) {
            const QModelIndex at = view.model()->index(row, 0);
            view.scrollTo(at);
            QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(at).center());
        };
        const auto selected = [&] {
            QStringList names;
            for (const QModelIndex &row : view.selectionModel()->selectedRows())
                names << row.data().toString();
            return names.join(',');
        };
        const int playing = list.filter.groupRow(Model::Group::Playing);
        click(playing - 1); // the last lobby player, just above the playing group's row
        QCOMPARE(selected(), QStringLiteral("p9"));
        list.receive(leaves);
        QCOMPARE(selected(), QString());

        click(list.filter.groupRow(Model::Group::Playing));
        QVERIFY(list.filter.isFolded(Model::Group::Playing));
        const auto folded = [&](Model::Group group) {
            return list.filter.index(list.filter.groupRow(group), 0)
                .data(PlayerListFilter::FoldedRole);
        };
        QCOMPARE(folded(Model::Group::Playing), QVariant(true));
        QCOMPARE(folded(Model::Group::Away), QVariant(false));
        QCOMPARE(selected(), QString());
        QCOMPARE(describe(list.filter), QStringLiteral("Lobby (0), Playing (1), Away (0)"));
        click(list.filter.groupRow(Model::Group::Playing));
        QCOMPARE(describe(list.filter),
                 QStringLiteral("Lobby (0), Playing (1), Zed 4 99, Away (0)"));
        QCOMPARE(folded(Model::Group::Playing), QVariant(false));
        view.setCurrentIndex(view.model()->index(list.filter.groupRow(Model::Group::Away), 0));
        QTest::keyClick(&view, Qt::Key_Space);
        QCOMPARE(folded(Model::Group::Away), QVariant(true));
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(folded(Model::Group::Away), QVariant(false));
        QVERIFY(!list.filter.index(2, 0).data(PlayerListFilter::FoldedRole).isValid()); // Zed
    }

    // The context menu acts on the selected entry: the selection follows it when it moves.
    void selectionFollowsAMovedEntry()
    {
        PlayerList list;
        list.receive({an("Ann", "1", "3"), an("Bob", "2", "3")});
        QItemSelectionModel selection(&list.filter);
        selection.setCurrentIndex(
            list.filter.mapFromSource(list.model.index(list.model.findEntry("Ann"), 0)),
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
