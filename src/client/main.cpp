// quorvel: the desktop lobby client.
#include "client/app/clientapplication.h"
#include "client/platform/datafolder.h"
#include "client/platform/dialogs.h"
#include "client/platform/registrylinux.h"
#include "client/platform/soundplayer.h"
#include "client/platform/trayservice.h"
#include "client/session/clock.h"
#include "client/session/lobbyaddress.h"
#include "client/session/tickcount.h"

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

using namespace client;

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    QApplication::setApplicationVersion(QStringLiteral("6.0"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("QUORVEL lobby client"));
    parser.addHelpOption();
    const QCommandLineOption lobbyOption(QStringLiteral("lobby"),
                                         QStringLiteral("Lobby server, HOST[:PORT] (port 20000)."),
                                         QStringLiteral("HOST[:PORT]"));
    const QCommandLineOption webOption(
        QStringLiteral("web"),
        QStringLiteral("Web server for statistics and updates, HOST[:PORT] (default: the lobby "
                       "host, port 80)."),
        QStringLiteral("HOST[:PORT]"));
    parser.addOption(lobbyOption);
    parser.addOption(webOption);
    parser.addPositionalArgument(QStringLiteral("update"),
                                 QStringLiteral("Install a downloaded update."));
    parser.process(app);

    const QString dataFolder = DataFolder::path().value_or(QString());
    ServerAddresses servers =
        dataFolder.isEmpty() ? ServerAddresses{} : ServerAddresses::load(dataFolder);
    bool changed = false;
    if (parser.isSet(lobbyOption)) {
        const auto lobby = HostPort::parse(parser.value(lobbyOption), ServerAddresses::kLobbyPort);
        if (!lobby) {
            std::fprintf(stderr, "quorvel: bad --lobby address: %s\n",
                         qPrintable(parser.value(lobbyOption)));
            return 2;
        }
        servers.lobby = *lobby;
        changed = true;
    }
    if (parser.isSet(webOption)) {
        const auto web = HostPort::parse(parser.value(webOption), ServerAddresses::kWebPort);
        if (!web) {
            std::fprintf(stderr, "quorvel: bad --web address: %s\n",
                         qPrintable(parser.value(webOption)));
            return 2;
        }
        servers.web = *web;
        changed = true;
    }

    SystemTrayService tray;
    EffectSoundPlayer sounds;
    SystemClock clock;
    SystemTickCount ticks;
    LinuxRegistry registry(LinuxRegistry::defaultPaths(dataFolder));
    QtDialogs dialogs;
    ClientApplication client({&tray, &sounds, &clock, &ticks, &registry, &dialogs,
                              LinuxRegistry::defaultWinePrefix(), dataFolder},
                             servers);
    // Queued, so that the shut-down's deferred window deletions run before the loop ends.
    QObject::connect(&client, &ClientApplication::shutDownFinished, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    if (!client.start())
        return 1;
    if (changed)
        servers.save(dataFolder);
    return app.exec();
}
