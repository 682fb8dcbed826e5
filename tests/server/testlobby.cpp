#include "testlobby.h"

#include "testclient.h"

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
    return client->login(name, QStringLiteral("pw")) ? client : nullptr;
}

TestClient *TestLobby::connected()
{
    m_clients.push_back(std::make_unique<TestClient>(port()));
    return m_clients.back().get();
}
