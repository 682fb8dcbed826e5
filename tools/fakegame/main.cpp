// fakegame: stands in for the game executable, installed as roguespear.exe in a game folder.
// It opens the game's window ("Rogue Spear", of the X11 class "Rogue Spear"). With
// "-server PORT" it hosts a game: listens on TCP PORT and answers the UDP status query there
// with a reply built from its options and the players who joined it. With "-client ADDRESS PORT" it
// joins the game at that address. With "-round SECONDS" it writes a results log into its folder
// after each round. It ends when its window is closed or on SIGTERM. The command line and what the
// game says are shared with the Windows build in win/, which also keeps the player's name in the
// registry.

#include "gameoptions.h"
#include "protocol/cp1252.h"
#include "resultslog.h"
#include "statusresponder.h"

#include <QDir>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QSaveFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>
#include <ctime>

namespace {

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
                       .filePath(QString::fromStdString(resultsLogName(round))));
    const std::string log = resultsLog(info, round, std::time(nullptr));
    return file.open(QIODevice::WriteOnly) &&
           file.write(log.data(), qint64(log.size())) == qint64(log.size()) && file.commit();
}

} // namespace

int main(int argc, char *argv[])
{
    // Without a display the window is drawn nowhere, as in tests that only want the network.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    std::vector<std::string> arguments;
    for (const QString &argument : QCoreApplication::arguments().mid(1))
        arguments.push_back(protocol::toCp1252(argument).toStdString());
    std::variant<GameOptions, std::string> parsed = parseGameOptions(arguments);
    if (const std::string *error = std::get_if<std::string>(&parsed))
        return fail(protocol::fromCp1252(*error));
    const GameOptions &options = std::get<GameOptions>(parsed);
    const ServerInfo &info = options.info;
    // The window's class is the application's name when the window is made.
    QGuiApplication::setApplicationName(protocol::fromCp1252(options.windowClass));

    GameWindow window;
    window.setTitle(QStringLiteral("Rogue Spear"));
    window.resize(320, 240);
    window.show();

    QTimer rounds;
    int roundsPlayed = 0;
    if (options.roundSeconds > 0) {
        QObject::connect(&rounds, &QTimer::timeout, &app, [&] {
            if (!writeResultsLog(info, ++roundsPlayed))
                fail(QStringLiteral("cannot write the results log"));
        });
        rounds.start(options.roundSeconds * 1000);
    }

    QTcpServer game;
    StatusResponder responder(info);
    QTcpSocket connection;
    std::size_t joined = 0;
    const quint16 port = options.port;
    if (options.host) {
        QHostAddress address = QHostAddress::AnyIPv4;
        const QString bind = QString::fromStdString(options.bindAddress);
        if (!bind.isEmpty() && !address.setAddress(bind))
            return fail(QStringLiteral("bad address: ") + bind);
        if (!game.listen(address, port))
            return fail(QStringLiteral("cannot listen on TCP port ") + QString::number(port) +
                        QStringLiteral(": ") + game.errorString());
        // Joining players stay connected until they leave and count in the status reply
        // meanwhile; one who finds every slot taken is turned away at once.
        QObject::connect(&game, &QTcpServer::newConnection, &app, [&] {
            while (QTcpSocket *socket = game.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                if (!hasRoom(info, joined)) {
                    QTextStream(stdout) << "player turned away, the game is full" << Qt::endl;
                    socket->abort();
                    continue;
                }
                responder.setJoinedPlayers(++joined);
                QTextStream(stdout)
                    << "player joined from " << socket->peerAddress().toString() << Qt::endl;
                QObject::connect(socket, &QTcpSocket::disconnected, &app, [&] {
                    responder.setJoinedPlayers(--joined);
                    QTextStream(stdout) << "player left" << Qt::endl;
                });
            }
        });
        if (!responder.listen(address, game.serverPort()))
            return fail(QStringLiteral("cannot listen on UDP port ") +
                        QString::number(game.serverPort()) + QStringLiteral(": ") +
                        responder.errorString());
        // Tests that asked for any port read it here.
        QTextStream(stdout) << "status " << address.toString() << ' ' << responder.port()
                            << Qt::endl;
    } else {
        const QString host = QString::fromStdString(options.joinAddress);
        QObject::connect(&connection, &QTcpSocket::connected, &app, [&] {
            QTextStream(stdout) << "joined " << host << ' ' << port << Qt::endl;
        });
        QObject::connect(&connection, &QTcpSocket::errorOccurred, &app, [&] {
            QTextStream(stderr) << "fakegame: cannot join " << host << ' ' << port << ": "
                                << connection.errorString() << Qt::endl;
        });
        connection.connectToHost(host, port);
    }
    return app.exec();
}
