#pragma once

#include <QObject>

namespace client {

class Dialogs;
class Options;
class ProcessStarter;

// Starts Rogue Spear from its configured folder: as the server of a hosted game, or as a
// client of a game server's address, always on the game port. A start that fails (no folder
// set, no such file, no Wine) is told to the user in a message box and the client goes on.
class GameLauncher : public QObject
{
    Q_OBJECT

public:
    GameLauncher(const Options &options, ProcessStarter &processes, Dialogs &dialogs,
                 QObject *parent = nullptr);

public Q_SLOTS:
    // "roguespear.exe -server 2346". True when the game was started.
    bool launchGameServer();
    // "roguespear.exe -client ADDRESS 2346", the address as given.
    bool launchGameClient(const QString &address);

private:
    bool launch(const QStringList &arguments);

    const Options &m_options;
    ProcessStarter &m_processes;
    Dialogs &m_dialogs;
};

} // namespace client
