#pragma once

#include <QByteArray>
#include <QString>

namespace server {

struct Player;
struct Room;

// The avatar key of a player: the lower-case hex MD5 of the trimmed, lower-cased e-mail
// address, or of the lower-cased name when there is none, so every player has a stable one.
QString emailHash(const QString &email, const QString &name);

// "AN" for `player` as one receiver sees it: `buddyOfReceiver` says whether that receiver has
// the player on his buddy list.
QByteArray playerAnnouncement(const Player &player, bool buddyOfReceiver);

// "AR" describing a room as it stands.
QByteArray roomAnnouncement(const Room &room);

// The longest text relayed in each field a player fills in (one byte per character on the
// wire): room names as the client lets them be typed, game addresses as long as an IPv6
// address, and the lines of lobby chat, room chat and private messages.
constexpr qsizetype kMaxRoomNameBytes = 20;
constexpr qsizetype kMaxAddressBytes = 45;
constexpr qsizetype kMaxChatBytes = 512;
constexpr qsizetype kMaxRoomChatBytes = 75;
constexpr qsizetype kMaxPrivateBytes = 512;

// Text a player typed, made safe to relay: control characters (the framing bytes, CR, LF,
// NUL...) and invisible format characters removed, so that a line cannot break the framing
// or pose as a second line; then cut to `maxBytes`.
QString relayText(QString text, qsizetype maxBytes);

} // namespace server
