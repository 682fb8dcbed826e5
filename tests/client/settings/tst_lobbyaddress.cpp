#include "client/settings/lobbyaddress.h"

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
        QTest::addColumn<QString>("parsed"); // empty: refused
        const auto add = [](const char *name, QString text, QString parsed) {
            QTest::newRow(name) << text << parsed;
        };
        add("host only", "lobby.example.org", "lobby.example.org:20000");
        add("host and port, spaces trimmed", "  127.0.0.1:4711 ", "127.0.0.1:4711");
        add("ipv6 with port", "[::1]:5000", "[::1]:5000");
        add("ipv6 without port", "[::1]", "[::1]:20000");
        add("port zero", "host:0", "");
        add("port too big", "host:70000", "");
        add("no host", ":20000", "");
        add("unclosed bracket", "[::1:20", "");
    }
    void parses()
    {
        QFETCH(QString, text);
        QFETCH(QString, parsed);
        const auto address = HostPort::parse(text, 20000);
        QCOMPARE(address ? address->toString() : QString(), parsed);
    }

    void keptInTheDataFolder()
    {
        QTemporaryDir dir;
        QCOMPARE(ServerAddresses::load(dir.path()).lobby.host, QStringLiteral("localhost"));
        ServerAddresses addresses;
        addresses.lobby = {QStringLiteral("::1"), 20001};
        addresses.save(dir.path());
        const ServerAddresses loaded = ServerAddresses::load(dir.path());
        QCOMPARE(loaded.lobby.toString(), QStringLiteral("[::1]:20001"));
        QCOMPARE(loaded.webOrLobbyHost().toString(), QStringLiteral("[::1]:80"));
    }
};

QTEST_GUILESS_MAIN(TestLobbyAddress)
#include "tst_lobbyaddress.moc"
