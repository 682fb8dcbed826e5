#include "client/game/gamelauncher.h"

#include "client/game/gamelaunch.h"
#include "client/game/gameport.h"
#include "client/platform/casepath.h"
#include "client/platform/dialogs.h"
#include "client/platform/processstarter.h"
#include "client/platform/winepath.h"
#include "client/settings/options.h"

#include <QFileInfo>

namespace client {

GameLauncher::GameLauncher(const Options &options, ProcessStarter &processes, Dialogs &dialogs,
                           QObject *parent)
    : QObject(parent), m_options(options), m_processes(processes), m_dialogs(dialogs)
{
}

QString GameLauncher::executableIn(const QString &folder)
{
    return resolveCaseInsensitive(folder, QStringLiteral("roguespear.exe"));
}

bool GameLauncher::launchGameServer()
{
    return launch({QStringLiteral("-server"), QString::number(GamePort)}, true);
}

bool GameLauncher::launchGameClient(const QString &address)
{
    return launch({QStringLiteral("-client"), address, QString::number(GamePort)}, false);
}

bool GameLauncher::launch(const QStringList &arguments, bool server)
{
    const QString folder = m_options.pathRS().trimmed();
    if (folder.isEmpty()) {
        m_dialogs.messageBox(applicationTitle(),
                             QStringLiteral("Rogue Spear cannot be started: the path to "
                                            "roguespear.exe is not set. Choose it in the options."),
                             Dialogs::Buttons::Ok, Dialogs::Icon::Warning);
        return false;
    }
    if (server && m_startingServer)
        return false;
    const QString program = executableIn(folder);
    auto *launch = new GameLaunch(this);
    const QString error = launch->start(
        m_processes, {program, arguments, QFileInfo(program).path(), WinePath::prefixOf(program)});
    if (!error.isEmpty()) {
        delete launch;
        tell(error);
        return false;
    }
    connect(launch, &GameLaunch::failed, this, &GameLauncher::tell);
    if (server) {
        m_startingServer = launch;
        connect(launch, &GameLaunch::running, this, [this] {
            m_startingServer.clear();
            Q_EMIT gameServerRunning();
        });
    }
    return true;
}

void GameLauncher::tell(const QString &reason)
{
    m_dialogs.messageBox(applicationTitle(),
                         QStringLiteral("Rogue Spear could not be started.\n") + reason,
                         Dialogs::Buttons::Ok, Dialogs::Icon::Warning);
}

} // namespace client
