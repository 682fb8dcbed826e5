#pragma once

#include <QObject>
#include <QPointer>

namespace client {

class Dialogs;
class GameLaunch;
class Options;
class ProcessStarter;

// Starts Rogue Spear from its configured folder: as the server of a hosted game, or as a
// client of a game server's address, always on the game port. The executable's name is
// matched without regard to case, as on Windows; it starts in its own folder, and under Wine
// in the prefix its folder lies in. A start that fails (no folder set, no such file, no Wine,
// or a game that ends within its first seconds) is told to the user in a message box and the
// client goes on. While a game server is in its first seconds, further server starts are
// ignored (a double click on Start starts one game).
class GameLauncher : public QObject
{
    Q_OBJECT

public:
    GameLauncher(const Options &options, ProcessStarter &processes, Dialogs &dialogs,
                 QObject *parent = nullptr);

    // The game's executable in `folder`, matched without regard to case.
    static QString executableIn(const QString &folder);

public Q_SLOTS:
    // "roguespear.exe -server 2346". True when the game was set going.
    bool launchGameServer();
    // "roguespear.exe -client ADDRESS 2346", the address as given.
    bool launchGameClient(const QString &address);

Q_SIGNALS:
    // The game started as a server still runs after its first seconds.
    void gameServerRunning();

private:
    bool launch(const QStringList &arguments, bool server);
    void tell(const QString &reason);

    const Options &m_options;
    ProcessStarter &m_processes;
    Dialogs &m_dialogs;
    QPointer<GameLaunch> m_startingServer;
};

} // namespace client
