#pragma once

#include "server/lobby/lobbyconfig.h"
#include "server/store/passwordhash.h"
#include "server/web/weblimits.h"

#include <QHostAddress>
#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

namespace server {

// The command line of a running server.
struct ServerOptions
{
    QHostAddress listenAddress{QHostAddress::Any};
    quint16 port = 20000;
    quint16 httpPort = 80; // the web pages; 0 picks a free one
    QString databasePath;
    QString publishFile; // the client program offered for updates; empty: none
    QString webAddress;  // the pages as players reach them, for links; empty: as they reached us
    LobbyConfig lobby;
    WebLimits web;
    HashCost hashCost = HashCost::Standard;    // of the passwords registered while it runs
    QString logLevel = QStringLiteral("info"); // debug, info, warning or error
};

// An admin command on the database: "account add|password|moderator|list".
struct AdminCommand
{
    enum class Kind { Add, Password, Moderator, List };
    Kind kind = Kind::List;
    QString name;
    QString password;
    QString email;
    bool moderator = false;
    std::optional<int> chatColour;
    QString databasePath;
};

struct HelpRequest
{
    QString text;
};

struct OptionsError
{
    QString message;
};

using ParsedCommandLine = std::variant<ServerOptions, AdminCommand, HelpRequest, OptionsError>;

// `arguments` includes the program name first, as QCoreApplication::arguments() gives it.
ParsedCommandLine parseCommandLine(const QStringList &arguments);

// The database when no --db is given: in the user's data folder.
QString defaultDatabasePath();

} // namespace server
