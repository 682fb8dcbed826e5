#include "client/app/appparts.h"
#include "client/app/appwindows.h"
#include "client/app/appwiring.h"
#include "client/app/buddynotifier.h"
#include "client/app/desktopnotes.h"
#include "client/app/form1.h"
#include "client/app/traycontroller.h"
#include "client/pager/avatarloader.h"
#include "client/pager/conversationarchive.h"
#include "client/pager/pager.h"
#include "client/presence/chatarchive.h"
#include "client/presence/frmmenu.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistclicks.h"
#include "client/presence/playerlistfilter.h"
#include "client/presence/playerlisthandlers.h"
#include "client/presence/playerlistmodel.h"
#include "client/presence/playerlistview.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomlistview.h"
#include "client/ui/picturebutton.h"

#include <QDir>
#include <QLineEdit>
#include <QTextBrowser>
#include <QTreeView>
#include <QUrl>

namespace client {

void wireLobby(AppParts &p)
{
    QObject *owner = &p.owner;
    p.chat = new LobbyChat(p.form->txtChat, p.form->txtChatSend, p.form->Picture3, *p.connection,
                           *p.session, *p.services.clock, *p.ignored, owner);
    p.chat->registerHandler(*p.dispatcher);
    if (!p.dataFolder.isEmpty())
        (new ChatArchive(QDir(p.dataFolder).filePath(QStringLiteral("chat")), *p.services.clock,
                         owner))
            ->attach(p.chat->log());

    configurePlayerListView(*p.form->ListView2,
                            *new PlayerListFilter(*p.players, *p.ignored, owner),
                            p.form->txtFindPlayer);
    p.playerHandlers = new PlayerListHandlers(*p.players, *p.dispatcher, owner);

    setUpRoomListView(*p.form->ListView1, *p.rooms);
    PlayerListModel *players = p.players;
    p.roomHandlers = new RoomListHandlers(
        *p.rooms, *p.dispatcher,
        [players](const QString &address) { return players->hasGameAddress(address); }, owner);
    QObject::connect(p.playerHandlers, &PlayerListHandlers::addGameRowRequested, p.roomHandlers,
                     &RoomListHandlers::addGameRow);
    QObject::connect(p.playerHandlers, &PlayerListHandlers::removeGameRowRequested, p.roomHandlers,
                     &RoomListHandlers::removeGameRow);
}

void wirePager(AppParts &p)
{
    QObject *owner = &p.owner;
    p.avatars = new AvatarLoader(p.servers.servers().avatars.isEmpty()
                                     ? QUrl(QString::fromLatin1(AvatarLoader::kDefaultServer))
                                     : QUrl(p.servers.servers().avatars),
                                 owner);
    // Each private conversation is kept beside the lobby chat, one folder per partner.
    p.conversations = new ConversationArchive(
        p.dataFolder.isEmpty() ? QString() : QDir(p.dataFolder).filePath(QStringLiteral("pm")),
        *p.services.clock, owner);
    p.pager = new Pager(*p.players, *p.connection, *p.session,
                        SendRateGuard(*p.session, *p.services.clock), *p.sounds, *p.avatars,
                        *p.ignored, *p.conversations, owner);
    p.pager->registerHandler(*p.dispatcher);
    QObject::connect(p.playerHandlers, &PlayerListHandlers::playerLeft, p.pager,
                     &Pager::playerLeft);
    const SessionState *session = p.session;
    QObject::connect(p.pager, &Pager::statsPageRequested, owner,
                     [session](const QString &id) { openStatsPage(*session, id); });
    // A click on the player list: the menu decides what it means. The windows are built after
    // this, so the click looks them up when it comes.
    QObject::connect(new PlayerListClicks(*p.form->ListView2, owner), &PlayerListClicks::released,
                     owner, [&p](Qt::MouseButton button, QPoint globalPos) {
                         p.windows->frmMenu()->listClicked(button, globalPos);
                     });

    p.notes = new DesktopNotes(*p.services.tray, owner);
    p.buddyNotifier = new BuddyNotifier(*p.notes, *p.options, *p.services.clock, owner);
    QObject::connect(p.playerHandlers, &PlayerListHandlers::buddyAnnounced, p.buddyNotifier,
                     &BuddyNotifier::buddyAnnounced);
    // The buddy's entry already holds the address of the game he started.
    PlayerListModel *players = p.players;
    BuddyNotifier *notifier = p.buddyNotifier;
    QObject::connect(p.playerHandlers, &PlayerListHandlers::buddyStartedGame, notifier,
                     [players, notifier](const QString &name) {
                         const int row = players->findEntry(name);
                         notifier->buddyStartedGame(
                             name,
                             row < 0 ? QString() : players->text(row, PlayerListModel::IpToGame));
                     });
}

void wireTray(AppParts &p)
{
    p.tray =
        new TrayController(*p.services.tray, *p.form, *p.session, *p.connection, *p.chat, &p.owner);
}

} // namespace client
