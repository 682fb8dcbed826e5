#include "server/admin/admincommands.h"
#include "server/admin/serveroptions.h"
#include "server/admin/updatekey.h"
#include "server/core/clock.h"
#include "server/core/serverlog.h"
#include "server/lobby/lobbyserver.h"
#include "server/lobby/roundannouncer.h"
#include "server/lobby/statshandler.h"
#include "server/net/filelimit.h"
#include "server/store/accountstore.h"
#include "server/store/buddystore.h"
#include "server/store/database.h"
#include "server/store/diagnosticstore.h"
#include "server/store/passwordhash.h"
#include "server/store/statsstore.h"
#include "server/web/avatarpages.h"
#include "server/web/livelobby.h"
#include "server/web/pagestores.h"
#include "server/web/publisheddownload.h"
#include "server/web/statspages.h"
#include "server/web/webroutes.h"
#include "server/web/webserver.h"

#include <QCoreApplication>
#include <QTextStream>
#include <csignal>
#include <cstdio>

namespace {

int runLobby(const server::ServerOptions &options, QTextStream &out, QTextStream &err)
{
    server::raiseOpenFileLimit();
    server::setUpServerLog(options.logLevel);
    server::Database database;
    // Another process holding the lock is waited for briefly; writes that still find it busy
    // are retried later rather than blocking the lobby.
    if (!database.open(options.databasePath, 100)) {
        err << "quorvel-server: cannot open the database " << options.databasePath << ": "
            << database.errorString() << '\n';
        return 1;
    }
    server::AccountStore accounts(database);
    server::BuddyStore buddies(database);
    server::DiagnosticStore diagnostics(database);
    server::StatsStore stats(database);
    server::PasswordWorker passwords(options.hashCost);
    server::SteadyClock clock;
    server::LobbyServer lobby(options.lobby, accounts, buddies, diagnostics, passwords, clock);
    server::RoundAnnouncer rounds(lobby.rooms(), options.webAddress);
    server::StatsHandler statsHandler(stats, lobby.limits(), &rounds);
    statsHandler.registerWith(lobby.router());
    if (!lobby.listen(options.listenAddress, options.port)) {
        err << "quorvel-server: cannot listen on " << options.listenAddress.toString() << ':'
            << options.port << ": " << lobby.errorString() << '\n';
        return 1;
    }
    QString shown = options.listenAddress.toString();
    if (options.listenAddress.protocol() == QAbstractSocket::IPv6Protocol)
        shown = QLatin1Char('[') + shown + QLatin1Char(']');
    out << "lobby listening on " << shown << ':' << lobby.serverPort() << Qt::endl;
    // The lobby runs without its pages rather than not at all (port 80 needs privileges).
    // The pages run in the web server's thread: they see the lobby as a snapshot renewed every
    // second and read the database through connections of their own.
    server::LiveLobby live(lobby.lobby(), lobby.rooms());
    server::PageStores pageStores(options.databasePath);
    server::WebRoutes routes;
    server::PublishedDownload(options.publishFile).addRoutes(routes);
    server::AvatarPages::addRoutes(routes);
    server::StatsPages pages(live, pageStores);
    pages.addRoutes(routes);
    server::WebServer web(routes, options.web);
    if (web.listen(options.listenAddress, options.httpPort)) {
        rounds.setWebPort(web.serverPort());
        out << "web listening on " << shown << ':' << web.serverPort() << Qt::endl;
    } else {
        err << "quorvel-server: cannot listen on " << shown << ':' << options.httpPort
            << " for the web pages; running without them" << Qt::endl;
    }
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    // GLib's event loop looks up socket notifiers in a list, so with thousands of sessions
    // every write that starts or ends waiting for the socket costs a scan of them all; Qt's
    // own loop keeps them in a hash.
    qputenv("QT_NO_GLIB", "1");
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quorvel-server"));
    // A client that vanishes mid-write must not end the server.
    std::signal(SIGPIPE, SIG_IGN);
    QTextStream out(stdout);
    QTextStream err(stderr);

    if (const std::optional<int> code = server::runUpdateKeyCommand(app.arguments(), out, err))
        return *code;
    const server::ParsedCommandLine parsed = server::parseCommandLine(app.arguments());
    if (const auto *help = std::get_if<server::HelpRequest>(&parsed)) {
        out << help->text;
        return 0;
    }
    if (const auto *error = std::get_if<server::OptionsError>(&parsed)) {
        err << "quorvel-server: " << error->message << '\n';
        return 2;
    }
    if (const auto *command = std::get_if<server::AdminCommand>(&parsed)) {
        server::Database database;
        if (!database.open(command->databasePath)) {
            err << "quorvel-server: cannot open the database " << command->databasePath << ": "
                << database.errorString() << '\n';
            return 1;
        }
        server::AccountStore accounts(database);
        return server::runAdminCommand(*command, accounts, out, err);
    }
    return runLobby(std::get<server::ServerOptions>(parsed), out, err);
}
