#pragma once

#include <QStringList>

namespace server {

// How the lobby treats its clients; the process options fill it.
struct LobbyConfig
{
    QStringList versions{QStringLiteral("V 6.0")}; // client versions accepted in "VE"
    bool openRegistration = false;                 // an unknown name at login creates the account
    int registrationsPerHour = 3;                  // accounts one address may create in an hour
    int loginTimeoutMs = 30'000;                   // a connection must log in within this
    int idleTimeoutMs = 95'000;        // a logged-in connection silent this long is closed
    int maxConnectionsPerAddress = 32; // further connections from one address are closed
    int maxConnections = 20'000;       // and beyond this many in all
    // A client with more than this waiting to be sent to it is dropped (it does not read).
    qint64 maxUnsentBytes = 256 * 1024;
    // Password checks waiting at once; more are refused. Per address they are bounded by the
    // connections, each of which has at most one login open.
    int maxQueuedLogins = 4096;
    // A player's presence reaches the others at most about once per this; changes in between
    // are sent together as the latest.
    int presenceSpacingMs = 1000;
    // A member's ready state reaches his room at most about once per this, as the latest.
    int readySpacingMs = 1000;
    // Refusals of one cause from one address are logged once, then counted and written as
    // one line per this.
    int refusalSummaryMs = 10'000;
};

} // namespace server
