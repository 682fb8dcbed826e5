// Hostile clients against the lobby: floods that would reach everyone stop at their limit
// while an honest player stays connected and answered; logins cannot be starved or timed to
// tell names apart; names and relayed text cannot impersonate; connections per address are
// capped, and so are registrations; refusals are logged in summary; a database the server
// cannot trust keeps it from starting.
// ctest: timeout=300
#include "lobbytest.h"
#include "server/admin/admincommands.h"
#include "server/admin/serveroptions.h"
#include "server/lobby/accountlimits.h"
#include "server/lobby/loginhandler.h"
#include "server/lobby/registrationcap.h"

#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <unistd.h>

using Cycle = QList<std::pair<Code, QStringList>>; // sent in turn, over and over

namespace {
QHostAddress loopback(int host)
{
    return QHostAddress(QHostAddress(QHostAddress::LocalHost).toIPv4Address() + quint32(host));
}
} // namespace

class TestHostile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void floodsStopAtTheirLimit_data()
    {
        QTest::addColumn<Cycle>("flood");
        QTest::addColumn<QList<Code>>("relayed"); // what the flood makes Bert receive
        QTest::addColumn<int>("limit");
        QTest::addColumn<bool>("reconnectHalfway");
        using L = server::AccountLimits;
        const QString bigAddress(64 * 1024 - 16, QLatin1Char('9'));
        QTest::newRow("lobby chat")
            << Cycle{{Code::ChatLine, {"hi"}}} << QList{Code::ChatLine} << L::kChat.events << false;
        QTest::newRow("chat, logging in again")
            << Cycle{{Code::ChatLine, {"hi"}}} << QList{Code::ChatLine} << L::kChat.events << true;
        // The first change goes out at once, the rest wait for the next presence tick.
        QTest::newRow("64 KiB addresses") << Cycle{{Code::PlayerStatus, {"2", bigAddress}}}
                                          << QList{Code::PlayerStatus} << 1 << false;
        // Closing is never dropped: the room opened before and each one opened again close.
        QTest::newRow("room closed and opened")
            << Cycle{{Code::RemoveRoom, {}}, {Code::AddRoom, {QString(3000, 'r')}}}
            << QList{Code::RemoveRoom, Code::AddRoom} << 2 * L::kRoomChanges.events + 1 << false;
        QTest::newRow("room status")
            << Cycle{{Code::RoomStatus, {"In game"}}, {Code::RoomStatus, {"In chat"}}}
            << QList{Code::RoomStatus} << L::kRoomChanges.events << false;
        QTest::newRow("room lock") << Cycle{{Code::LockRoom, {"x"}}, {Code::LockRoom, {""}}}
                                   << QList{Code::LockRoom} << L::kRoomChanges.events << false;
        QTest::newRow("room chat") << Cycle{{Code::RoomChat, {"hi"}}} << QList{Code::RoomChat}
                                   << L::kRoomChat.events << false;
        // Like presence: the first at once, the rest as the latest at the next tick.
        QTest::newRow("ready") << Cycle{{Code::MemberReady, {"2"}}, {Code::MemberReady, {"1"}}}
                               << QList{Code::MemberReady} << 1 << false;
    }

    // Anna hosts a room Bert is in, and floods; a message of another kind follows as a marker.
    void floodsStopAtTheirLimit()
    {
        QFETCH(Cycle, flood);
        QFETCH(QList<Code>, relayed);
        QFETCH(int, limit);
        QFETCH(bool, reconnectHalfway);
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        anna->send(Code::AddRoom, {"R"});
        bert->send(Code::JoinRoom, {"Anna", ""});
        QVERIFY(anna->take(Code::MemberJoined));
        lobby.clock.advance(60'000);
        bert->clear();

        constexpr int kSent = 40;
        for (int i = 0; i < kSent; ++i) {
            if (reconnectHalfway && i == kSent / 2)
                anna = lobby.loggedIn("Anna");
            const auto &[code, fields] = flood[i % flood.size()];
            anna->send(code, fields);
        }
        const bool presenceFlood = relayed.contains(Code::PlayerStatus);
        if (presenceFlood)
            anna->send(Code::ChatLine, {"marker"});
        else
            anna->send(Code::PlayerStatus, {"1", "marker"});
        QVERIFY(waitUntil([&] {
            return presenceFlood ? bert->hasPending(Code::ChatLine)
                                 : bert->hasPending(Code::PlayerStatus, "Anna");
        }));
        int received = 0;
        for (const Message &m : bert->pending()) {
            received += relayed.contains(m.code) ? 1 : 0;
            QVERIFY(m.code != Code::PlayerStatus || m.field(2).size() <= 45);
        }
        QCOMPARE(received, limit);
        // A room opened past the limit is refused to its host's face, not silently.
        if (relayed.contains(Code::AddRoom))
            QTRY_VERIFY(anna->hasPending(Code::RoomRefused));

        // The honest player is still there and answered.
        QVERIFY(bert->isConnected() && bert->receivedOnlyWellFormed());
        bert->send(Code::ChatLine, {"still here"});
        QVERIFY(bert->takeChatLine("still here"));
    }

    // Wrong guesses at a room's password run out; the right one works again a minute later.
    void roomPasswordsCannotBeGuessed()
    {
        TestLobby lobby;
        auto [anna, carl] = lobby.loggedIn("Anna", "Carl");
        anna->send(Code::AddRoom, {"R"});
        anna->send(Code::LockRoom, {"secret"});
        QVERIFY(carl->take(Code::LockRoom));
        const int tries = server::AccountLimits::kRoomPasswords.events;
        for (int i = 0; i < tries; ++i)
            carl->send(Code::JoinRoom, {"Anna", QString::number(i)});
        carl->send(Code::JoinRoom, {"Anna", "secret"});
        // The right password past the limit is not called wrong: the lobby says why it waits.
        const std::optional<Message> refusal = carl->take(Code::RoomRefused);
        QVERIFY(refusal && refusal->field(0).contains("password"));
        QCOMPARE(carl->takeAll(Code::WrongPassword).size(), tries);
        QVERIFY(!anna->hasPending(Code::ChatLine));
        lobby.clock.advance(server::AccountLimits::kRoomPasswords.windowMs);
        carl->send(Code::JoinRoom, {"Anna", "secret"});
        QVERIFY(carl->take(Code::MemberJoined));
    }

    // Buddy changes stop at their limit, and what was accepted is on disk once a later
    // message is answered.
    void buddyChangesAreLimitedAndStored()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        for (int i = 0; i < 15; ++i)
            anna->send(Code::BuddyAdd, {QString::number(lobby.addAccount(QString("F%1").arg(i)))});
        anna->send(Code::ChatLine, {"done"});
        QVERIFY(anna->takeChatLine("done"));
        QSqlQuery count(lobby.database.handle());
        QVERIFY(count.exec("SELECT COUNT(*) FROM buddies") && count.next());
        QCOMPARE(count.value(0).toInt(), server::AccountLimits::kBuddies.events);
    }

    void relayedTextIsCleaned_data()
    {
        QTest::addColumn<Code>("code");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<int>("field"); // of what Bert receives
        QTest::addColumn<QString>("expected");
        QTest::newRow("a second line posing as the service account")
            << Code::ChatLine << QStringList{"a\r\nQUORVEL: b" + QString(QChar(0)) + "c"} << 2
            << "aQUORVEL: bc";
        QTest::newRow("soft hyphen")
            << Code::ChatLine << QStringList{"QUOR\u00ADVEL"} << 2 << "QUORVEL";
        QTest::newRow("chat line")
            << Code::ChatLine << QStringList{QString(600, 'x')} << 2 << QString(512, 'x');
        QTest::newRow("room name")
            << Code::AddRoom << QStringList{QString(30, 'r')} << 1 << QString(20, 'r');
        QTest::newRow("address") << Code::PlayerStatus << QStringList{"2", QString(100, '1')} << 2
                                 << QString(45, '1');
        QTest::newRow("private message")
            << Code::PrivateMessage << QStringList{"Bert", "\n" + QString(600, 'p')} << 1
            << QString(512, 'p');
    }

    void relayedTextIsCleaned()
    {
        QFETCH(Code, code);
        QFETCH(QStringList, fields);
        QFETCH(int, field);
        QFETCH(QString, expected);
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        anna->send(code, fields);
        QCOMPARE(bert->take(code).value_or(Message{}).field(field), expected);
    }

    void names_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("acceptable");
        QTest::newRow("marks and umlaut") << "[Clan]Jörg-1.x" << true;
        QTest::newRow("longest") << QString(32, 'x') << true;
        QTest::newRow("too long") << QString(100, 'x') << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("blank inside") << "Ann a" << false;
        QTest::newRow("control character") << "Ann\x01" << false;
        QTest::newRow("service account, other case") << "quorVel" << false;
        QTest::newRow("service account, full width") << "ＱＵＯＲＶＥＬ" << false;
        QTest::newRow("soft hyphen") << "QUOR\u00ADVEL" << false;
        QTest::newRow("zero-width space") << "Anna\u200B" << false;
    }

    // One rule for registration and the admin command.
    void names()
    {
        QFETCH(QString, name);
        QFETCH(bool, acceptable);
        server::LobbyConfig open;
        open.openRegistration = true;
        TestLobby lobby(open);
        QCOMPARE(lobby.connected()->login(name, "pw").has_value(), acceptable);
        server::AdminCommand add;
        add.kind = server::AdminCommand::Kind::Add;
        add.name = name;
        add.password = "pw";
        QString out;
        QString err;
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        const int exit = server::runAdminCommand(add, lobby.accounts, outStream, errStream);
        QCOMPARE(exit, acceptable ? 1 : 2); // an acceptable name exists already by now
    }

    // Abandoned logins from many addresses, 200 a second, while an honest player logs in
    // from another one.
    void loginsCannotBeStarved()
    {
        TestLobby lobby({}, server::HashCost::Standard);
        lobby.addAccount("Anna");
        QObject attackers;
        int sent = 0;
        QTimer flood;
        QObject::connect(&flood, &QTimer::timeout, [&] {
            auto *socket = new QTcpSocket(&attackers);
            socket->bind(loopback(2 + sent % 200));
            QObject::connect(socket, &QTcpSocket::connected, socket, [socket] {
                socket->write(protocol::buildMessage(Code::Version, {"V 6.0"}) +
                              protocol::buildMessage(Code::Login, {"Anna", "guess"}));
                socket->disconnectFromHost();
            });
            socket->connectToHost(QHostAddress::LocalHost, lobby.server->serverPort());
            ++sent;
        });
        flood.start(5);
        QVERIFY(waitUntil([&] { return sent >= 200; }));
        // Answered while the flood goes on, before another 400 abandoned logins have come: a
        // bound in the flood's own pace rather than in wall-clock time.
        QVERIFY(lobby.connected(loopback(300))->login("Anna", "pw"));
        QCOMPARE_LT(sent, 600);
        flood.stop();
    }

    // With registration closed, an unknown name is checked against a hash of the same cost as
    // the stored ones, so that its refusal takes as long as a wrong password's.
    void unknownNamesCostAHashOfTheStoredCost()
    {
        TestLobby lobby({}, server::HashCost::Standard);
        lobby.addAccount("Anna");
        const auto cost = [](const QByteArray &hash) { return hash.split('$').mid(1, 3); };
        QCOMPARE(cost(lobby.passwords.dummyHash()),
                 cost(lobby.accounts.findByName("Anna")->passwordHash));
    }

    void connectionsPerAddressAreCapped()
    {
        server::LobbyConfig config;
        config.maxConnectionsPerAddress = 3;
        config.maxConnections = 5;
        TestLobby lobby(config);
        QList<bool> kept;
        for (const int host : {2, 2, 2, 2, 3, 4, 5}) {
            TestClient *client = lobby.connected(loopback(host));
            client->send(Code::Version, {"V 6.0"});
            QVERIFY(waitUntil(
                [&] { return !client->isConnected() || client->hasPending(Code::SendLogin); }));
            kept.append(client->isConnected());
        }
        QCOMPARE(kept, QList<bool>({true, true, true, false, true, true, false}));
    }

    // Refused connections are logged as the first one and a count per interval, not a line each.
    void refusalsAreSummarised()
    {
        LogCapture log;
        server::LobbyConfig config;
        config.maxConnectionsPerAddress = 1;
        config.refusalSummaryMs = 1000;
        TestLobby lobby(config);
        QVERIFY(lobby.connected()->isConnected());
        for (int batch = 0; batch < 30; ++batch) { // 3,000 refused
            std::array<QTcpSocket, 100> sockets;
            for (QTcpSocket &s : sockets)
                s.connectToHost(QHostAddress::LocalHost, lobby.server->serverPort());
            QVERIFY(waitUntil([&] {
                return std::all_of(sockets.cbegin(), sockets.cend(), [](const QTcpSocket &s) {
                    return s.state() == QAbstractSocket::UnconnectedState;
                });
            }));
        }
        // "addr=A refused: CAUSE" once, then "addr=A refused N more times in ...: CAUSE".
        const auto counted = [&] {
            int count = 0;
            for (const QString &line : log.lines().filter("refused"))
                count += std::max(1, line.section(' ', 2, 2).toInt());
            return count;
        };
        QVERIFY(waitUntil([&] { return counted() == 3000; }));
        QVERIFY(log.lines().filter("refused").size() <= 30);
    }

    // One address registers a few accounts an hour; the next is told why it is refused, while
    // other addresses and existing accounts are unaffected.
    void registrationsPerAddressAreCapped()
    {
        server::LobbyConfig config;
        config.openRegistration = true;
        config.registrationsPerHour = 2;
        TestLobby lobby(config);
        lobby.addAccount("Anna");
        const auto registers = [&](const QString &name, int host) {
            return lobby.connected(loopback(host))->login(name, "pw").has_value();
        };
        QVERIFY(registers("New1", 2) && registers("New2", 2));
        TestClient *third = lobby.connected(loopback(2));
        QVERIFY(!third->login("New3", "pw"));
        QCOMPARE(third->fields(Code::RoomRefused),
                 Rows{{server::LoginHandler::kTooManyRegistrations}});
        QVERIFY(!lobby.accounts.findByName("New3"));
        QVERIFY(registers("Anna", 2) && registers("New3", 3));
        lobby.clock.advance(server::RegistrationCap::kWindowMs);
        QVERIFY(registers("New4", 2));
    }

    void untrustworthyDatabaseStopsTheStart_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("message");
        QTest::newRow("read-only") << "read-only"
                                   << "is not writable";
        QTest::newRow("damaged page") << "damaged"
                                      << "is damaged";
        QTest::newRow("dropped table") << "dropped"
                                       << "lacks the table buddies";
    }

    void untrustworthyDatabaseStopsTheStart()
    {
        QFETCH(QString, damage);
        QFETCH(QString, message);
        QTemporaryDir dir;
        const QString path = dir.filePath("lobby.sqlite");
        {
            server::Database database;
            QVERIFY(database.open(path));
            server::AccountStore accounts(database);
            const QByteArray hash = server::hashPassword("pw", server::HashCost::Minimal);
            for (int i = 0; i < 40; ++i) // enough rows for a few pages
                QVERIFY(accounts.create(QString("Player%1").arg(i), hash));
        }
        // Created for its owner only: it holds password hashes.
        QCOMPARE(QFile::permissions(path) & 0x00FF, 0);
        if (damage == "damaged") {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(4096));
            file.write(QByteArray(4096, '\xA5'));
        } else if (damage == "dropped") {
            server::Database database;
            QVERIFY(database.open(path));
            QVERIFY(QSqlQuery(database.handle()).exec("DROP TABLE buddies"));
        } else {
            QFile::setPermissions(path, QFile::ReadOwner);
            // The owner's permissions do not bind root; an immutable file does.
            if (geteuid() == 0)
                QCOMPARE(QProcess::execute("chattr", {"+i", path}), 0);
        }
        const ServerProcess::Result result =
            ServerProcess::run(kLobbyServer, {"--db", path, "--port", "0", "--http-port", "0"});
        if (damage == "read-only" && geteuid() == 0)
            QProcess::execute("chattr", {"-i", path});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
    }
};

QTEST_GUILESS_MAIN(TestHostile)
#include "tst_hostile.moc"
