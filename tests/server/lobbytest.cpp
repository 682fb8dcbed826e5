#include "lobbytest.h"

#include "protocol/wiremessage.h"
#include "server/core/serverlog.h"

#include <QSqlQuery>
#include <utility>

Rows fieldsOf(const QList<Message> &messages)
{
    Rows out;
    for (const Message &m : messages)
        out.append(m.fields);
    return out;
}

QStringList fieldOf(const QList<Message> &messages, int index)
{
    QStringList out;
    for (const Message &m : messages)
        out.append(m.field(index));
    return out;
}

QStringList namesOf(const QList<Message> &messages)
{
    return fieldOf(messages, 0);
}

QStringList codesOf(const QList<Message> &messages)
{
    QStringList out;
    for (const Message &m : messages)
        out.append(protocol::codeText(m.code));
    return out;
}

TestClient::TestClient(quint16 port, const QHostAddress &from)
{
    QObject::connect(&m_socket, &QTcpSocket::readyRead, [this] {
        const QByteArray bytes = m_socket.readAll();
        m_received += bytes.size();
        m_buffer.append(bytes);
        while (const auto frame = m_buffer.next()) {
            const int count =
                protocol::fieldCount(frame->code, protocol::Direction::ToClient).value_or(0);
            m_cut += 3 + frame->body.size(); // stray or unknown bytes skipped are not counted
            m_malformed |= count == 0 ? !frame->body.isEmpty()
                                      : frame->body.count(protocol::kSeparator) != count - 1;
            if (auto fields = protocol::splitFields(frame->body, count))
                m_messages.append({frame->code, *fields});
        }
    });
    if (!from.isNull())
        m_socket.bind(from);
    m_socket.connectToHost(QHostAddress::LocalHost, port);
    m_socket.waitForConnected(5000);
}

QList<Message> TestClient::takeCount(Code code, int count, int timeoutMs)
{
    waitUntil(
        [&] {
            return std::count_if(m_messages.cbegin(), m_messages.cend(),
                                 [code](const Message &m) { return m.code == code; }) >= count;
        },
        timeoutMs);
    QList<Message> taken;
    m_messages.removeIf([&](const Message &m) {
        if (m.code != code || taken.size() >= count)
            return false;
        taken.append(m);
        return true;
    });
    return taken;
}

bool TestClient::hasPending(Code code, const QString &first) const
{
    return std::any_of(m_messages.cbegin(), m_messages.cend(), [&](const Message &m) {
        return m.code == code && (first.isNull() || m.field(0) == first);
    });
}

bool TestClient::takeChatLine(const QString &text)
{
    const auto isLine = [&](const Message &m) {
        return m.code == Code::ChatLine && m.field(2) == text;
    };
    waitUntil([&] {
        return !isConnected() || std::any_of(m_messages.cbegin(), m_messages.cend(), isLine);
    });
    return m_messages.removeIf(isLine) == 1;
}

bool TestClient::greet(const QString &version)
{
    send(Code::Version, {version});
    return take(Code::SendLogin).has_value();
}

std::optional<Message> TestClient::login(const QString &name, const QString &password,
                                         const QString &version)
{
    if (!greet(version))
        return std::nullopt;
    send(Code::Login, {name, password});
    waitUntil([this] { return hasPending(Code::LoginFailed) || hasPending(Code::LoginAccepted); },
              10000);
    if (take(Code::LoginFailed, 0))
        return std::nullopt;
    return take(Code::LoginAccepted, 0);
}

namespace {
std::optional<QStringList> g_captured;
QtMessageHandler g_passOn = nullptr;

void capture(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (g_captured && QByteArrayView(context.category).startsWith("quorvel."))
        g_captured->append(message);
    else
        g_passOn(type, context, message);
}
} // namespace

LogCapture::LogCapture()
{
    Q_ASSERT(!g_captured);
    g_captured.emplace();
    // Installed once, beneath the server's escaping, which passes what it writes on to it.
    if (!g_passOn)
        g_passOn = qInstallMessageHandler(capture);
    server::setUpServerLog(QStringLiteral("info"));
}

LogCapture::~LogCapture()
{
    g_captured.reset();
}

QStringList LogCapture::lines() const
{
    return *g_captured;
}

TestLobby::TestLobby(server::LobbyConfig config, server::HashCost cost) : cost(cost)
{
    database.open(dir.filePath("lobby.sqlite"));
    server = std::make_unique<server::LobbyServer>(config, accounts, buddies, diagnostics,
                                                   passwords, clock);
    server->listen(QHostAddress::LocalHost, 0);
    rounds = std::make_unique<server::RoundAnnouncer>(server->rooms());
    statsHandler = std::make_unique<server::StatsHandler>(stats, server->limits(), rounds.get());
    statsHandler->registerWith(server->router());
    live = std::make_unique<server::LiveLobby>(server->lobby(), server->rooms());
    pageStores = std::make_unique<server::PageStores>(database.handle().databaseName());
    pages = std::make_unique<server::StatsPages>(*live, *pageStores);
    pages->addRoutes(routes);
    web = std::make_unique<server::WebServer>(routes);
    web->listen(QHostAddress::LocalHost, 0);
    rounds->setWebPort(web->serverPort());
}

int TestLobby::addAccount(const QString &name, const QString &password, const QString &email)
{
    const QByteArray hash = server::hashPassword(password, cost);
    const auto account = accounts.create(name, hash, email);
    return account ? account->id : 0;
}

TestClient *TestLobby::loggedIn(const QString &name)
{
    if (!accounts.findByName(name))
        addAccount(name);
    TestClient *client = connected();
    const auto accepted = client->login(name, "pw");
    if (!accepted)
        QTest::qFail(qPrintable(QStringLiteral("%1 could not log in").arg(name)), __FILE__,
                     __LINE__);
    const QString stored = accepted ? accepted->field(1) : name;
    for (TestClient *other : std::as_const(m_loggedIn))
        waitUntil(
            [&] { return !other->isConnected() || other->hasPending(Code::AddPlayer, stored); });
    m_loggedIn.append(client);
    return client;
}

TestClient *TestLobby::connected(const QHostAddress &from)
{
    m_clients.push_back(std::make_unique<TestClient>(server->serverPort(), from));
    return m_clients.back().get();
}

bool TestLobby::sync(TestClient *via)
{
    clock.advance(10'000);
    const QString marker = QStringLiteral("sync %1").arg(++m_syncs);
    via->send(Code::ChatLine, {marker});
    bool ok = m_loggedIn.contains(via) || via->takeChatLine(marker);
    for (TestClient *client : std::as_const(m_loggedIn))
        ok = (client->takeChatLine(marker) || !client->isConnected()) && ok;
    return ok;
}

WebReply TestLobby::fetch(const QString &pathAndQuery)
{
    live->publish();
    return webGet(QStringLiteral("http://127.0.0.1:%1%2").arg(web->serverPort()).arg(pathAndQuery));
}

bool TestLobby::lockDatabase()
{
    if (!QSqlQuery(database.handle()).exec(QStringLiteral("PRAGMA busy_timeout = 20")))
        return false;
    m_lockHolder = QStringLiteral("lock holder %1").arg(quintptr(this));
    QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_lockHolder);
    other.setDatabaseName(database.handle().databaseName());
    return other.open() && QSqlQuery(other).exec(QStringLiteral("BEGIN IMMEDIATE"));
}

bool TestLobby::unlockDatabase()
{
    const bool committed =
        QSqlQuery(QSqlDatabase::database(m_lockHolder)).exec(QStringLiteral("COMMIT"));
    QSqlDatabase::removeDatabase(std::exchange(m_lockHolder, QString()));
    return committed;
}

TestLobby::~TestLobby()
{
    web->stop();                 // before the pages it calls
    if (!m_lockHolder.isEmpty()) // a test that failed while holding it
        unlockDatabase();
}
