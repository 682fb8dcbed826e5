#include "server/announcements.h"

#include "protocol/message.h"
#include "server/roomregistry.h"
#include "server/session.h"

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
    const bool playing = player.presence == QLatin1String("2");
    return protocol::buildMessage(
        protocol::Code::AddPlayer,
        {player.name, QString::number(player.accountId), player.presence,
         playing ? player.gameAddress : QString(),
         buddyOfReceiver ? QStringLiteral("1") : QStringLiteral("0"),
         player.moderator ? QStringLiteral("True") : QStringLiteral("False"), player.emailHash});
}

QByteArray roomAnnouncement(const Room &room)
{
    return protocol::buildMessage(
        protocol::Code::AddRoom,
        {room.hostName, room.name, room.address, room.status, QString::number(room.members.size()),
         room.password.isEmpty() ? QStringLiteral("0") : QStringLiteral("1")});
}

QString relayText(QString text, qsizetype maxBytes)
{
    text.remove(QChar(protocol::kSeparator));
    text.remove(QChar(protocol::kTerminator));
    text.truncate(maxBytes);
    return text;
}

} // namespace server
