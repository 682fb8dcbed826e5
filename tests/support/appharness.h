#pragma once

#include "client/app/clientapplication.h"
#include "client/platform/registrylinux.h"
#include "support/clientfakes.h"

#include <QTemporaryDir>

// The whole client as the program builds it, over the fakes, with its data folder, Wine prefix
// and registry files in a temporary home of its own. Nothing starts until `app.start()`.
struct AppHarness
{
    explicit AppHarness(client::ServerAddresses servers = {})
        : app({&tray, &player, &clock, &ticks, &registry, &dialogs, home.filePath("wine"),
               dataFolder()},
              std::move(servers))
    {
    }
    QString dataFolder() const { return home.filePath("data"); }

    QTemporaryDir home;
    FakeTray tray;
    RecordingPlayer player;
    ManualClock clock;
    client::SystemTickCount ticks;
    FakeDialogs dialogs;
    client::LinuxRegistry registry{
        {home.filePath("autostart"), home.filePath("system.reg"), home.filePath("registry.ini")}};
    client::ClientApplication app;
};
