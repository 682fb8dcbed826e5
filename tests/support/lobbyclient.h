#pragma once

// A whole client logging in automatically to a real lobby server, for the end-to-end tests.

#include "client/lobby/credentialsfile.h"
#include "client/presence/playerlistmodel.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QTemporaryDir>

// A lobby server on free ports that creates accounts on first login, its database in `home`.
inline bool startOpenLobby(ServerProcess &server, const QTemporaryDir &home)
{
    return server.start(kLobbyServer, {"--listen", "127.0.0.1", "--port", "0", "--http-port", "0",
                                       "--registration", "open", "--hash-cost", "minimal", "--db",
                                       home.filePath(QStringLiteral("lobby.sqlite"))});
}

// One client logging in automatically as `name`, with sounds on and a game folder that holds
// the event sounds, so that it starts quietly and its sounds can be heard.
struct LobbyClient : AppHarness
{
    // Its avatars come from the server's own pages.
    LobbyClient(const QString &name, const ServerProcess &server)
        : AppHarness({.lobby = {QStringLiteral("127.0.0.1"), server.port()},
                      .web = {},
                      .avatars = QStringLiteral("http://127.0.0.1:%1").arg(server.webPort())}),
          name(name)
    {
        const QString game = home.filePath("RogueSpear");
        writeFile(game + "/data/sound/A_CRHRN1.WAV");
        writeFile(dataFolder() + "/settingRS.txt",
                  "0\r\n1\r\n1\r\n0\r\n0\r\n" + game.toUtf8() + "\r\n\r\n");
        client::CredentialsFile::write(dataFolder() + "/user.txt", {name, "pw-" + name});
    }

    const QString name;

    // The status code of a player's entry ("7" in the lobby, "8" a buddy there, "1" away...);
    // "" while he is not listed.
    QString statusOf(const QString &player)
    {
        client::PlayerListModel &players = app.players();
        const int row = players.findEntry(player);
        return row < 0 ? QString() : players.text(row, client::PlayerListModel::PlayerStatus);
    }
};

// Starts the clients; whether each then lists all of them, itself included, within 10 s.
inline bool logIn(const QList<LobbyClient *> &clients)
{
    for (LobbyClient *client : clients)
        if (!client->app.start())
            return false;
    return waitUntil(
        [&] {
            for (LobbyClient *client : clients)
                for (LobbyClient *other : clients)
                    if (client->statusOf(other->name).isEmpty())
                        return false;
            return true;
        },
        10000);
}
