// fakegame: stands in for the game executable, installed as roguespear.exe in a game folder.
// It opens the game's window ("Rogue Spear", of the X11 class "Rogue Spear"). With
// "-server PORT" it hosts a game: listens on TCP PORT and answers the UDP status query there
// with a reply built from its options. With "-client ADDRESS PORT" it joins the game at that
// address. With "-round SECONDS" it writes a results log into its folder after each round.
// It ends when its window is closed or on SIGTERM.

#include "resultslog.h"
#include "serverinfo.h"
#include "statusresponder.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QSaveFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>

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

class GameWindow : public QRasterWindow
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(QRect(QPoint(), size()), QColor(40, 60, 40));
    }
};

bool writeResultsLog(const ServerInfo &info, int round)
{
    QSaveFile file(QDir(QCoreApplication::applicationDirPath())
                       .filePath(QStringLiteral("RSResults%1.log").arg(round)));
    return file.open(QIODevice::WriteOnly) &&
           file.write(resultsLog(info, round, QDateTime::currentDateTime())) >= 0 && file.commit();
}

} // namespace

int main(int argc, char *argv[])
{
    // Without a display the window is drawn nowhere, as in tests that only want the network.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stands in for the game: its window, its server or client connection, "
                       "the status query and the results logs."));
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
    const QCommandLineOption client =
        option("client", "Join the game at ADDRESS, on the port that follows.", "address");
    const QCommandLineOption round =
        option("round", "Write a results log after each round of SECONDS.", "seconds");
    const QCommandLineOption windowClass =
        option("class", "The window's X11 class (default: Rogue Spear).", "name");
    parser.addOptions({server, bind, hostName, map, gameType, maxPlayers, player, password, locked,
                       timeLimit, noTimeLimit, client, round, windowClass});
    parser.process(app);
    // The window's class is the application's name when the window is made.
    QGuiApplication::setApplicationName(parser.isSet(windowClass) ? parser.value(windowClass)
                                                                  : QStringLiteral("Rogue Spear"));

    if (parser.isSet(server) == parser.isSet(client))
        return fail(QStringLiteral("give either -server PORT or -client ADDRESS PORT"));
    bool ok = false;
    const QString portText =
        parser.isSet(server) ? parser.value(server) : parser.positionalArguments().value(0);
    const uint port = portText.toUInt(&ok);
    if (!ok || port > 65535)
        return fail(QStringLiteral("bad port: ") + portText);
    int roundSeconds = 0;
    if (parser.isSet(round)) {
        roundSeconds = parser.value(round).toInt(&ok);
        if (!ok || roundSeconds <= 0)
            return fail(QStringLiteral("bad round length: ") + parser.value(round));
    }

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

    GameWindow window;
    window.setTitle(QStringLiteral("Rogue Spear"));
    window.resize(320, 240);
    window.show();

    QTimer rounds;
    int roundsPlayed = 0;
    if (roundSeconds > 0) {
        QObject::connect(&rounds, &QTimer::timeout, &app, [&] {
            if (!writeResultsLog(info, ++roundsPlayed))
                fail(QStringLiteral("cannot write the results log"));
        });
        rounds.start(roundSeconds * 1000);
    }

    QTcpServer game;
    StatusResponder responder(info);
    QTcpSocket connection;
    if (parser.isSet(server)) {
        QHostAddress address = QHostAddress::AnyIPv4;
        if (parser.isSet(bind) && !address.setAddress(parser.value(bind)))
            return fail(QStringLiteral("bad address: ") + parser.value(bind));
        if (!game.listen(address, quint16(port)))
            return fail(QStringLiteral("cannot listen on TCP port ") + QString::number(port) +
                        QStringLiteral(": ") + game.errorString());
        // Joining players stay connected until they leave.
        QObject::connect(&game, &QTcpServer::newConnection, &app, [&] {
            while (QTcpSocket *socket = game.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        if (!responder.listen(address, game.serverPort()))
            return fail(QStringLiteral("cannot listen on UDP port ") +
                        QString::number(game.serverPort()) + QStringLiteral(": ") +
                        responder.errorString());
        // Tests that asked for any port read it here.
        QTextStream(stdout) << "status " << address.toString() << ' ' << responder.port()
                            << Qt::endl;
    } else {
        const QString host = parser.value(client);
        QObject::connect(&connection, &QTcpSocket::connected, &app, [&] {
            QTextStream(stdout) << "joined " << host << ' ' << port << Qt::endl;
        });
        QObject::connect(&connection, &QTcpSocket::errorOccurred, &app, [&] {
            QTextStream(stderr) << "fakegame: cannot join " << host << ' ' << port << ": "
                                << connection.errorString() << Qt::endl;
        });
        connection.connectToHost(host, quint16(port));
    }
    return app.exec();
}
