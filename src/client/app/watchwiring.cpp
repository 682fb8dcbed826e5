#include "client/app/appparts.h"
#include "client/app/appwiring.h"
#include "client/app/desktopnotes.h"
#include "client/app/form1.h"
#include "client/desktop/trayservice.h"
#include "client/game/fullgamewatch.h"
#include "client/game/gamelauncher.h"
#include "client/game/gamerowmenu.h"
#include "client/game/gameserverquery.h"
#include "client/platform/dialogs.h"
#include "client/platform/eventsounds.h"
#include "client/rooms/roomlistmodel.h"

namespace client {

namespace {

// A watched game has room: a sound, and the offer to join on the desktop note, or in a message
// box where there is no tray icon to show one.
void offerFreedGame(AppParts &p, const QString &address)
{
    p.sounds->play(EventSounds::Event::GameHasRoom);
    const int row = p.rooms->findRowByTag(address, true);
    const QString name = row < 0 ? QString() : p.rooms->text(row, RoomListModel::RoomName);
    const QString text =
        QStringLiteral("There is room in %1").arg(name.trimmed().isEmpty() ? address : name);
    // An icon can be shown where the desktop has no notification area to show it in.
    if (p.services.tray->isAvailable() && p.services.tray->isShown()) {
        p.notes->showJoinOffer(text + QStringLiteral(": click here to join"), address);
        return;
    }
    if (p.services.dialogs->messageBox(applicationTitle(), text + QStringLiteral(". Join now?"),
                                       Dialogs::Buttons::YesNo,
                                       Dialogs::Icon::Question) == Dialogs::Answer::Yes)
        p.launcher->launchGameClient(address);
}

} // namespace

void wireGameWatch(AppParts &p)
{
    QObject *owner = &p.owner;
    p.gameWatch = new FullGameWatch(*p.rooms, *p.session, *p.services.ticks, owner);
    p.gameRowMenu = new GameRowMenu(*p.form->ListView1, *p.rooms, *p.gameWatch, *p.session,
                                    *p.services.dialogs, owner);
    // The game server query starts later, with the program.
    QObject::connect(p.gameWatch, &FullGameWatch::statusWanted, owner,
                     [&p](const QString &address) {
                         if (p.gameQuery)
                             p.gameQuery->pingGameServer(address);
                     });
    // Queued: the offer may wait in a message box, which should not run inside the handling
    // of the reply that freed the slot.
    QObject::connect(
        p.gameWatch, &FullGameWatch::roomFreed, owner,
        [&p](const QString &address) { offerFreedGame(p, address); }, Qt::QueuedConnection);
    // Joining from the row menu or a note starts the game as the player menu's Join Game does.
    QObject::connect(p.gameRowMenu, &GameRowMenu::joinRequested, p.launcher,
                     &GameLauncher::launchGameClient);
    QObject::connect(p.notes, &DesktopNotes::joinRequested, p.launcher,
                     &GameLauncher::launchGameClient);
}

} // namespace client
