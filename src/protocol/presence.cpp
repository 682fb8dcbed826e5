#include "protocol/presence.h"

#include "protocol/number.h"

namespace protocol {

std::optional<Presence> presenceFromText(QStringView text)
{
    const std::optional<qint64> value = readWholeNumber(text);
    if (!value || *value < 1 || *value > 3)
        return std::nullopt;
    return Presence(*value);
}

QString presenceText(std::optional<Presence> presence)
{
    return presence ? QString::number(int(*presence)) : QString();
}

QByteArray AddPlayer::encode() const
{
    return buildMessage(
        kCode, {name, QString::number(id), presenceText(presence), gameAddress, flagText(buddy),
                highlighted ? QStringLiteral("True") : QStringLiteral("False"), emailHash});
}

Decoded<AddPlayer> AddPlayer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const QStringList &f = message.fields;
    return AddPlayer{f[0], readWholeNumber(f[1]).value_or(0), presenceFromText(f[2]),
                     f[3], f[4] == QLatin1String("1"),        f[5] == QLatin1String("True"),
                     f[6]};
}

QByteArray RemovePlayer::encode() const
{
    return buildMessage(kCode, {name});
}

Decoded<RemovePlayer> RemovePlayer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return RemovePlayer{message.fields[0]};
}

QByteArray PlayerStatusToServer::encode() const
{
    return buildMessage(kCode, {presenceText(presence), gameAddress});
}

Decoded<PlayerStatusToServer> PlayerStatusToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const std::optional<Presence> presence = presenceFromText(message.fields[0]);
    if (!presence)
        return fieldError(kCode, "state", message.fields[0], "1, 2 or 3");
    return PlayerStatusToServer{*presence, message.fields[1]};
}

QByteArray PlayerStatusToClient::encode() const
{
    return buildMessage(kCode, {name, presenceText(presence), gameAddress});
}

Decoded<PlayerStatusToClient> PlayerStatusToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const QStringList &f = message.fields;
    return PlayerStatusToClient{f[0], presenceFromText(f[1]), f[2]};
}

template <Code C> Decoded<BuddyChange<C>> BuddyChange<C>::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const std::optional<qint64> id = readWholeNumber(message.fields[0]);
    if (!id)
        return fieldError(kCode, "id", message.fields[0], "a number");
    return BuddyChange{*id};
}

template struct BuddyChange<Code::BuddyAdd>;
template struct BuddyChange<Code::BuddyRemove>;

} // namespace protocol
