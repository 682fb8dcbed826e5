#pragma once

class QString;

namespace client {

class AppWindows;
class SessionState;
struct AppParts;

// The wiring of each feature, in the order the composition root calls them: each builds its
// feature's objects into `parts` and connects them to what is already there.

// The lobby chat with its archive, the player and room lists and their message handlers.
void wireLobby(AppParts &parts);
// The pager, the avatars, the player list's clicks and the buddy notices.
void wirePager(AppParts &parts);
// The windows besides the main window, each opening over it.
void wireWindows(AppParts &parts);
void wireTray(AppParts &parts);
// The game's launcher and the platform pieces it runs on.
void wireGame(AppParts &parts);
// The watch on full games, their row menu and the joins that desktop notes offer.
void wireGameWatch(AppParts &parts);
// The login, the reconnect, the in-game detection and the keep-alive.
void wireLogin(AppParts &parts);
void wireSelfUpdate(AppParts &parts);
// Being in a room: the room window, creating and joining, and the games a room starts.
void wireRooms(AppParts &parts);
// The results upload, the stats reset and the own statistics page.
void wireStats(AppParts &parts);

// The game server queries and the pings of the room list; a start-up step of its own.
void startGameQuery(AppParts &parts);
// The options window, modal.
void showOptions(AppWindows &windows);
// A player's statistics page in the browser.
void openStatsPage(const SessionState &session, const QString &id);

} // namespace client
