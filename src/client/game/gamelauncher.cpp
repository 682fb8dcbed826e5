#include "client/game/gamelauncher.h"

#include "client/game/gameport.h"
#include "client/platform/dialogs.h"
#include "client/platform/processstarter.h"
#include "client/settings/options.h"

#include <QDir>

namespace client {

GameLauncher::GameLauncher(const Options &options, ProcessStarter &processes, Dialogs &dialogs,
                           QObject *parent)
    : QObject(parent), m_options(options), m_processes(processes), m_dialogs(dialogs)
{
}

bool GameLauncher::launchGameServer()
{
    return launch({QStringLiteral("-server"), QString::number(GamePort)});
}

bool GameLauncher::launchGameClient(const QString &address)
{
    return launch({QStringLiteral("-client"), address, QString::number(GamePort)});
}

bool GameLauncher::launch(const QStringList &arguments)
{
    const QString folder = m_options.pathRS();
    if (folder.trimmed().isEmpty()) {
        m_dialogs.messageBox(applicationTitle(),
                             QStringLiteral("Rogue Spear cannot be started: the path to "
                                            "roguespear.exe is not set. Choose it in the options."),
                             Dialogs::Buttons::Ok, Dialogs::Icon::Warning);
        return false;
    }
    const QString program = QDir::toNativeSeparators(folder + QStringLiteral("/roguespear.exe"));
    const QString error = m_processes.startDetached(program, arguments);
    if (!error.isEmpty()) {
        m_dialogs.messageBox(applicationTitle(),
                             QStringLiteral("Rogue Spear could not be started.\n") + error,
                             Dialogs::Buttons::Ok, Dialogs::Icon::Warning);
        return false;
    }
    return true;
}

} // namespace client
