#include "client/app/appparts.h"
#include "client/app/appwindows.h"
#include "client/app/appwiring.h"
#include "client/app/form1.h"
#include "client/app/traycontroller.h"
#include "client/game/gamelauncher.h"
#include "client/game/gamerowmenu.h"
#include "client/game/ingamedetection.h"
#include "client/game/launchsites.h"
#include "client/lobby/logincontroller.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"

#include <QTreeView>

namespace client {

namespace {

// The room window follows the main window and the game, but only while the user is in a room.
void wireRoomWindow(AppParts &p)
{
    RoomState *room = p.roomState;
    AppWindows *windows = p.windows;
    QObject *owner = &p.owner;
    QObject::connect(p.roomSession, &RoomSession::roomWindowShowRequested, owner, [windows] {
        FrmRoom *window = windows->frmRoom();
        window->show();
        window->raise();
    });
    QObject::connect(p.roomSession, &RoomSession::roomWindowUnloadRequested, windows,
                     &AppWindows::unloadRoom);
    const auto showWithRoom = [room, windows] {
        if (room->hideShowRoom)
            windows->frmRoom()->show();
    };
    QObject::connect(p.tray, &TrayController::restored, owner, showWithRoom);
    QObject::connect(p.detection, &InGameDetection::gameStarted, owner, [room, windows] {
        if (room->hideShowRoom && windows->isRoomLoaded())
            windows->frmRoom()->hide();
    });
    QObject::connect(p.detection, &InGameDetection::gameEnded, owner, showWithRoom);
}

} // namespace

void wireRooms(AppParts &p)
{
    QObject *owner = &p.owner;
    p.roomState = new RoomState(owner);
    p.roomSession = new RoomSession(
        *p.roomState, *p.rooms, *p.dispatcher, *p.connection, *p.session, *p.services.dialogs,
        *p.ignored, [&p] { return p.savedName(); }, owner);
    RoomSession *session = p.roomSession;
    QObject::connect(p.roomHandlers, &RoomListHandlers::roomClosing, session,
                     &RoomSession::roomClosing);
    QObject::connect(session, &RoomSession::createRoomButtonShown, p.form->picCreateRoom,
                     &QWidget::setVisible);
    wireRoomWindow(p);
    QObject::connect(p.form->picCreateRoom, &QAbstractButton::clicked, owner, [&p] {
        if (p.session->inGame)
            return;
        FrmMakeRoom *window = p.windows->frmMakeRoom();
        window->show();
        window->raise();
        window->activateWindow();
    });
    // The room's Start and Join, a listed running game and the join that follows the host's
    // start all go to the game launcher.
    QObject::connect(session, &RoomSession::gameServerStartRequested, p.launcher,
                     &GameLauncher::launchGameServer);
    QObject::connect(session, &RoomSession::gameClientStartRequested, p.launcher,
                     &GameLauncher::launchGameClient);
    QObject::connect(session, &RoomSession::gameClientAutoStartRequested, p.launchSites,
                     &LaunchSites::autoJoinGame);
    // A double click or Enter on a row joins it; on a full game the user may rather wait for
    // room.
    GameRowMenu *gameRows = p.gameRowMenu;
    QObject::connect(session, &RoomSession::refused, p.login, &LoginController::noteRefusal);
    QObject::connect(p.form->ListView1, &QAbstractItemView::activated, session,
                     [session, gameRows](const QModelIndex &index) {
                         if (session->canCreateOrJoin() &&
                             !gameRows->answerDoubleClick(index.row()))
                             session->joinRow(index.row());
                     });
}

} // namespace client
