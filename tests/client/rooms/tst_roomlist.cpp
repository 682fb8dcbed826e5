#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomlistview.h"
#include "client/ui/icons.h"
#include "protocol/message.h"

#include <QHeaderView>
#include <QSet>
#include <QTest>
#include <QTreeView>

#include <optional>
#include <utility>

using namespace client;

using protocol::Code;

class TestRoomList : public QObject
{
    Q_OBJECT

private:
    std::optional<RoomListModel> m_rooms;
    std::optional<LobbyDispatcher> m_dispatcher;
    std::optional<RoomListHandlers> m_handlers; // last: it leaves the dispatcher first
    QSet<QString> m_playersInGames;             // the game addresses lobby players are in
    QStringList m_events;                       // "closing:HOST" and "game:ADDRESS", in order

    void addRoom(const QString &host, const QString &address, const QString &players)
    {
        m_dispatcher->receive(
            protocol::buildMessage(Code::AddRoom, {host, "r", address, "c", players, "0"}));
    }
    // Each row as "host|room|status|players|tag|icon", icon O(pen), L(ocked) or G(ame).
    QStringList rows() const
    {
        QStringList out;
        for (int r = 0; r < m_rooms->rowCount(); ++r) {
            QString kind = QStringLiteral("??OLG?").mid(qBound(0, int(m_rooms->icon(r)), 5), 1);
            if (m_rooms->item(r, 0)->icon().isNull())
                kind += " without picture";
            out << QStringList{m_rooms->text(r, RoomListModel::Host),
                               m_rooms->text(r, RoomListModel::RoomName),
                               m_rooms->text(r, RoomListModel::Status),
                               m_rooms->text(r, RoomListModel::Players),
                               m_rooms->tag(r),
                               kind}
                       .join('|');
        }
        return out;
    }

private Q_SLOTS:
    void init()
    {
        m_handlers.reset();
        m_rooms.emplace();
        m_dispatcher.emplace();
        m_playersInGames.clear();
        m_events.clear();
        m_handlers.emplace(*m_rooms, *m_dispatcher, [this](const QString &address) {
            return m_playersInGames.contains(address);
        });
        connect(&*m_handlers, &RoomListHandlers::roomClosing, this,
                [this](const QString &host) { m_events << "closing:" + host; });
        connect(&*m_handlers, &RoomListHandlers::gameRowAdded, this,
                [this](const QString &address) { m_events << "game:" + address; });
    }

    // Each step is "CODE|field|...": server messages AR, RR, RC (player count), LR, sent as one
    // stream until the next local step: +G / -G ADDRESS (add / remove a running-game row),
    // P [ADDRESS] (the address lobby players are in), S COLUMN (header click).
    void script_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QStringList>("events");
        const auto add = [](const char *name, QStringList steps, QStringList rows,
                            QStringList events = {}) {
            QTest::newRow(name) << steps << rows << events;
        };
        // How odd fields read is the protocol's to test; here one row per path through the list.
        add("AR: counts padded to eight, not converted",
            {"AR|Bob|war|10.0.0.5|In chat|1|1", "AR|B|r|1.1.1.2|c|123456789|0",
             "AR|C|r|1.1.1.3|c|abc|0"},
            {"Bob|war|In chat|       1|10.0.0.5|L", "B|r|c|123456789|1.1.1.2|O",
             "C|r|c|     abc|1.1.1.3|O"});
        add("LR locks and opens",
            {"AR|A|r|1.1.1.1|c|2|1", "AR|B|r|1.1.1.2|c|2|0", "LR|A|0", "LR|B|1"},
            {"A|r|c|       2|1.1.1.1|O", "B|r|c|       2|1.1.1.2|L"});
        add("RC, LR and RR never touch a running game's row",
            {"+G|10.0.0.7", "RC|N/A|9", "LR|N/A|1", "RR|N/A|0"}, {"N/A|N/A|In game|N/A|10.0.0.7|G"},
            {"game:10.0.0.7", "closing:N/A"});
        add("unknown and differently cased hosts change nothing",
            {"AR|Bob|r|1.1.1.1|c|2|0", "RC|bob|7", "LR|Al|1"}, {"Bob|r|c|       2|1.1.1.1|O"});
        add("RR, RC and LR act on the first row of a host",
            {"AR|Bob|r|1.1.1.1|c|2|0", "AR|Bob|r|1.1.1.2|c|2|0", "AR|Bob|r|1.1.1.3|c|2|0",
             "RR|Bob|0", "RC|Bob|5", "LR|Bob|1"},
            {"Bob|r|c|       5|1.1.1.2|L", "Bob|r|c|       2|1.1.1.3|O"}, {"closing:Bob"});
        add("RR with the game flag leaves a running game",
            {"AR|Bob|r|1.1.1.5|c|2|0", "AR|Al|r|1.1.1.9|c|2|0", "RR|Bob|1"},
            {"Al|r|c|       2|1.1.1.9|O", "N/A|N/A|In game|N/A|1.1.1.5|G"},
            {"closing:Bob", "game:1.1.1.5"});
        add("RR with the game flag, another room at the address",
            {"AR|Bob|r|1.1.1.5|c|2|0", "AR|Al|r|1.1.1.5|c|2|0", "RR|Bob|1"},
            {"Al|r|c|       2|1.1.1.5|O"}, {"closing:Bob"});
        add("RR of an unknown room is still announced", {"RR|Ghost|1"}, {}, {"closing:Ghost"});
        add("game rows: no empty address, no duplicate", {"+G|", "+G|1.1.1.6", "+G|1.1.1.6"},
            {"N/A|N/A|In game|N/A|1.1.1.6|G"}, {"game:1.1.1.6"});
        add("a game row goes when no lobby player is in it, never a room row",
            {"+G|1.1.1.5", "AR|Bob|r|1.1.1.5|c|2|0", "P|1.1.1.5", "-G|1.1.1.5", "P", "-G|",
             "-G|1.1.1.99", "-G|1.1.1.5", "-G|1.1.1.5"},
            {"Bob|r|c|       2|1.1.1.5|O"}, {"game:1.1.1.5"});
        add("sorted: changed text stays, new row placed, first row found in display order",
            {"AR|Bob|r|1.1.1.1|c|3|0", "AR|Bob|r|1.1.1.2|c|12|0", "S|4", "S|4", "RC|Bob|1",
             "AR|Al|r|1.1.1.3|c|5|0", "LR|Bob|1"},
            {"Al|r|c|       5|1.1.1.3|O", "Bob|r|c|       3|1.1.1.1|L",
             "Bob|r|c|       1|1.1.1.2|O"});
    }
    void script()
    {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, events);
        const QHash<QString, Code> codes{{"AR", Code::AddRoom},
                                         {"RR", Code::RemoveRoom},
                                         {"RC", Code::RoomCount},
                                         {"LR", Code::LockRoom}};
        QByteArray stream;
        const auto flush = [&] { m_dispatcher->receive(std::exchange(stream, {})); };
        for (const QString &step : steps) {
            QStringList fields = step.split('|');
            const QString code = fields.takeFirst();
            const QString arg = fields.value(0);
            if (codes.contains(code))
                stream += protocol::buildMessage(codes[code], fields);
            else
                flush();
            if (code == "+G")
                m_handlers->addGameRow(arg);
            else if (code == "-G")
                m_handlers->removeGameRow(arg);
            else if (code == "P")
                m_playersInGames = arg.isEmpty() ? QSet<QString>{} : QSet<QString>{arg};
            else if (code == "S")
                m_rooms->sortByHeader(arg.toInt());
        }
        flush();
        QCOMPARE(this->rows(), rows);
        QCOMPARE(m_events, events);
    }

    // Rooms as "host|status|players", then a running game at 10.0.9.9 whose ping is 35.
    void headerClicksSort_data()
    {
        QTest::addColumn<QStringList>("rooms");
        QTest::addColumn<QList<int>>("clicks");
        QTest::addColumn<QString>("hosts");
        const QStringList three{"Bob|c|3", "al|c|12", "Cy|c|100"};
        QTest::newRow("first click on Host flips") << three << QList<int>{0} << "N/A Cy Bob al";
        QTest::newRow("second click on Host") << three << QList<int>{0, 0} << "al Bob Cy N/A";
        QTest::newRow("other column keeps descending")
            << three << QList<int>{0, 4} << "N/A Cy al Bob";
        QTest::newRow("out-of-range column ignored")
            << three << QList<int>{4, 9, 4} << "N/A Cy al Bob";
        QTest::newRow("names: case and accents ignored, numbers by value")
            << QStringList{"Zed|c|1", "bob10|c|1", "Émile|c|1", "Bob9|c|1", "bob9|c|1"}
            << QList<int>{0, 0} << "Bob9 bob9 bob10 Émile N/A Zed";
        QTest::newRow("equal cells follow the host")
            << QStringList{"dan|In chat|2", "Cy|In game|2", "al|In chat|2", "Bo|In game|2"}
            << QList<int>{3} << "al dan Bo Cy N/A";
        QTest::newRow("pings by value, no ping after them")
            << QStringList{"al|c|1", "Bo|c|1"} << QList<int>{2} << "N/A al Bo";
    }
    // Clicks on the view's header; a column past the last reaches the model directly.
    void headerClicksSort()
    {
        QFETCH(QStringList, rooms);
        QFETCH(QList<int>, clicks);
        QFETCH(QString, hosts);
        QTreeView view;
        setUpRoomListView(view, *m_rooms);
        view.resize(600, 200);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        for (const QString &room : rooms) {
            const QStringList f = room.split('|');
            m_dispatcher->receive(protocol::buildMessage(
                Code::AddRoom, {f[0], "r", "10.0.0." + f[2], f[1], f[2], "0"}));
        }
        m_handlers->addGameRow("10.0.9.9");
        m_rooms->setText(m_rooms->findRowByTag("10.0.9.9"), RoomListModel::Ping, padLeft8("35"));
        QHeaderView *header = view.header();
        for (int c : clicks) {
            const int x = header->sectionViewportPosition(c) + header->sectionSize(c) / 2;
            if (c >= RoomListModel::ColumnCount)
                m_rooms->sortByHeader(c);
            else
                QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, 2));
        }
        QStringList order;
        for (const QString &row : rows())
            order << row.section('|', 0, 0);
        QCOMPARE(order.join(' '), hosts);
        QCOMPARE(header->sortIndicatorSection(), m_rooms->sortKey());
        QCOMPARE(header->sortIndicatorOrder(), m_rooms->sortOrder());
    }

    // Each kind of row has a picture of its own, and an open room does not look like a player.
    void rowKindsLookApart()
    {
        addRoom("Al", "10.0.0.1", "2");
        addRoom("Bo", "10.0.0.2", "2");
        m_dispatcher->receive(protocol::buildMessage(Code::LockRoom, {"Bo", "1"}));
        m_handlers->addGameRow("10.0.0.3");
        QList<QImage> pictures{Icons::smallIcon(Icons::OpenRoom).pixmap(16).toImage()};
        for (int r = 0; r < m_rooms->rowCount(); ++r)
            pictures << m_rooms->item(r, 0)->icon().pixmap(16).toImage();
        for (int a = 0; a < pictures.size(); ++a) {
            QVERIFY(!pictures[a].isNull());
            for (int b = a + 1; b < pictures.size(); ++b)
                QVERIFY2(pictures[a] != pictures[b],
                         qPrintable(QStringLiteral("%1 %2").arg(a).arg(b)));
        }
    }

    void handlersLeaveWithTheirObject()
    {
        m_handlers.reset();
        addRoom("Bob", "10.0.0.5", "2");
        QCOMPARE(m_rooms->rowCount(), 0);
        QCOMPARE(m_dispatcher->pendingBytes(), 0);
    }
};

QTEST_MAIN(TestRoomList)
#include "tst_roomlist.moc"
