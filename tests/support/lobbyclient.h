#pragma once

// A whole client logging in automatically to a real lobby server, for the end-to-end tests.

#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/presence/playerlistmodel.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/roomlistmodel.h"
#include "client/ui/picturebutton.h"
#include "support/appharness.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeView>

// A lobby server on free ports that creates accounts on first login (as many as the test's
// clients need, all from loopback), its database in `home`, with `more` options.
inline bool startOpenLobby(ServerProcess &server, const QTemporaryDir &home,
                           const QStringList &more = {})
{
    return server.start(kLobbyServer,
                        QStringList{"--listen", "127.0.0.1", "--port", "0", "--http-port", "0",
                                    "--registration", "open", "--registration-per-hour", "100000",
                                    "--hash-cost", "minimal", "--db",
                                    home.filePath(QStringLiteral("lobby.sqlite"))} +
                            more);
}

// One client logging in automatically as `name`, with its sounds on; with `earlierData`, on a
// copy of that data folder (AppHarness).
struct LobbyClient : AppHarness
{
    // Its avatars come from the server's own pages.
    LobbyClient(const QString &name, const ServerProcess &server, const QString &earlierData = {})
        : AppHarness({.lobby = {QStringLiteral("127.0.0.1"), server.port()},
                      .web = {},
                      .avatars = QStringLiteral("http://127.0.0.1:%1").arg(server.webPort())},
                     {}, earlierData),
          name(name), gameFolder(writeAutoLogin(dataFolder(), name))
    {
    }

    const QString name;
    const QString gameFolder;

    // Opens a room named `room` through the create-room dialog, as the user does.
    void createRoom(const QString &room)
    {
        app.form().picCreateRoom->click();
        client::FrmMakeRoom *dialog = app.windows().frmMakeRoom();
        dialog->Text1->insert(room); // as typed, beyond what the keyboard helper can type
        dialog->Picture3->click();
    }
    // A double-click on the row of `host`'s room in the room list.
    void doubleClickRoom(const QString &host)
    {
        Q_EMIT app.form().ListView1->activated(app.rooms().index(app.rooms().findRoomRow(host), 0));
    }

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
