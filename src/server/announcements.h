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

// Text a player typed, made safe to relay: framing bytes removed, then cut to `maxBytes`
// (one byte per character on the wire).
QString relayText(QString text, qsizetype maxBytes);

} // namespace server
