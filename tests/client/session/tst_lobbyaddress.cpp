#include "client/session/lobbyaddress.h"

#include <QTemporaryDir>
#include <QTest>

using namespace client;

class TestLobbyAddress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parses_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::newRow("host only") << "lobby.example.org" << true << "lobby.example.org" << 20000;
        QTest::newRow("host and port") << "127.0.0.1:4711" << true << "127.0.0.1" << 4711;
        QTest::newRow("ipv6 with port") << "[::1]:5000" << true << "::1" << 5000;
        QTest::newRow("ipv6 without port") << "[::1]" << true << "::1" << 20000;
        QTest::newRow("spaces trimmed") << "  host:1  " << true << "host" << 1;
        QTest::newRow("empty") << "" << false << "" << 0;
        QTest::newRow("port zero") << "host:0" << false << "" << 0;
        QTest::newRow("port too big") << "host:70000" << false << "" << 0;
        QTest::newRow("port not a number") << "host:abc" << false << "" << 0;
        QTest::newRow("no host") << ":20000" << false << "" << 0;
        QTest::newRow("unclosed bracket") << "[::1:20" << false << "" << 0;
    }
    void parses()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QFETCH(QString, host);
        QFETCH(int, port);
        const auto parsed = HostPort::parse(text, 20000);
        QCOMPARE(parsed.has_value(), valid);
        if (valid) {
            QCOMPARE(parsed->host, host);
            QCOMPARE(int(parsed->port), port);
        }
    }

    void keptInTheDataFolder()
    {
        QTemporaryDir dir;
        QCOMPARE(ServerAddresses::load(dir.path()).lobby.host, QStringLiteral("localhost"));
        ServerAddresses addresses;
        addresses.lobby = {QStringLiteral("::1"), 20001};
        addresses.save(dir.path());
        const ServerAddresses loaded = ServerAddresses::load(dir.path());
        QCOMPARE(loaded.lobby.host, QStringLiteral("::1"));
        QCOMPARE(loaded.lobby.port, quint16(20001));
        QVERIFY(!loaded.web);
        QCOMPARE(loaded.webOrLobbyHost().host, QStringLiteral("::1"));
        QCOMPARE(loaded.webOrLobbyHost().port, quint16(80));
    }
};

QTEST_GUILESS_MAIN(TestLobbyAddress)
#include "tst_lobbyaddress.moc"
