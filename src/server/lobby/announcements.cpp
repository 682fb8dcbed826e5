#include "server/lobby/announcements.h"

#include "protocol/presence.h"
#include "protocol/rooms.h"
#include "server/lobby/roomregistry.h"
#include "server/net/session.h"

#include <QCryptographicHash>

namespace server {

QString emailHash(const QString &email, const QString &name)
{
    const QString trimmed = email.trimmed().toLower();
    const QString key = trimmed.isEmpty() ? name.toLower() : trimmed;
    return QString::fromLatin1(
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Md5).toHex());
}

QByteArray playerAnnouncement(const Player &player, bool buddyOfReceiver)
{
    const bool playing = player.presence == protocol::Presence::Playing;
    return protocol::AddPlayer{.name = player.name,
                               .id = player.accountId,
                               .presence = player.presence,
                               .gameAddress = playing ? player.gameAddress : QString(),
                               .buddy = buddyOfReceiver,
                               .highlighted = player.moderator,
                               .emailHash = player.emailHash}
        .encode();
}

QByteArray roomAnnouncement(const Room &room)
{
    return protocol::AddRoomToClient{.host = room.hostName,
                                     .roomName = room.name,
                                     .hostAddress = room.address,
                                     .status = protocol::roomStatusText(room.status),
                                     .playerCount =
                                         protocol::NumberText::of(double(room.members.size())),
                                     .locked = !room.password.isEmpty()}
        .encode();
}

QString relayText(QString text, qsizetype maxBytes)
{
    text.removeIf([](QChar c) {
        return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format;
    });
    text.truncate(maxBytes);
    return text;
}

} // namespace server
