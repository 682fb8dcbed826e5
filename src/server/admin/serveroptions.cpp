#include "server/admin/serveroptions.h"

#include <QCommandLineParser>
#include <QStandardPaths>
#include <QUrl>

namespace server {

namespace {

const QString kUsage = QStringLiteral(
    "Usage:\n"
    "  quorvel-server [options]                 run the lobby\n"
    "  quorvel-server account add NAME PASSWORD [--email E] [--db PATH]\n"
    "  quorvel-server account password NAME PASSWORD [--db PATH]\n"
    "  quorvel-server account moderator NAME on|off [--colour N] [--db PATH]\n"
    "  quorvel-server account list [--db PATH]\n"
    "  quorvel-server make-update-key KEYFILE   new key for signing updates; prints its\n"
    "                                           public key\n"
    "  quorvel-server sign-update KEYFILE PROGRAM  writes PROGRAM.sig for --publish\n"
    "\n"
    "Options:\n"
    "  --listen ADDR            address to listen on (default: all)\n"
    "  --port N                 lobby port (default 20000; 0 picks a free one)\n"
    "  --http-port N            web pages port (default 80; 0 picks a free one)\n"
    "  --db PATH                database file (default in the user's data folder)\n"
    "  --publish FILE           the client program that outdated clients download (with\n"
    "                           FILE.sha256 beside it if given, else its SHA-256 is computed,\n"
    "                           and FILE.sig, its signature, which clients require)\n"
    "  --versions LIST          accepted client versions, comma-separated (default \"V 6.0\")\n"
    "  --registration open|closed  whether a login with an unknown name creates the account\n"
    "                           (default closed)\n"
    "  --registration-per-hour N  accounts one address may register in an hour (default 3);\n"
    "                           a player beyond it is told \"Too many new accounts from your\n"
    "                           address\"\n"
    "  --web-address URL        the web pages as players reach them (e.g.\n"
    "                           http://lobby.example.org), for the round results posted in\n"
    "                           rooms (default: the address the player reached, --http-port)\n"
    "  --login-timeout S        seconds a new connection has to log in (default 30)\n"
    "  --idle-timeout S         seconds a logged-in connection may stay silent (default 95)\n"
    "  --hash-cost standard|minimal  work per password hash of a registration (default\n"
    "                           standard); minimal is for test runs only, its hashes are\n"
    "                           cheap to guess\n"
    "  --max-connections N      connections held at once (default 20000)\n"
    "  --max-connections-per-address N  from one address (default 32)\n"
    "  --max-unsent KB          a lobby client with more than this waiting to be sent to it\n"
    "                           is dropped as not reading (default 256)\n"
    "  --web-connections N      web connections held at once (default 256, and at most a\n"
    "                           quarter of the process's descriptor limit)\n"
    "  --web-connections-per-address N  from one address (default 16)\n"
    "  --web-timeout S          seconds a web connection may stay idle (default 15)\n"
    "  --web-memory KB          buffers of one web connection (default 16); a request line\n"
    "                           or headers beyond about half of it are answered 414 or 431\n"
    "  --log-level L            debug, info, warning or error (default info)\n"
    "  --help                   this text\n");

std::optional<quint16> parsePort(const QString &text)
{
    bool ok = false;
    const uint value = text.toUInt(&ok);
    return ok && value <= 65535 ? std::optional<quint16>(quint16(value)) : std::nullopt;
}

std::optional<int> parseSeconds(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || value <= 0 || value > 24 * 3600)
        return std::nullopt;
    return int(value * 1000);
}

ParsedCommandLine parseAdmin(const QStringList &positional, const QCommandLineParser &parser)
{
    AdminCommand command;
    command.databasePath = parser.isSet(QStringLiteral("db")) ? parser.value(QStringLiteral("db"))
                                                              : defaultDatabasePath();
    const QString verb = positional.value(1);
    const auto need = [&](int count) { return positional.size() == count; };
    if (verb == QLatin1String("add") && need(4)) {
        command.kind = AdminCommand::Kind::Add;
        command.name = positional[2];
        command.password = positional[3];
        command.email = parser.value(QStringLiteral("email"));
    } else if (verb == QLatin1String("password") && need(4)) {
        command.kind = AdminCommand::Kind::Password;
        command.name = positional[2];
        command.password = positional[3];
    } else if (verb == QLatin1String("moderator") && need(4) &&
               (positional[3] == QLatin1String("on") || positional[3] == QLatin1String("off"))) {
        command.kind = AdminCommand::Kind::Moderator;
        command.name = positional[2];
        command.moderator = positional[3] == QLatin1String("on");
        if (parser.isSet(QStringLiteral("colour"))) {
            bool ok = false;
            const int colour = parser.value(QStringLiteral("colour")).toInt(&ok, 0);
            if (!ok || colour < 0 || colour > 0xFFFFFF)
                return OptionsError{QStringLiteral("--colour takes a number 0..16777215")};
            command.chatColour = colour;
        }
    } else if (verb == QLatin1String("list") && need(2)) {
        command.kind = AdminCommand::Kind::List;
    } else {
        return OptionsError{QStringLiteral("unknown account command\n") + kUsage};
    }
    return command;
}

} // namespace

QString defaultDatabasePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/quorvel-server/lobby.sqlite");
}

ParsedCommandLine parseCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const auto valueOption = [](const char *name) {
        return QCommandLineOption(QString::fromLatin1(name), QString(), QStringLiteral("value"));
    };
    parser.addOptions({valueOption("listen"),
                       valueOption("port"),
                       valueOption("http-port"),
                       valueOption("db"),
                       valueOption("publish"),
                       valueOption("versions"),
                       valueOption("registration"),
                       valueOption("login-timeout"),
                       valueOption("idle-timeout"),
                       valueOption("hash-cost"),
                       valueOption("email"),
                       valueOption("colour"),
                       valueOption("log-level"),
                       valueOption("max-connections"),
                       valueOption("max-connections-per-address"),
                       valueOption("max-unsent"),
                       valueOption("web-connections"),
                       valueOption("web-connections-per-address"),
                       valueOption("web-timeout"),
                       valueOption("web-memory"),
                       valueOption("registration-per-hour"),
                       valueOption("web-address"),
                       QCommandLineOption(QStringLiteral("help"))});
    if (!parser.parse(arguments))
        return OptionsError{parser.errorText() + QLatin1Char('\n') + kUsage};
    if (parser.isSet(QStringLiteral("help")))
        return HelpRequest{kUsage};

    const QStringList positional = parser.positionalArguments();
    if (positional.value(0) == QLatin1String("account"))
        return parseAdmin(positional, parser);
    if (!positional.isEmpty())
        return OptionsError{QStringLiteral("unexpected argument %1\n").arg(positional.first()) +
                            kUsage};
    for (const char *adminOnly : {"email", "colour"}) {
        if (parser.isSet(QString::fromLatin1(adminOnly)))
            return OptionsError{QStringLiteral("--%1 belongs to the account commands")
                                    .arg(QString::fromLatin1(adminOnly))};
    }

    ServerOptions options;
    if (parser.isSet(QStringLiteral("listen"))) {
        const QString text = parser.value(QStringLiteral("listen"));
        if (!options.listenAddress.setAddress(text))
            return OptionsError{QStringLiteral("--listen: %1 is not an address").arg(text)};
    }
    for (const auto &[name, target] :
         {std::pair{"port", &options.port}, std::pair{"http-port", &options.httpPort}}) {
        const QString key = QString::fromLatin1(name);
        if (!parser.isSet(key))
            continue;
        const std::optional<quint16> port = parsePort(parser.value(key));
        if (!port)
            return OptionsError{QStringLiteral("--%1 takes a port number 0..65535").arg(key)};
        *target = *port;
    }
    options.databasePath = parser.isSet(QStringLiteral("db")) ? parser.value(QStringLiteral("db"))
                                                              : defaultDatabasePath();
    options.publishFile = parser.value(QStringLiteral("publish"));
    if (parser.isSet(QStringLiteral("web-address"))) {
        options.webAddress = parser.value(QStringLiteral("web-address"));
        const QUrl url(options.webAddress, QUrl::StrictMode);
        if (!url.isValid() ||
            (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")) ||
            url.host().isEmpty() || url.hasQuery() || url.hasFragment())
            return OptionsError{QStringLiteral("--web-address takes an address such as "
                                               "http://lobby.example.org:8080")};
    }
    if (parser.isSet(QStringLiteral("versions"))) {
        QStringList versions;
        for (const QString &v : parser.value(QStringLiteral("versions")).split(QLatin1Char(','))) {
            if (!v.trimmed().isEmpty())
                versions.append(v.trimmed());
        }
        if (versions.isEmpty())
            return OptionsError{QStringLiteral("--versions needs at least one version")};
        options.lobby.versions = versions;
    }
    if (parser.isSet(QStringLiteral("registration"))) {
        const QString policy = parser.value(QStringLiteral("registration"));
        if (policy != QLatin1String("open") && policy != QLatin1String("closed"))
            return OptionsError{QStringLiteral("--registration is open or closed")};
        options.lobby.openRegistration = policy == QLatin1String("open");
    }
    if (parser.isSet(QStringLiteral("hash-cost"))) {
        const QString cost = parser.value(QStringLiteral("hash-cost"));
        if (cost != QLatin1String("standard") && cost != QLatin1String("minimal"))
            return OptionsError{QStringLiteral("--hash-cost is standard or minimal")};
        options.hashCost =
            cost == QLatin1String("minimal") ? HashCost::Minimal : HashCost::Standard;
    }
    if (parser.isSet(QStringLiteral("log-level"))) {
        options.logLevel = parser.value(QStringLiteral("log-level"));
        static const QStringList levels{"debug", "info", "warning", "error"};
        if (!levels.contains(options.logLevel))
            return OptionsError{QStringLiteral("--log-level is debug, info, warning or error")};
    }
    for (const auto &[name, target] :
         {std::pair{"max-connections", &options.lobby.maxConnections},
          std::pair{"max-connections-per-address", &options.lobby.maxConnectionsPerAddress},
          std::pair{"web-connections", &options.web.maxConnections},
          std::pair{"web-connections-per-address", &options.web.maxConnectionsPerAddress},
          std::pair{"registration-per-hour", &options.lobby.registrationsPerHour}}) {
        const QString key = QString::fromLatin1(name);
        if (!parser.isSet(key))
            continue;
        bool ok = false;
        const int count = parser.value(key).toInt(&ok);
        if (!ok || count < 1)
            return OptionsError{QStringLiteral("--%1 takes a number above 0").arg(key)};
        *target = count;
    }
    for (const auto &[name, target] : {std::pair{"login-timeout", &options.lobby.loginTimeoutMs},
                                       std::pair{"idle-timeout", &options.lobby.idleTimeoutMs}}) {
        const QString key = QString::fromLatin1(name);
        if (!parser.isSet(key))
            continue;
        const std::optional<int> ms = parseSeconds(parser.value(key));
        if (!ms)
            return OptionsError{QStringLiteral("--%1 takes seconds above 0").arg(key)};
        *target = *ms;
    }
    if (parser.isSet(QStringLiteral("web-timeout"))) {
        const std::optional<int> ms = parseSeconds(parser.value(QStringLiteral("web-timeout")));
        if (!ms || *ms < 1000)
            return OptionsError{QStringLiteral("--web-timeout takes whole seconds above 0")};
        options.web.timeoutSeconds = *ms / 1000;
    }
    // Kilobytes: at least 4 (a request line and a few headers), at most 1 GiB.
    for (const auto &[name, minimum] : {std::pair{"max-unsent", 4}, std::pair{"web-memory", 4}}) {
        const QString key = QString::fromLatin1(name);
        if (!parser.isSet(key))
            continue;
        bool ok = false;
        const int kb = parser.value(key).toInt(&ok);
        if (!ok || kb < minimum || kb > 1024 * 1024)
            return OptionsError{
                QStringLiteral("--%1 takes kilobytes %2..1048576").arg(key).arg(minimum)};
        if (key == QLatin1String("max-unsent"))
            options.lobby.maxUnsentBytes = qint64(kb) * 1024;
        else
            options.web.memoryPerConnection = kb * 1024;
    }
    return options;
}

} // namespace server
