#pragma once

#include "protocol/codes.h"
#include "protocol/framebuffer.h"
#include "protocol/message.h"
#include "server/core/clock.h"
#include "server/lobby/lobbyconfig.h"
#include "server/lobby/lobbyserver.h"
#include "server/lobby/roundannouncer.h"
#include "server/lobby/statshandler.h"
#include "server/store/accountstore.h"
#include "server/store/buddystore.h"
#include "server/store/database.h"
#include "server/store/diagnosticstore.h"
#include "server/store/passwordhash.h"
#include "server/store/statsstore.h"
#include "server/web/livelobby.h"
#include "server/web/pagestores.h"
#include "server/web/statspages.h"
#include "server/web/webroutes.h"
#include "server/web/webserver.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <climits>
#include <memory>
#include <optional>

// The server's clock for tests: stands still until a test moves it on.
class ManualServerClock final : public server::Clock
{
public:
    qint64 nowMs() const override { return m_now; }
    void advance(qint64 ms) { m_now += ms; }

private:
    qint64 m_now = 1'000'000;
};

using protocol::Code;
using protocol::Message;

using Rows = QList<QStringList>; // the fields of several messages

Rows fieldsOf(const QList<Message> &messages);
QStringList fieldOf(const QList<Message> &messages, int index); // field `index` of each
QStringList namesOf(const QList<Message> &messages);            // the first field of each
QStringList codesOf(const QList<Message> &messages);            // as they travel: "RR", "ÖB"...
// The two bytes of `code` on the wire, for tests that send raw bytes.
inline QByteArray wire(Code code)
{
    return protocol::wireCode(code).toByteArray();
}

// A lobby client for server tests: a real socket that sends messages and collects what the server
// sends, cut into messages as the client cuts them.
class TestClient
{
public:
    // `from`: the loopback address to connect from (127.0.0.1 when null), so that tests can
    // play several hosts.
    explicit TestClient(quint16 port, const QHostAddress &from = {});

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    bool waitForDisconnected()
    {
        return waitUntil([this] { return !isConnected(); });
    }
    void close() { m_socket.disconnectFromHost(); } // as a client that quits
    void send(Code code, const QStringList &fields = {})
    {
        sendRaw(protocol::buildMessage(code, fields));
    }
    void sendRaw(const QByteArray &bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }

    // Waits up to `timeoutMs` for `count` messages with `code`, then removes and returns the first
    // `count` of them there are.
    QList<Message> takeCount(Code code, int count, int timeoutMs = 5000);
    std::optional<Message> take(Code code, int timeoutMs = 5000)
    {
        const QList<Message> taken = takeCount(code, 1, timeoutMs);
        return taken.isEmpty() ? std::nullopt : std::optional(taken.first());
    }
    // The fields of the `count` messages with `code` takeCount() returns.
    Rows fields(Code code, int count = 1) { return fieldsOf(takeCount(code, count)); }
    // Removes and returns every message with `code` received so far, without waiting.
    QList<Message> takeAll(Code code) { return takeCount(code, INT_MAX, 0); }
    bool hasPending(Code code, const QString &first = QString()) const;
    // Waits for the chat line `text` and removes it; false when it does not come.
    bool takeChatLine(const QString &text);
    const QList<Message> &pending() const { return m_messages; } // received, not taken
    void clear() { m_messages.clear(); }

    // True when every byte received forms complete messages of known codes, each with exactly its
    // field count: nothing for a client to skip or misread.
    bool receivedOnlyWellFormed() const { return !m_malformed && m_cut == m_received; }

    bool greet(const QString &version = "V 6.0"); // "VE"; true on "SL"
    // Greets and logs in; the "LT" on success. Leaves the welcome ("AN", "AR") pending.
    std::optional<Message> login(const QString &name, const QString &password,
                                 const QString &version = "V 6.0");

private:
    QTcpSocket m_socket;
    protocol::FrameBuffer m_buffer{protocol::Direction::ToClient};
    QList<Message> m_messages;
    qsizetype m_received = 0;
    qsizetype m_cut = 0;
    bool m_malformed = false;
};

// The server's log lines (its quorvel.* categories, info and above) while an instance lives,
// as the log writes them: through the server's own escaping. One at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    QStringList lines() const;
};

// A lobby server in the test process on an ephemeral loopback port, over a fresh database in a
// temporary folder, hashing passwords at the least cost unless told otherwise, with its statistics
// and web pages on another port. Its clock for the rate limits stands still until advanced.
class TestLobby
{
public:
    explicit TestLobby(server::LobbyConfig config = {},
                       server::HashCost cost = server::HashCost::Minimal);
    ~TestLobby();

    int addAccount(const QString &name, const QString &password = "pw",
                   const QString &email = QString()); // its id
    int idOf(const QString &name) const { return accounts.findByName(name)->id; }
    // A new client logged in as `name` (created when missing), returned once the players logged in
    // before have heard of it. A failed login fails the test.
    TestClient *loggedIn(const QString &name);
    // Several at once, in order: auto [anna, bert] = lobby.loggedIn("Anna", "Bert").
    template <typename... More>
    auto loggedIn(const QString &first, const QString &second, const More &...more)
    {
        return std::array{loggedIn(first), loggedIn(second), loggedIn(QString(more))...};
    }
    TestClient *connected(const QHostAddress &from = {}); // a new client that has said nothing yet

    // Returns once every client from loggedIn(), and `via`, has received all the server sent before
    // it read what `via` has sent so far (and anything else already answered): `via` sends a chat
    // line that reaches everyone after all of that, and which is then removed. The chat clock moves
    // on first, so a test of the chat limit cannot use it.
    bool sync(TestClient *via);

    // GET `pathAndQuery` ("/?p=stats&id=3") from the web pages, which see the lobby as it is.
    WebReply fetch(const QString &pathAndQuery);

    // Plays another process (an admin command, a backup) that takes the database's write lock
    // until unlockDatabase(); the server's own statements then wait at most 20 ms for it.
    bool lockDatabase();
    bool unlockDatabase();

    QTemporaryDir dir;
    server::Database database;
    server::AccountStore accounts{database};
    server::BuddyStore buddies{database};
    server::DiagnosticStore diagnostics{database};
    server::HashCost cost;
    server::PasswordWorker passwords{cost};
    ManualServerClock clock;
    std::unique_ptr<server::LobbyServer> server;
    server::StatsStore stats{database};
    std::unique_ptr<server::RoundAnnouncer> rounds;
    std::unique_ptr<server::StatsHandler> statsHandler;
    std::unique_ptr<server::LiveLobby> live;
    std::unique_ptr<server::PageStores> pageStores;
    server::WebRoutes routes;
    std::unique_ptr<server::StatsPages> pages;
    std::unique_ptr<server::WebServer> web;

private:
    std::vector<std::unique_ptr<TestClient>> m_clients; // closed before the server goes
    QList<TestClient *> m_loggedIn;
    int m_syncs = 0;
    QString m_lockHolder;
};
