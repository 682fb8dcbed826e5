#pragma once

#include "server/accountstore.h"
#include "server/buddystore.h"
#include "server/clock.h"
#include "server/database.h"
#include "server/diagnosticstore.h"
#include "server/lobbyconfig.h"
#include "server/lobbyserver.h"
#include "server/passwordhash.h"

#include <QTemporaryDir>
#include <memory>

class TestClient;

// A lobby server in the test process on an ephemeral loopback port, over a fresh database
// in a temporary folder. Its clock for the chat limit stands still until advanced.
class TestLobby
{
public:
    explicit TestLobby(server::LobbyConfig config = {});
    ~TestLobby();

    bool isListening() const { return m_listening; }
    quint16 port() const { return m_server->serverPort(); }
    server::LobbyServer &server() { return *m_server; }
    server::AccountStore &accounts() { return m_accounts; }
    server::BuddyStore &buddies() { return m_buddies; }
    server::DiagnosticStore &diagnostics() { return m_diagnostics; }
    server::ManualClock &clock() { return m_clock; }

    // Creates an account directly in the store; its id.
    int addAccount(const QString &name, const QString &password = QStringLiteral("pw"),
                   const QString &email = QString());

    // A new client, owned by the test lobby, logged in as `name` (created when missing).
    // Returns once the players logged in before have heard of it. nullptr when the login
    // fails.
    TestClient *loggedIn(const QString &name);
    // A new connected client that has not said anything yet.
    TestClient *connected();

private:
    QTemporaryDir m_dir;
    server::Database m_database;
    server::AccountStore m_accounts{m_database};
    server::BuddyStore m_buddies{m_database};
    server::DiagnosticStore m_diagnostics{m_database};
    server::PasswordWorker m_passwords;
    server::ManualClock m_clock;
    std::unique_ptr<server::LobbyServer> m_server;
    std::vector<std::unique_ptr<TestClient>> m_clients;
    QList<TestClient *> m_loggedIn;
    bool m_listening = false;
};
