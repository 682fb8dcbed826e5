#include "lobbytest.h"

#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QTest>

namespace {
const QString kExecutable = QStringLiteral(QUORVEL_BINARY_DIR "/src/server/quorvel-server");
}

bool waitUntil(const std::function<bool()> &done, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QTest::qWait(2);
    }
    return true;
}

QList<QStringList> fieldsOf(const QList<Message> &messages)
{
    QList<QStringList> out;
    for (const Message &m : messages)
        out.append(m.fields);
    return out;
}

QStringList namesOf(const QList<Message> &messages)
{
    QStringList out;
    for (const Message &m : messages)
        out.append(m.field(0));
    return out;
}

TestClient::TestClient(quint16 port)
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

TestLobby::TestLobby(server::LobbyConfig config)
{
    database.open(dir.filePath(QStringLiteral("lobby.sqlite")));
    server = std::make_unique<server::LobbyServer>(config, accounts, buddies, diagnostics,
                                                   passwords, clock);
    listening = server->listen(QHostAddress::LocalHost, 0);
}

int TestLobby::addAccount(const QString &name, const QString &password, const QString &email)
{
    const auto account = accounts.create(name, server::hashPassword(password), email);
    return account ? account->id : 0;
}

TestClient *TestLobby::loggedIn(const QString &name)
{
    if (!accounts.findByName(name))
        addAccount(name);
    TestClient *client = connected();
    if (!client->login(name, QStringLiteral("pw")))
        QTest::qFail(qPrintable(QStringLiteral("%1 could not log in").arg(name)), __FILE__,
                     __LINE__);
    for (TestClient *other : std::as_const(m_loggedIn))
        waitUntil(
            [&] { return !other->isConnected() || other->hasPending(Code::AddPlayer, name); });
    m_loggedIn.append(client);
    return client;
}

TestClient *TestLobby::connected()
{
    m_clients.push_back(std::make_unique<TestClient>(server->serverPort()));
    return m_clients.back().get();
}

bool ServerProcess::start(const QStringList &arguments)
{
    m_process.start(kExecutable, arguments + QStringList{"--port", "0"});
    static const QRegularExpression line(QStringLiteral("^lobby listening on .+:(\\d+)\\n"));
    QByteArray out;
    waitUntil(
        [&] {
            m_process.waitForReadyRead(50);
            out += m_process.readAllStandardOutput();
            m_port = line.match(QString::fromUtf8(out)).captured(1).toUShort();
            return m_port != 0 || m_process.state() == QProcess::NotRunning;
        },
        10000);
    return m_port != 0;
}

void ServerProcess::killHard()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

ServerProcess::Result ServerProcess::run(const QStringList &arguments)
{
    QProcess process;
    process.start(kExecutable, arguments);
    Result result;
    if (!process.waitForFinished(30000))
        return result; // killed by the QProcess destructor
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}
