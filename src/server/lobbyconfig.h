#pragma once

#include <QStringList>

namespace server {

// How the lobby treats its clients; the process options fill it.
struct LobbyConfig
{
    QStringList versions{QStringLiteral("V 6.0")}; // client versions accepted in "VE"
    bool openRegistration = false;                 // an unknown name at login creates the account
    int loginTimeoutMs = 30'000;                   // a connection must log in within this
    int idleTimeoutMs = 95'000;         // a logged-in connection silent this long is closed
    int maxConnectionsPerAddress = 32;  // further connections from one address are closed
    int maxConnections = 20'000;        // and beyond this many in all
    int maxQueuedLoginsPerAddress = 16; // password checks waiting; more are refused
    int maxQueuedLogins = 4096;
};

} // namespace server
