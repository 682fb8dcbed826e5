#include "client/app/appparts.h"
#include "client/app/appwindows.h"
#include "client/app/appwiring.h"
#include "client/app/form1.h"
#include "client/app/optionsloader.h"
#include "client/app/windowplacer.h"
#include "client/game/frmgameinfo.h"
#include "client/game/gameinfo.h"
#include "client/game/gamelauncher.h"
#include "client/game/gameserverquery.h"
#include "client/lobby/logincontroller.h"
#include "client/login/frmlogin.h"
#include "client/options/frmoptions.h"
#include "client/pager/frmpager.h"
#include "client/pager/pager.h"
#include "client/presence/frmmenu.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomsession.h"
#include "client/ui/picturebutton.h"

#include <QTreeView>

namespace client {

namespace {

// A private message to `name`: the pager opens on that player.
void openPagerTo(AppParts &p, const QString &name)
{
    p.pager->SendMessagee(name);
    p.windows->frmPager()->show();
}

FrmLogIn *makeLogIn(AppParts &p)
{
    auto *window = new FrmLogIn(p.credentialsPath(), p.servers.servers().lobby);
    QObject::connect(window, &FrmLogIn::loginRequested, &p.owner, [&p](const HostPort &lobby) {
        p.servers.useLobby(lobby);
        p.login->loginPressed();
    });
    return window;
}

FrmMenu *makeMenu(AppParts &p)
{
    auto *menu = new FrmMenu(*p.players, *p.form->ListView2, *p.connection, *p.session,
                             *p.services.dialogs, *p.ignored);
    QObject *owner = &p.owner;
    QObject::connect(menu, &FrmMenu::privateMessageRequested, owner,
                     [&p](const QString &name) { openPagerTo(p, name); });
    QObject::connect(menu, &FrmMenu::statsPageRequested, owner,
                     [&p](const QString &id) { openStatsPage(*p.session, id); });
    QObject::connect(menu, &FrmMenu::gameInfoRequested, owner, [&p](const QString &address) {
        if (p.gameQuery)
            p.gameQuery->queryGameInfo(address);
    });
    QObject::connect(menu, &FrmMenu::joinGameRequested, owner,
                     [&p](const QString &address) { p.launcher->launchGameClient(address); });
    return menu;
}

} // namespace

void wireWindows(AppParts &p)
{
    QObject *owner = &p.owner;
    AppWindows::Factories factories;
    factories.logIn = [&p] { return makeLogIn(p); };
    factories.options = [&p] {
        p.optionsLoader->load();
        return new FrmOptions(*p.options, *p.optionsStore, *p.services.dialogs);
    };
    factories.room = [&p] {
        auto *window = new FrmRoom(*p.roomState, *p.roomSession);
        QObject::connect(window, &FrmRoom::privateMessageRequested, &p.owner,
                         [&p](const QString &name) { openPagerTo(p, name); });
        return window;
    };
    factories.menu = [&p] { return makeMenu(p); };
    factories.pager = [&p] { return new FrmPager(*p.pager, *p.session); };
    factories.makeRoom = [&p] {
        auto *window = new FrmMakeRoom;
        QObject::connect(window, &FrmMakeRoom::makeRoomRequested, &p.owner,
                         [&p](const QString &name) {
                             p.roomSession->createRoom(name);
                             p.windows->unloadMakeRoom();
                         });
        return window;
    };
    factories.gameInfo = [&p] { return new FrmGameInfo(*p.gameInfo); };
    // Every window but the player menu (which opens at the mouse) opens over the main window.
    auto *placer = new WindowPlacer(*p.form, owner);
    factories.logIn = placer->placed(std::move(factories.logIn));
    factories.options = placer->placed(std::move(factories.options));
    factories.room = placer->placed(std::move(factories.room));
    factories.pager = placer->placed(std::move(factories.pager));
    factories.makeRoom = placer->placed(std::move(factories.makeRoom));
    factories.gameInfo = placer->placed(std::move(factories.gameInfo));
    p.windows = new AppWindows(std::move(factories), owner);

    AppWindows *windows = p.windows;
    QObject::connect(p.gameInfo, &GameInfo::showRequested, owner, [windows] {
        FrmGameInfo *window = windows->frmGameInfo();
        window->show();
        window->raise();
    });
    QObject::connect(p.form->picOptions, &QAbstractButton::clicked, owner,
                     [windows] { showOptions(*windows); });
}

void showOptions(AppWindows &windows)
{
    FrmOptions *window = windows.frmOptions();
    window->setWindowModality(Qt::ApplicationModal);
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace client
