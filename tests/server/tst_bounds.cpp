// What one visitor can take of the server is bounded: web requests and answers do not grow its
// memory, web connections are capped and time out without starving the lobby of descriptors,
// the pages answer as browsers expect, and a lobby client that does not read is dropped.
// ctest: timeout=240
#include "lobbytest.h"
#include "server/lobby/accountlimits.h"

#include <QFile>

namespace {

const QByteArray kPublished = "/public/quorvel/quor_vel.exe";
constexpr qint64 kPublishedSize = 8 * 1024 * 1024;

QHostAddress loopback(int host)
{
    return QHostAddress(QHostAddress(QHostAddress::LocalHost).toIPv4Address() + quint32(host));
}

// Raw web connections from the test, each reading at most 16 KiB so that a server which
// holds answers in memory shows it.
struct WebClients
{
    std::vector<std::unique_ptr<QTcpSocket>> sockets;

    void open(quint16 port, int count, const QHostAddress &from = loopback(0))
    {
        for (int i = 0; i < count; ++i) {
            auto &socket = sockets.emplace_back(std::make_unique<QTcpSocket>());
            socket->setReadBufferSize(16 * 1024);
            socket->bind(from);
            socket->connectToHost(QHostAddress::LocalHost, port);
        }
        waitUntil([&] {
            return std::ranges::none_of(sockets, [](const auto &s) {
                return s->state() == QAbstractSocket::ConnectingState;
            });
        });
    }
    int connected() const
    {
        return int(std::ranges::count_if(
            sockets, [](const auto &s) { return s->state() == QAbstractSocket::ConnectedState; }));
    }
};

// The server's peak resident size while `until` does not hold (at most 20 s), in KiB above
// what it had before.
qint64 growthWhile(const ServerProcess &server, const std::function<bool()> &until)
{
    const qint64 before = server.residentKb();
    qint64 peak = before;
    waitUntil(
        [&] {
            peak = std::max(peak, server.residentKb());
            return until();
        },
        20000);
    return peak - before;
}

} // namespace

class TestBounds : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    ServerProcess m_server; // shared by the tests that do not need a server of their own

    bool startServer(ServerProcess &server, const QStringList &more = {})
    {
        static int databases = 0;
        return server.start(
            kLobbyServer, QStringList{"--listen", "127.0.0.1", "--port", "0", "--db",
                                      m_dir.filePath(QStringLiteral("%1.sqlite").arg(++databases)),
                                      "--publish", m_dir.filePath("quor_vel.exe")} +
                              more);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QFile program(m_dir.filePath("quor_vel.exe"));
        QVERIFY(program.open(QIODevice::WriteOnly));
        QVERIFY(program.write(QByteArray(kPublishedSize, 'x')) == kPublishedSize);
        program.close();
        QVERIFY(startServer(m_server));
    }

    void answersAsBrowsersExpect_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArrayList>("headers");
        QTest::addColumn<qint64>("bodySize"); // -1: any
        QTest::addColumn<bool>("closes");     // before a further request on the connection
        const QByteArray tag = "\"abc-80\"";
        const QByteArrayList page{"Content-Type: text/html; charset=utf-8",
                                  "Cache-Control: max-age=", "X-Content-Type-Options: nosniff"};
        const QByteArrayList refused{"Allow: GET, HEAD", "X-Content-Type-Options: nosniff"};
        QTest::newRow("HEAD of the front page")
            << QByteArray("HEAD / HTTP/1.1\r\n\r\n") << 200 << page << 0ll << false;
        QTest::newRow("HEAD of an avatar")
            << QByteArray("HEAD /avatar/abc.jpg HTTP/1.1\r\n\r\n") << 200
            << QByteArrayList{"Content-Type: image/jpeg", "ETag: " + tag, "max-age="} << 0ll
            << false;
        QTest::newRow("avatar not changed")
            << "GET /avatar/abc.jpg HTTP/1.1\r\nIf-None-Match: " + tag + "\r\n\r\n"
            << 304 << QByteArrayList{"ETag: " + tag} << 0ll << false;
        QTest::newRow("no such avatar")
            << QByteArray("GET /avatar/x HTTP/1.1\r\n\r\n") << 404
            << QByteArrayList{"Content-Type: text/plain"} << -1ll << false;
        QTest::newRow("POST") << QByteArray("POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n") << 405
                              << refused << -1ll << true;
        QTest::newRow("OPTIONS") << QByteArray("OPTIONS /avatar/a.jpg HTTP/1.1\r\n\r\n") << 405
                                 << refused << -1ll << true;
        QTest::newRow("a body") << QByteArray("GET / HTTP/1.1\r\nContent-Length: 5\r\n\r\nhello")
                                << 413 << QByteArrayList{} << -1ll << true;
        QTest::newRow("HTTP/1.0") << QByteArray("GET / HTTP/1.0\r\n\r\n") << 200 << page << -1ll
                                  << true;
        QTest::newRow("Connection: close")
            << QByteArray("GET / HTTP/1.1\r\nConnection: close\r\n\r\n") << 200 << page << -1ll
            << true;
        QTest::newRow("published program")
            << "GET " + kPublished + " HTTP/1.1\r\n\r\n"
            << 200
            << QByteArrayList{"Content-Type: application/octet-stream", "Cache-Control: no-cache"}
            << kPublishedSize << false;
    }
    void answersAsBrowsersExpect()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, status);
        QFETCH(QByteArrayList, headers);
        QFETCH(qint64, bodySize);
        QFETCH(bool, closes);
        request.insert(request.indexOf("\r\n") + 2, "Host: t\r\n");
        // A second request shows whether the connection stayed open, and where the first
        // answer's body ends.
        const QByteArray next =
            "GET /avatar/end.jpg HTTP/1.1\r\nHost: t\r\nConnection: close\r\n\r\n";
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_server.webPort());
        QVERIFY(socket.waitForConnected(5000));
        socket.write(request + next);
        QByteArray reply;
        waitUntil(
            [&] {
                reply += socket.readAll();
                return socket.state() == QAbstractSocket::UnconnectedState;
            },
            10000);
        reply += socket.readAll();

        const qsizetype headerEnd = reply.indexOf("\r\n\r\n");
        QVERIFY2(headerEnd > 0, reply.left(200).constData());
        const QByteArray head = reply.left(headerEnd);
        QVERIFY2(head.startsWith("HTTP/1.1 " + QByteArray::number(status)), head.constData());
        for (const QByteArray &header : std::as_const(headers))
            QVERIFY2(head.contains(header), head.constData());
        const qsizetype nextAnswer = reply.indexOf("HTTP/1.1 ", headerEnd);
        QCOMPARE(nextAnswer < 0, closes);
        const qsizetype body = (nextAnswer < 0 ? reply.size() : nextAnswer) - headerEnd - 4;
        if (bodySize >= 0)
            QCOMPARE(body, bodySize);
    }

    // Requests that never end (a header, a request line, a body announced or chunked) and
    // downloads that are not read.
    void memoryStaysBounded_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("connections");
        const QByteArray endless(8 * 1024 * 1024, 'a');
        QTest::newRow("header") << "GET / HTTP/1.1\r\nHost: t\r\nX-A: " + endless << 4;
        QTest::newRow("request line") << "GET /" + endless << 4;
        QTest::newRow("announced body")
            << "POST / HTTP/1.1\r\nHost: t\r\nContent-Length: 100000000000\r\n\r\n" + endless << 4;
        QTest::newRow("chunked body")
            << "GET / HTTP/1.1\r\nHost: t\r\nTransfer-Encoding: chunked\r\n\r\n10000000\r\n" +
                   endless
            << 4;
        QTest::newRow("download") << "GET " + kPublished + " HTTP/1.1\r\nHost: t\r\n\r\n" << 8;
    }
    void memoryStaysBounded()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, connections);
        WebClients clients;
        clients.open(m_server.webPort(), connections);
        for (const auto &socket : clients.sockets)
            socket->write(request);
        // Until each is refused and closed, or being answered.
        const auto settled = [&] {
            return std::ranges::all_of(clients.sockets, [](const auto &s) {
                return s->state() != QAbstractSocket::ConnectedState || s->bytesAvailable() > 0;
            });
        };
        const qint64 growth = growthWhile(m_server, settled);
        QVERIFY(settled());
        QVERIFY2(growth < 8 * 1024, qPrintable(QStringLiteral("%1 KiB").arg(growth)));
    }

    void connectionsAreBounded_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("descriptors"); // of the server process; 0: as inherited
        QTest::addColumn<int>("addresses");
        QTest::addColumn<int>("perAddress");
        QTest::addColumn<int>("keptAtMost"); // -1: not looked at
        QTest::newRow("from one address") << QStringList{} << 0 << 1 << 40 << 16;
        QTest::newRow("idle") << QStringList{"--web-timeout", "1"} << 0 << 1 << 1 << 0;
        // The web side takes no more than a quarter; the lobby still answers.
        QTest::newRow("descriptors") << QStringList{} << 256 << 20 << 16 << -1;
    }
    void connectionsAreBounded()
    {
        QFETCH(QStringList, options);
        QFETCH(int, descriptors);
        QFETCH(int, addresses);
        QFETCH(int, perAddress);
        QFETCH(int, keptAtMost);
        ServerProcess server;
        server.setDescriptorLimit(descriptors);
        QVERIFY(startServer(server, options));
        WebClients clients;
        for (int a = 0; a < addresses; ++a)
            clients.open(server.webPort(), perAddress, loopback(a + 1));
        if (keptAtMost >= 0)
            QTRY_VERIFY_WITH_TIMEOUT(clients.connected() <= keptAtMost, 10000);
        TestClient player(server.port());
        QVERIFY(player.greet());
    }

    void clientThatDoesNotReadIsDropped()
    {
        server::LobbyConfig config;
        config.maxUnsentBytes = 32 * 1024;
        TestLobby lobby(config);
        lobby.addAccount("Quiet");
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");

        QTcpSocket quiet; // reads one byte, then nothing
        quiet.setReadBufferSize(1);
        quiet.connectToHost(QHostAddress::LocalHost, lobby.server->serverPort());
        quiet.write(protocol::buildMessage(Code::Version, {"V 6.0"}) +
                    protocol::buildMessage(Code::Login, {"Quiet", "pw"}));
        QVERIFY(waitUntil([&] { return lobby.server->lobby().findByName("Quiet"); }));

        // Loopback's kernel buffers take a few MB before anything waits in the server.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("dropped: does not read"));
        const QString line(500, QLatin1Char('x'));
        const int most = 12000; // 6 MB
        int sent = 0;
        while (lobby.server->lobby().findByName("Quiet") && sent < most) {
            lobby.clock.advance(server::AccountLimits::kChat.windowMs);
            for (int i = 0; i < server::AccountLimits::kChat.events; ++i, ++sent)
                anna->send(Code::ChatLine, {line});
            QVERIFY(bert->takeCount(Code::ChatLine, server::AccountLimits::kChat.events).size() ==
                    server::AccountLimits::kChat.events);
        }
        QVERIFY2(sent < most, "6 MB waited for a client that does not read");
        QVERIFY(bert->take(Code::RemovePlayer).has_value());
        QVERIFY(anna->isConnected() && bert->isConnected());
    }
};

QTEST_MAIN(TestBounds)
#include "tst_bounds.moc"
