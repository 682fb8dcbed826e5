#pragma once

#include "client/lobby/credentialsfile.h"
#include "client/presence/playerlistmodel.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/serverprocess.h"

#include <QDir>

// Starts the real lobby server on loopback with free ports, open registration and a new
// database in `home`.
inline bool startLobbyServer(ServerProcess &server, const QTemporaryDir &home)
{
    return server.start(kLobbyServer, {"--listen", "127.0.0.1", "--port", "0", "--http-port", "0",
                                       "--registration", "open", "--hash-cost", "minimal", "--db",
                                       home.filePath(QStringLiteral("lobby.sqlite"))});
}

// The whole client logging in automatically as `name` to the lobby on `port`, with a game
// folder so that it starts quietly. Nothing happens until `app.start()`.
struct LobbyClient : AppHarness
{
    LobbyClient(const QString &name, quint16 port)
        : AppHarness({.lobby = {QStringLiteral("127.0.0.1"), port}, .web = {}})
    {
        const QString game = home.filePath("RogueSpear");
        QDir().mkpath(game);
        writeFile(dataFolder() + "/settingRS.txt",
                  "0\r\n1\r\n0\r\n0\r\n0\r\n" + game.toUtf8() + "\r\n\r\n");
        client::CredentialsFile::write(dataFolder() + "/user.txt", {name, "pw-" + name});
    }

    // The status code of a player's entry: "7" in the lobby, "1" away (neither is the other's
    // buddy); "" while he is not listed.
    QString statusOf(const QString &name)
    {
        client::PlayerListModel &players = app.players();
        const int row = players.findEntry(name);
        return row < 0 ? QString() : players.text(row, client::PlayerListModel::PlayerStatus);
    }
};
