// quorvel: the desktop lobby client.
#include "client/app/clientapplication.h"
#include "client/app/form1.h"
#include "client/desktop/effectsoundplayer.h"
#include "client/desktop/qtdialogs.h"
#include "client/desktop/trayservice.h"
#include "client/platform/clock.h"
#include "client/platform/datafolder.h"
#include "client/platform/detachedprocessstarter.h"
#include "client/platform/registrylinux.h"
#include "client/platform/tickcount.h"
#include "client/platform/unattendeddialogs.h"
#include "client/platform/wineconfig.h"
#include "client/settings/lobbyaddress.h"
#include "client/update/updatecopy.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QUrl>
#include <cstdio>
#include <cstring>

#ifndef QUORVEL_CLIENT_VERSION
#define QUORVEL_CLIENT_VERSION QUORVEL_VERSION
#endif

using namespace client;

int main(int argc, char *argv[])
{
    // Answered before any window system is needed: the updater asks a downloaded program this
    // to see that it runs here.
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("quorvel " QUORVEL_CLIENT_VERSION "\n");
        return 0;
    }
    // The updater copy needs no window system either: it may run as root, without the user's
    // display.
    if (argc >= 2 && std::strcmp(argv[1], kUpdateCopyCommand) == 0) {
        QCoreApplication app(argc, argv);
        return runUpdateCopy(QCoreApplication::arguments().mid(2));
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    QApplication::setApplicationVersion(QStringLiteral(QUORVEL_CLIENT_VERSION));

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
    const QCommandLineOption unattendedOption(
        QStringLiteral("unattended"),
        QStringLiteral("Nobody is at the screen: write message boxes to standard error and "
                       "answer them with their first button."));
    const QCommandLineOption avatarsOption(
        QStringLiteral("avatars"),
        QStringLiteral("Avatar service, e.g. http://HOST:PORT (default: the public service)."),
        QStringLiteral("URL"));
    parser.addOption(lobbyOption);
    parser.addOption(avatarsOption);
    parser.addOption(webOption);
    parser.addOption(unattendedOption);
    const QCommandLineOption wineOption(
        QStringLiteral("wine"),
        QStringLiteral("The command that runs the games' .exe files (default: wine)."),
        QStringLiteral("CMD"));
    parser.addOption(wineOption);
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("update"),
                                 QStringLiteral("Install the published version of QUORVEL over "
                                                "this one, then start it."));
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
    if (parser.isSet(avatarsOption)) {
        const QUrl avatars(parser.value(avatarsOption), QUrl::StrictMode);
        if (!avatars.isValid() || avatars.host().isEmpty() ||
            (avatars.scheme() != QLatin1String("http") &&
             avatars.scheme() != QLatin1String("https"))) {
            std::fprintf(stderr, "quorvel: bad --avatars address: %s\n",
                         qPrintable(parser.value(avatarsOption)));
            return 2;
        }
        servers.avatars = avatars.toString();
        changed = true;
    }

    if (parser.isSet(wineOption) && !dataFolder.isEmpty())
        WineConfig::saveCommand(dataFolder, parser.value(wineOption));
    const QString wineCommand =
        parser.isSet(wineOption) ? parser.value(wineOption) : WineConfig::command(dataFolder);
    DetachedProcessStarter processes(wineCommand, LinuxRegistry::defaultWinePrefix());
    SystemTrayService tray;
    EffectSoundPlayer sounds;
    SystemClock clock;
    SystemTickCount ticks;
    LinuxRegistry registry(LinuxRegistry::defaultPaths(dataFolder));
    QtDialogs screenDialogs;
    UnattendedDialogs unattendedDialogs;
    const bool unattended = parser.isSet(unattendedOption);
    Dialogs &dialogs = unattended ? static_cast<Dialogs &>(unattendedDialogs) : screenDialogs;
    ClientApplication client(
        {&tray, &sounds, &clock, &ticks, &registry, &dialogs, LinuxRegistry::defaultWinePrefix(),
         dataFolder, QCoreApplication::applicationFilePath(),
         parser.positionalArguments() == QStringList{QStringLiteral("update")},
         unattended ? QStringList{QStringLiteral("--unattended")} : QStringList{}, &processes,
         nullptr, nullptr, nullptr, nullptr, wineCommand},
        servers);
    // Queued, so that the shut-down's deferred window deletions run before the loop ends.
    QObject::connect(&client, &ClientApplication::shutDownFinished, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    screenDialogs.setMainWindow(&client.form());
    if (!client.start())
        return 1;
    if (changed)
        servers.save(dataFolder);
    return app.exec();
}
