#include "client/app/startupsequence.h"

#include "client/app/appparts.h"
#include "client/app/appwindows.h"
#include "client/app/appwiring.h"
#include "client/app/form1.h"
#include "client/app/optionsloader.h"
#include "client/app/traycontroller.h"
#include "client/lobby/logincontroller.h"
#include "client/login/frmlogin.h"
#include "client/options/frmoptions.h"
#include "client/platform/clock.h"
#include "client/platform/datafolder.h"
#include "client/platform/dialogs.h"
#include "client/platform/privatefiles.h"
#include "client/session/sessionstate.h"
#include "client/settings/autostart.h"
#include "client/settings/defaultgamefolders.h"
#include "client/settings/options.h"
#include "client/update/selfupdate.h"

#include <QGuiApplication>

namespace client {

StartupSequence::StartupSequence(AppParts &parts, QObject *parent) : QObject(parent), m_parts(parts)
{
}

bool StartupSequence::makeDataFolder()
{
    if (!m_parts.dataFolder.isEmpty() && PrivateFiles::makeFolder(m_parts.dataFolder))
        return true;
    m_parts.services.dialogs->messageBox(applicationTitle(),
                                         QStringLiteral("Error %1 in SpecialFolder: %2")
                                             .arg(DataFolder::kNotFoundError)
                                             .arg(QLatin1String(DataFolder::kNotFoundMessage)),
                                         Dialogs::Buttons::Ok, Dialogs::Icon::Critical);
    return false;
}

bool StartupSequence::run()
{
    AppParts &p = m_parts;
    if (!makeDataFolder())
        return false;
    // The program ends through its shut-down only: with the main window hidden to the tray,
    // closing some other window must not end it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    p.form->showAtNormalSize();
    p.servers.applyToSession();
    // Started with "update": a new version that installs and starts replaces this program. A
    // failed one leaves this version running, which then knows not to update again.
    if (p.services.installUpdate && p.selfUpdate->mayInstall() && p.selfUpdate->install()) {
        Q_EMIT updateInstalled();
        return true;
    }
    startGameQuery(p);
    p.session->textSendTime = p.services.clock->now();
    p.session->inGame = false;
    p.session->exitPager = false;
    p.session->keepAliveTicks = 1;
    // The tray's tip names the saved user from the start.
    p.session->ownName = p.savedName();
    p.tray->addIcon();
    // Missing game folders are told with the first steps below, in one message.
    p.optionsLoader->load(OptionsStore::Tell::Quietly);
    p.autoStart->applyRunValue();
    if (p.options->autoLogIn())
        p.login->autoLogin();
    offerFirstSteps();
    return true;
}

QString StartupSequence::offerOptionsText()
{
    return DefaultGameFolders::missingMessage() + QStringLiteral(".\n\nOpen the options now?");
}

void StartupSequence::offerFirstSteps()
{
    AppParts &p = m_parts;
    if (p.optionsLoader->gameFoldersMissing() &&
        p.services.dialogs->messageBox(applicationTitle(), offerOptionsText(),
                                       Dialogs::Buttons::YesNo,
                                       Dialogs::Icon::Question) == Dialogs::Answer::Yes)
        showOptions(*p.windows);
    if (p.options->autoLogIn() || !p.savedName().isEmpty())
        return;
    AppWindows *windows = p.windows;
    FrmOptions *options = windows->isOptionsShown() ? windows->frmOptions() : nullptr;
    if (!options) {
        windows->frmLogIn()->showModal();
        return;
    }
    connect(
        options, &FrmOptions::closed, this, [windows] { windows->frmLogIn()->showModal(); },
        Qt::SingleShotConnection);
}

} // namespace client
