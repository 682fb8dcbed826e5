#include "testlobby.h"

#include "testclient.h"

#include <QDeadlineTimer>
#include <QTest>

TestLobby::TestLobby(server::LobbyConfig config)
{
    m_database.open(m_dir.filePath(QStringLiteral("lobby.sqlite")));
    m_server = std::make_unique<server::LobbyServer>(config, m_accounts, m_buddies, m_diagnostics,
                                                     m_passwords, m_clock);
    m_listening = m_server->listen(QHostAddress::LocalHost, 0);
}

TestLobby::~TestLobby()
{
    m_clients.clear();
    m_server.reset();
}

int TestLobby::addAccount(const QString &name, const QString &password, const QString &email)
{
    const auto account = m_accounts.create(name, server::hashPassword(password), email);
    return account ? account->id : 0;
}

TestClient *TestLobby::loggedIn(const QString &name)
{
    if (!m_accounts.findByName(name))
        addAccount(name);
    TestClient *client = connected();
    if (!client->login(name, QStringLiteral("pw")))
        return nullptr;
    for (TestClient *other : std::as_const(m_loggedIn)) {
        QDeadlineTimer deadline(5000);
        while (other->isConnected() && !other->hasPending(protocol::Code::AddPlayer, name) &&
               !deadline.hasExpired())
            QTest::qWait(2);
    }
    m_loggedIn.append(client);
    return client;
}

TestClient *TestLobby::connected()
{
    m_clients.push_back(std::make_unique<TestClient>(port()));
    return m_clients.back().get();
}
