#pragma once

#include "client/app/clientapplication.h"
#include "client/lobby/credentialsfile.h"
#include "client/platform/registrylinux.h"
#include "support/clientfakes.h"
#include "support/files.h"
#include "support/gamefakes.h"

#include <QTemporaryDir>

// How the program was installed and started, for the self-update.
struct AppProgram
{
    QString file;        // the installed program; empty: the client cannot update itself
    bool update = false; // started with "update"
    QStringList options; // passed on to the updater and the new version
};

// The whole client as the program builds it, over the fakes, with its data folder, Wine prefix
// and registry files in a temporary home of its own. Nothing starts until `app.start()`. Given
// `earlierData` (another harness's data folder), the data folder starts as a copy of it: the
// program started again on the files an earlier run left.
struct AppHarness
{
    explicit AppHarness(client::ServerAddresses servers = {}, AppProgram program = {},
                        const QString &earlierData = {})
        : app({&tray, &player, &clock, &ticks, &registry, &dialogs, home.filePath("wine"),
               takeOver(earlierData), program.file, program.update, program.options, &games,
               nullptr, nullptr, nullptr, &keys},
              std::move(servers))
    {
    }
    QString dataFolder() const { return home.filePath("data"); }
    QString takeOver(const QString &earlierData) const
    {
        if (!earlierData.isEmpty())
            copyFolder(earlierData, dataFolder());
        return dataFolder();
    }

    QTemporaryDir home;
    FakeTray tray;
    RecordingPlayer player;
    ManualClock clock;
    client::SystemTickCount ticks;
    FakeDialogs dialogs;
    client::LinuxRegistry registry{
        {home.filePath("autostart"), home.filePath("system.reg"), home.filePath("registry.ini")}};
    GameStarter games;
    FakeKeyState keys;
    client::ClientApplication app;
};

// Makes `dataFolder` log in automatically as `name`, with a game folder (returned) that holds
// the event sounds, so that the client starts quietly and, with `sounds`, can be heard.
inline QString writeAutoLogin(const QString &dataFolder, const QString &name, bool sounds = true)
{
    const QString game = dataFolder + "/RogueSpear";
    writeFile(game + "/data/sound/A_CRHRN1.WAV");
    writeFile(dataFolder + "/settingRS.txt", QByteArray("0\r\n1\r\n") + (sounds ? "1" : "0") +
                                                 "\r\n0\r\n0\r\n" + game.toUtf8() + "\r\n\r\n");
    client::CredentialsFile::write(dataFolder + "/user.txt", {name, "pw-" + name});
    return game;
}
