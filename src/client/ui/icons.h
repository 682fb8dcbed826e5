#pragma once

#include <QIcon>
#include <QString>

namespace client {

// The pictures the program carries: the small-icon list `imlSmallIcons` (addressed by its
// 1-based index) and the pictures of the picture buttons. All are SVG files in the Qt
// resources under ":/icons".
//
// Small-icon indices: 1 unread message, 2 open room / player, 3 locked room, 4 running game,
// 5 lobby group, 6 playing, 7 away, 8 log-in button logged out, 9 logged in, 10 window icon
// online, 11 offline.
class Icons
{
public:
    enum SmallIcon {
        UnreadMessage = 1,
        OpenRoom = 2,
        LockedRoom = 3,
        RunningGame = 4,
        LobbyGroup = 5,
        PlayingGroup = 6,
        AwayGroup = 7,
        LogInOffline = 8,
        LogInOnline = 9,
        WindowOnline = 10,
        WindowOffline = 11,
    };

    // A null icon for an index outside 1..11.
    static QIcon smallIcon(int index);
    // What the room list draws for an open room instead of index 2, which is also every
    // player's picture: an open padlock, the locked room's padlock opened.
    static QIcon openRoom();
    // A button picture by name: "close", "hide", "options", "createroom", "resetstats",
    // "viewstats", "refreshpings", "send". A null icon for an unknown name.
    static QIcon button(const QString &name);
};

} // namespace client
