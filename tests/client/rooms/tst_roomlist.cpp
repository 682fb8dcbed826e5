#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomlistview.h"
#include "protocol/message.h"

#include <QHeaderView>
#include <QRandomGenerator>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

using protocol::Code;
using Row = QStringList; // six column texts, then the tag

Q_DECLARE_METATYPE(RoomListModel::IconIndex)

class TestRoomList : public QObject
{
    Q_OBJECT

private:
    RoomListModel *m_rooms = nullptr;
    LobbyDispatcher *m_dispatcher = nullptr;
    RoomListHandlers *m_handlers = nullptr;
    QSet<QString> m_playersInGames; // the game addresses lobby players are in

    void receive(Code code, const QStringList &fields)
    {
        m_dispatcher->receive(protocol::buildMessage(code, fields));
    }
    void addRoom(const QString &host, const QString &address, const QString &players = "2",
                 const QString &lock = "0")
    {
        receive(Code::AddRoom, {host, host + "'s room", address, "In chat", players, lock});
    }
    Row row(int r) const
    {
        Row out;
        for (int c = 0; c < RoomListModel::ColumnCount; ++c)
            out << m_rooms->text(r, RoomListModel::Column(c));
        return out << m_rooms->tag(r);
    }
    QStringList columnTexts(RoomListModel::Column c) const
    {
        QStringList out;
        for (int r = 0; r < m_rooms->rowCount(); ++r)
            out << m_rooms->text(r, c);
        return out;
    }

private Q_SLOTS:
    void init()
    {
        m_rooms = new RoomListModel(this);
        m_dispatcher = new LobbyDispatcher(this);
        m_playersInGames.clear();
        m_handlers = new RoomListHandlers(
            *m_rooms, *m_dispatcher,
            [this](const QString &address) { return m_playersInGames.contains(address); }, this);
    }
    void cleanup()
    {
        delete m_handlers;
        delete m_dispatcher;
        delete m_rooms;
    }

    void padLeft8_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("padded");
        QTest::newRow("empty") << ""
                               << "        ";
        QTest::newRow("one digit") << "3"
                                   << "       3";
        QTest::newRow("two digits") << "12"
                                    << "      12";
        QTest::newRow("eight digits") << "12345678"
                                      << "12345678";
        QTest::newRow("nine digits") << "123456789"
                                     << "123456789";
    }
    void padLeft8()
    {
        QFETCH(QString, text);
        QFETCH(QString, padded);
        QCOMPARE(::padLeft8(text), padded);
    }

    void addRoomRow_data()
    {
        QTest::addColumn<QString>("players");
        QTest::addColumn<QString>("lock");
        QTest::addColumn<QString>("shownPlayers");
        QTest::addColumn<RoomListModel::IconIndex>("icon");
        QTest::newRow("locked") << "1"
                                << "1"
                                << "       1" << RoomListModel::LockedRoom;
        QTest::newRow("open") << "12"
                              << "0"
                              << "      12" << RoomListModel::OpenRoom;
        QTest::newRow("empty lock flag") << "12"
                                         << ""
                                         << "      12" << RoomListModel::OpenRoom;
        QTest::newRow("lock flag compared as text") << "8"
                                                    << " 1"
                                                    << "       8" << RoomListModel::OpenRoom;
        QTest::newRow("nine-digit count kept") << "123456789"
                                               << "1"
                                               << "123456789" << RoomListModel::LockedRoom;
        QTest::newRow("count not converted") << "abc"
                                             << "2"
                                             << "     abc" << RoomListModel::OpenRoom;
    }
    void addRoomRow()
    {
        QFETCH(QString, players);
        QFETCH(QString, lock);
        QFETCH(QString, shownPlayers);
        QFETCH(RoomListModel::IconIndex, icon);

        receive(Code::AddRoom, {"Bob", "Clan war", "10.0.0.5", "In chat", players, lock});
        QCOMPARE(m_rooms->rowCount(), 1);
        QCOMPARE(row(0), (Row{"Bob", "Clan war", "", "In chat", shownPlayers, "", "10.0.0.5"}));
        QCOMPARE(m_rooms->icon(0), icon);
        QVERIFY(!m_rooms->item(0, 0)->icon().isNull());
    }

    void repeatedAddActsOnFirstRowOnly()
    {
        addRoom("Bob", "10.0.0.1");
        addRoom("Bob", "10.0.0.2");
        QCOMPARE(m_rooms->rowCount(), 2);

        receive(Code::RoomCount, {"Bob", "5"});
        receive(Code::LockRoom, {"Bob", "1"});
        QCOMPARE(m_rooms->text(0, RoomListModel::Players), ::padLeft8("5"));
        QCOMPARE(m_rooms->icon(0), RoomListModel::LockedRoom);
        QCOMPARE(m_rooms->text(1, RoomListModel::Players), ::padLeft8("2"));
        QCOMPARE(m_rooms->icon(1), RoomListModel::OpenRoom);

        receive(Code::RemoveRoom, {"Bob", "0"});
        QCOMPARE(m_rooms->rowCount(), 1);
        QCOMPARE(m_rooms->tag(0), "10.0.0.2");
    }

    void lockFlag_data()
    {
        QTest::addColumn<QString>("flag");
        QTest::addColumn<RoomListModel::IconIndex>("icon");
        QTest::newRow("1 locks") << "1" << RoomListModel::LockedRoom;
        QTest::newRow("0 unlocks") << "0" << RoomListModel::OpenRoom;
        QTest::newRow("number with blanks") << " 1 " << RoomListModel::LockedRoom;
        QTest::newRow("1.0 is one") << "1.0" << RoomListModel::LockedRoom;
        QTest::newRow("2 is open") << "2" << RoomListModel::OpenRoom;
        QTest::newRow("not a number") << "yes" << RoomListModel::OpenRoom;
        QTest::newRow("empty") << "" << RoomListModel::OpenRoom;
    }
    void lockFlag()
    {
        QFETCH(QString, flag);
        QFETCH(RoomListModel::IconIndex, icon);
        addRoom("Al", "10.0.0.9", "2", "1"); // starts locked: "0" must turn it back
        addRoom("Bob", "10.0.0.5", "2", "0");
        receive(Code::LockRoom, {"Al", flag});
        receive(Code::LockRoom, {"Bob", flag});
        QCOMPARE(m_rooms->icon(0), icon);
        QCOMPARE(m_rooms->icon(1), icon);
    }

    // Room messages never touch a running-game row, even when its column 0 holds the name.
    void roomMessagesSkipRunningGames_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("player count") << int(Code::RoomCount) << QStringList{"N/A", "9"};
        QTest::newRow("lock") << int(Code::LockRoom) << QStringList{"N/A", "1"};
        QTest::newRow("remove") << int(Code::RemoveRoom) << QStringList{"N/A", "0"};
    }
    void roomMessagesSkipRunningGames()
    {
        QFETCH(int, code);
        QFETCH(QStringList, fields);
        m_handlers->addGameRow("10.0.0.7");
        const Row before = row(0);
        receive(Code(code), fields);
        QCOMPARE(m_rooms->rowCount(), 1);
        QCOMPARE(row(0), before);
        QCOMPARE(m_rooms->icon(0), RoomListModel::RunningGame);
    }

    void unknownHostChangesNothing()
    {
        addRoom("Bob", "10.0.0.5");
        const Row before = row(0);
        QSignalSpy added(m_handlers, &RoomListHandlers::gameRowAdded);
        receive(Code::RoomCount, {"bob", "7"}); // names are case-sensitive
        receive(Code::LockRoom, {"Al", "1"});
        receive(Code::RemoveRoom, {"Al", "1"});
        QCOMPARE(m_rooms->rowCount(), 1);
        QCOMPARE(row(0), before);
        QCOMPARE(m_rooms->icon(0), RoomListModel::OpenRoom);
        QCOMPARE(added.count(), 0);
    }

    void roomClosingForRunningGame()
    {
        addRoom("Bob", "10.0.0.5");
        addRoom("Al", "10.0.0.9");
        QSignalSpy closing(m_handlers, &RoomListHandlers::roomClosing);
        QSignalSpy added(m_handlers, &RoomListHandlers::gameRowAdded);
        receive(Code::RemoveRoom, {"Bob", "1"});

        QCOMPARE(closing.count(), 1);
        QCOMPARE(closing.at(0).at(0).toString(), "Bob");
        QCOMPARE(m_rooms->rowCount(), 2);
        QCOMPARE(m_rooms->text(0, RoomListModel::Host), "Al");
        QCOMPARE(row(1), (Row{"N/A", "N/A", "", "In game", "N/A", "", "10.0.0.5"}));
        QCOMPARE(m_rooms->icon(1), RoomListModel::RunningGame);
        QCOMPARE(added.count(), 1);
        QCOMPARE(added.at(0).at(0).toString(), "10.0.0.5");
    }

    void roomClosedWithoutGame()
    {
        addRoom("Bob", "10.0.0.5");
        QSignalSpy added(m_handlers, &RoomListHandlers::gameRowAdded);
        receive(Code::RemoveRoom, {"Bob", "0"});
        QCOMPARE(m_rooms->rowCount(), 0);
        QCOMPARE(added.count(), 0);
    }

    // The user's own room window must hear of the closing even when the row is unknown.
    void roomClosingAnnouncedBeforeLookup()
    {
        QSignalSpy closing(m_handlers, &RoomListHandlers::roomClosing);
        QSignalSpy added(m_handlers, &RoomListHandlers::gameRowAdded);
        receive(Code::RemoveRoom, {"Ghost", "1"});
        QCOMPARE(closing.count(), 1);
        QCOMPARE(m_rooms->rowCount(), 0);
        QCOMPARE(added.count(), 0);
    }

    void anotherRowWithTheAddressBlocksTheGameRow()
    {
        addRoom("Bob", "10.0.0.5");
        addRoom("Al", "10.0.0.5");
        QSignalSpy added(m_handlers, &RoomListHandlers::gameRowAdded);
        receive(Code::RemoveRoom, {"Bob", "1"});
        QCOMPARE(m_rooms->rowCount(), 1);
        QCOMPARE(m_rooms->text(0, RoomListModel::Host), "Al");
        QCOMPARE(added.count(), 0);

        m_handlers->addGameRow(QString());
        QCOMPARE(m_rooms->rowCount(), 1);
        m_handlers->addGameRow("10.0.0.8");
        m_handlers->addGameRow("10.0.0.8");
        QCOMPARE(m_rooms->rowCount(), 2);
        QCOMPARE(added.count(), 1);
    }

    void removeGameRow()
    {
        addRoom("Bob", "10.0.0.5"); // a room row with the same tag is never removed
        m_handlers->addGameRow("10.0.0.6");
        m_rooms->appendRow({"N/A", "N/A", "", "In game", "N/A", ""}, "10.0.0.5",
                           RoomListModel::RunningGame);

        m_playersInGames = {"10.0.0.5"};
        m_handlers->removeGameRow("10.0.0.5");
        QCOMPARE(m_rooms->rowCount(), 3);

        m_playersInGames.clear();
        m_handlers->removeGameRow("10.0.0.5");
        QCOMPARE(m_rooms->rowCount(), 2);
        QCOMPARE(m_rooms->icon(0), RoomListModel::OpenRoom);
        QCOMPARE(m_rooms->tag(0), "10.0.0.5");
        QCOMPARE(m_rooms->tag(1), "10.0.0.6");

        m_handlers->removeGameRow(QString());
        m_handlers->removeGameRow("10.0.0.99");
        QCOMPARE(m_rooms->rowCount(), 2);
    }

    // A short room message is dropped whole; the messages around it are all handled.
    void badInputLosesNothingElse()
    {
        QByteArray stream =
            protocol::buildMessage(Code::AddRoom, {"Bob", "r", "10.0.0.5", "In chat", "2", "0"});
        stream += protocol::buildMessage(Code::AddRoom, {"Eve", "r", "10.0.0.6"});
        stream += protocol::buildMessage(Code::LockRoom, {"Bob"});
        stream += protocol::buildMessage(Code::RoomCount, {"Bob"});
        stream += protocol::buildMessage(Code::RemoveRoom, {});
        stream += protocol::buildMessage(Code::LockRoom, {"Bob", "\xff\xfe"});
        stream +=
            protocol::buildMessage(Code::AddRoom, {"Al", "r", "10.0.0.9", "In chat", "3", "1"});
        stream += protocol::buildMessage(Code::RoomCount, {"Al", "4"});
        m_dispatcher->receive(stream);

        QCOMPARE(columnTexts(RoomListModel::Host), (QStringList{"Bob", "Al"}));
        QCOMPARE(m_rooms->icon(0), RoomListModel::OpenRoom);
        QCOMPARE(m_rooms->text(0, RoomListModel::Players), ::padLeft8("2"));
        QCOMPARE(m_rooms->text(1, RoomListModel::Players), ::padLeft8("4"));
        QCOMPARE(m_rooms->icon(1), RoomListModel::LockedRoom);
    }

    void randomRoomMessagesNeverCorruptRows()
    {
        QRandomGenerator random(6);
        const QStringList names = {"Bob", "Al", "N/A", "", "\xd6"};
        for (int i = 0; i < 20000; ++i) {
            const Code codes[] = {Code::AddRoom, Code::RemoveRoom, Code::RoomCount, Code::LockRoom};
            const Code code = codes[random.bounded(4)];
            QStringList fields;
            const int count = random.bounded(8);
            for (int f = 0; f < count; ++f)
                fields << (f == 0 ? names[random.bounded(names.size())]
                                  : QString::number(random.bounded(3)));
            receive(code, fields);
            if (i % 7 == 0)
                m_handlers->addGameRow(QStringLiteral("10.0.0.%1").arg(random.bounded(4)));
        }
        for (int r = 0; r < m_rooms->rowCount(); ++r) {
            const auto icon = m_rooms->icon(r);
            QVERIFY(icon == RoomListModel::OpenRoom || icon == RoomListModel::LockedRoom ||
                    icon == RoomListModel::RunningGame);
            if (icon != RoomListModel::RunningGame)
                QVERIFY(m_rooms->text(r, RoomListModel::Players).size() >= 8);
        }
    }

    void handlersLeaveWithTheirObject()
    {
        delete m_handlers;
        m_handlers = nullptr;
        addRoom("Bob", "10.0.0.5");
        QCOMPARE(m_rooms->rowCount(), 0);
        QCOMPARE(m_dispatcher->pendingBytes(), 0);
    }

    void headerClicksSort_data()
    {
        QTest::addColumn<QList<int>>("clicks");
        QTest::addColumn<int>("column");
        QTest::addColumn<QStringList>("hosts");
        // Rooms: Bob 3 players, al 12, Cy 100 (appended in that order).
        QTest::newRow("first click on Host flips")
            << QList<int>{0} << 0 << QStringList{"Cy", "Bob", "al"};
        QTest::newRow("second click on Host")
            << QList<int>{0, 0} << 0 << QStringList{"al", "Bob", "Cy"};
        QTest::newRow("Players sorts by count keeping the order")
            << QList<int>{4} << 4 << QStringList{"Bob", "al", "Cy"};
        QTest::newRow("second click on Players flips")
            << QList<int>{4, 4} << 4 << QStringList{"Cy", "al", "Bob"};
        QTest::newRow("other column keeps descending")
            << QList<int>{0, 4} << 4 << QStringList{"Cy", "al", "Bob"};
        QTest::newRow("out-of-range column ignored")
            << QList<int>{4, 9, 4} << 4 << QStringList{"Cy", "al", "Bob"};
    }
    void headerClicksSort()
    {
        QFETCH(QList<int>, clicks);
        QFETCH(int, column);
        QFETCH(QStringList, hosts);
        addRoom("Bob", "10.0.0.1", "3");
        addRoom("al", "10.0.0.2", "12");
        addRoom("Cy", "10.0.0.3", "100");
        for (int c : clicks)
            m_rooms->sortByHeader(c);
        QCOMPARE(m_rooms->sortKey(), column);
        QCOMPARE(columnTexts(RoomListModel::Host), hosts);
    }

    void sortedListPlacesNewRowsAndFindsInDisplayOrder()
    {
        addRoom("Bob", "10.0.0.1", "3");
        addRoom("Bob", "10.0.0.2", "12");
        m_rooms->sortByHeader(RoomListModel::Players);
        m_rooms->sortByHeader(RoomListModel::Players); // descending: the 12-player room first
        QCOMPARE(m_rooms->tag(0), "10.0.0.2");
        receive(Code::RoomCount, {"Bob", "1"});
        QCOMPARE(m_rooms->text(0, RoomListModel::Players), ::padLeft8("1"));
        QCOMPARE(m_rooms->tag(0), "10.0.0.2"); // a changed text does not move its row

        addRoom("Al", "10.0.0.3", "5");
        QCOMPARE(columnTexts(RoomListModel::Host), (QStringList{"Al", "Bob", "Bob"}));
        QCOMPARE(m_rooms->tag(1), "10.0.0.1");
    }

    void viewSortsOnHeaderClick()
    {
        QTreeView view;
        setUpRoomListView(view, *m_rooms);
        view.resize(600, 200);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        addRoom("Bob", "10.0.0.1", "3");
        addRoom("Al", "10.0.0.2", "12");

        QHeaderView *header = view.header();
        const auto clickSection = [header](int section) {
            const int x =
                header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                              QPoint(x, header->height() / 2));
        };
        clickSection(RoomListModel::Players);
        QCOMPARE(m_rooms->sortKey(), int(RoomListModel::Players));
        QCOMPARE(header->sortIndicatorSection(), int(RoomListModel::Players));
        QCOMPARE(columnTexts(RoomListModel::Host), (QStringList{"Bob", "Al"}));
        clickSection(RoomListModel::Players);
        QCOMPARE(columnTexts(RoomListModel::Host), (QStringList{"Al", "Bob"}));
        QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
        QCOMPARE(view.model()->headerData(5, Qt::Horizontal).toString(), "Map");
    }
};

QTEST_MAIN(TestRoomList)
#include "tst_roomlist.moc"
