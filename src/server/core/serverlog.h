#pragma once

#include <QLoggingCategory>
#include <QString>

namespace server {

// The server's log: one line per event with its time, level and category, and for events of
// a connection its session number and peer address (sessionTag()).
Q_DECLARE_LOGGING_CATEGORY(lcLobby) // connections, limits that bite
Q_DECLARE_LOGGING_CATEGORY(lcLogin) // logins, registrations, the slow-down
Q_DECLARE_LOGGING_CATEGORY(lcStore) // the database

// Sets the line format and the lowest level written: "debug", "info", "warning" or "error".
// False for any other level.
bool setUpServerLog(const QString &level);

} // namespace server
