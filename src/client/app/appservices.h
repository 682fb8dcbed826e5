#pragma once

#include <QString>
#include <QStringList>

namespace client {

class Clock;
class Dialogs;
class FolderWatcher;
class GameWindowFinder;
class KeyState;
class ProcessStarter;
class Registry;
class SoundPlayer;
class TcpTable;
class TickCount;
class TrayService;

// The operating-system services the client runs on, owned by the caller; tests give their own.
struct AppServices
{
    TrayService *tray = nullptr;
    SoundPlayer *sounds = nullptr;
    const Clock *clock = nullptr;
    const TickCount *ticks = nullptr;
    Registry *registry = nullptr;
    Dialogs *dialogs = nullptr;
    // The Wine prefix the games are installed in.
    QString winePrefix;
    // The data folder (user.txt, settingRS.txt); empty when the platform has none.
    QString dataFolder;
    // The installed program, which an update replaces; empty: no self-update.
    QString applicationFile;
    // Started with "update": install the published version at start-up.
    bool installUpdate = false;
    // Options the new version is started with after an update.
    QStringList updaterOptions;
    // The game's process start, window search, connection table and folder watch; the
    // Linux ones when not given.
    ProcessStarter *processes = nullptr;
    GameWindowFinder *gameWindowFinder = nullptr;
    TcpTable *tcpTable = nullptr;
    FolderWatcher *folderWatcher = nullptr;
    // The key state the stats-reset hot key is read from; the X11 one when not given.
    KeyState *keyState = nullptr;
    // The command that runs the games' Windows programs; also asked for the player's name.
    QString wineCommand = QStringLiteral("wine");
};

} // namespace client
