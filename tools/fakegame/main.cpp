// fakegame: stands in for the game executable. With "-server PORT" it answers the game's
// UDP status query on that port with a reply built from its options.

#include "serverinfo.h"
#include "statusresponder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

namespace {

QCommandLineOption option(const char *name, const char *help, const char *valueName = nullptr)
{
    return valueName ? QCommandLineOption(QLatin1String(name), QLatin1String(help),
                                          QLatin1String(valueName))
                     : QCommandLineOption(QLatin1String(name), QLatin1String(help));
}

int fail(const QString &message)
{
    QTextStream(stderr) << "fakegame: " << message << Qt::endl;
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fakegame"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stands in for the game: answers the status query."));
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addHelpOption();
    const QCommandLineOption server = option("server", "Host a game on PORT (0: any).", "port");
    const QCommandLineOption bind = option("bind", "Listen on ADDRESS only.", "address");
    const QCommandLineOption hostName = option("hostname", "The game's name.", "text");
    const QCommandLineOption map = option("map", "The map.", "text");
    const QCommandLineOption gameType = option("gametype", "The game type.", "text");
    const QCommandLineOption maxPlayers = option("maxplayers", "Player slots.", "n");
    const QCommandLineOption player =
        option("player", "A player NAME:TEAM:PING (repeatable).", "player");
    const QCommandLineOption password = option("password", "The game asks for a password.");
    const QCommandLineOption locked = option("locked", "The game is locked.");
    const QCommandLineOption timeLimit = option("timelimit", "Round time limit.", "seconds");
    const QCommandLineOption noTimeLimit = option("no-timelimit", "Rounds have no time limit.");
    parser.addOptions({server, bind, hostName, map, gameType, maxPlayers, player, password, locked,
                       timeLimit, noTimeLimit});
    parser.process(app);

    if (!parser.isSet(server))
        return fail(QStringLiteral("nothing to do without -server PORT"));
    bool ok = false;
    const uint port = parser.value(server).toUInt(&ok);
    if (!ok || port > 65535)
        return fail(QStringLiteral("bad port: ") + parser.value(server));

    ServerInfo info;
    info.hostPort = quint16(port);
    if (parser.isSet(hostName))
        info.hostName = parser.value(hostName);
    if (parser.isSet(map))
        info.mapName = parser.value(map);
    if (parser.isSet(gameType))
        info.gameType = parser.value(gameType);
    if (parser.isSet(maxPlayers)) {
        info.maxPlayers = parser.value(maxPlayers).toInt(&ok);
        if (!ok)
            return fail(QStringLiteral("bad player slots: ") + parser.value(maxPlayers));
    }
    for (const QString &text : parser.values(player)) {
        const std::optional<ServerInfo::Player> parsed = parsePlayer(text);
        if (!parsed)
            return fail(QStringLiteral("bad player (NAME:TEAM:PING): ") + text);
        info.players.append(*parsed);
    }
    info.password = parser.isSet(password);
    info.locked = parser.isSet(locked);
    if (parser.isSet(noTimeLimit)) {
        info.timeLimitSeconds.reset();
    } else if (parser.isSet(timeLimit)) {
        info.timeLimitSeconds = parser.value(timeLimit).toInt(&ok);
        if (!ok)
            return fail(QStringLiteral("bad time limit: ") + parser.value(timeLimit));
    }

    QHostAddress address = QHostAddress::AnyIPv4;
    if (parser.isSet(bind) && !address.setAddress(parser.value(bind)))
        return fail(QStringLiteral("bad address: ") + parser.value(bind));

    StatusResponder responder(info);
    if (!responder.listen(address, quint16(port)))
        return fail(QStringLiteral("cannot listen on UDP port ") + QString::number(port) +
                    QStringLiteral(": ") + responder.errorString());
    // Tests that asked for any port read it here.
    QTextStream(stdout) << "status " << address.toString() << ' ' << responder.port() << Qt::endl;
    return app.exec();
}
