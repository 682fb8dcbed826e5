#include "protocol/rooms.h"

#include "protocol/number.h"

namespace protocol {

std::optional<ReadyState> readyStateFromText(QStringView text)
{
    const std::optional<qint64> value = readWholeNumber(text);
    if (!value || *value < 1 || *value > 2)
        return std::nullopt;
    return ReadyState(*value);
}

QString readyStateText(std::optional<ReadyState> state)
{
    return state ? QString::number(int(*state)) : QString();
}

QString roomStatusText(RoomStatus status)
{
    return status == RoomStatus::InGame ? QStringLiteral("In game") : QStringLiteral("In chat");
}

std::optional<RoomStatus> roomStatusFromText(QStringView text)
{
    if (text == QLatin1String("In chat"))
        return RoomStatus::InChat;
    if (text == QLatin1String("In game"))
        return RoomStatus::InGame;
    return std::nullopt;
}

QByteArray AddRoomToServer::encode() const
{
    return buildMessage(kCode, {roomName});
}

Decoded<AddRoomToServer> AddRoomToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return AddRoomToServer{message.fields[0]};
}

QByteArray AddRoomToClient::encode() const
{
    return buildMessage(kCode,
                        {host, roomName, hostAddress, status, playerCount.text, flagText(locked)});
}

Decoded<AddRoomToClient> AddRoomToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const QStringList &f = message.fields;
    return AddRoomToClient{
        f[0], f[1], f[2], f[3], NumberText::read(f[4]), f[5] == QLatin1String("1")};
}

QByteArray RemoveRoomToClient::encode() const
{
    return buildMessage(kCode, {host, flagText(inGame)});
}

Decoded<RemoveRoomToClient> RemoveRoomToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return RemoveRoomToClient{message.fields[0], message.fields[1] == QLatin1String("1")};
}

QByteArray RoomCount::encode() const
{
    return buildMessage(kCode, {host, playerCount.text});
}

Decoded<RoomCount> RoomCount::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return RoomCount{message.fields[0], NumberText::read(message.fields[1])};
}

QByteArray LockRoomToServer::encode() const
{
    return buildMessage(kCode, {password});
}

Decoded<LockRoomToServer> LockRoomToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return LockRoomToServer{message.fields[0]};
}

QByteArray LockRoomToClient::encode() const
{
    return buildMessage(kCode, {host, flagText(locked)});
}

Decoded<LockRoomToClient> LockRoomToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return LockRoomToClient{message.fields[0], readNumber(message.fields[1]) == 1.0};
}

QByteArray JoinRoom::encode() const
{
    return buildMessage(kCode, {host, password});
}

Decoded<JoinRoom> JoinRoom::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return JoinRoom{message.fields[0], message.fields[1]};
}

QByteArray MemberJoined::encode() const
{
    return buildMessage(kCode, {name, readyStateText(state)});
}

Decoded<MemberJoined> MemberJoined::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return MemberJoined{message.fields[0], readyStateFromText(message.fields[1])};
}

QByteArray MemberLeft::encode() const
{
    return buildMessage(kCode, {name});
}

Decoded<MemberLeft> MemberLeft::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return MemberLeft{message.fields[0]};
}

QByteArray RoomChat::encode() const
{
    return buildMessage(kCode, {text});
}

Decoded<RoomChat> RoomChat::decode(const Message &message)
{
    // One field either way.
    if (std::optional<DecodeError> error = shapeError(message, kCode, Direction::ToServer))
        return *error;
    return RoomChat{message.fields[0]};
}

QByteArray RoomRefused::encode() const
{
    return buildMessage(kCode, {reason});
}

Decoded<RoomRefused> RoomRefused::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return RoomRefused{message.fields[0]};
}

QByteArray MemberReadyToServer::encode() const
{
    return buildMessage(kCode, {readyStateText(state)});
}

Decoded<MemberReadyToServer> MemberReadyToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const std::optional<ReadyState> state = readyStateFromText(message.fields[0]);
    if (!state)
        return fieldError(kCode, "state", message.fields[0], "1 or 2");
    return MemberReadyToServer{*state};
}

QByteArray MemberReadyToClient::encode() const
{
    return buildMessage(kCode, {name, readyStateText(state)});
}

Decoded<MemberReadyToClient> MemberReadyToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return MemberReadyToClient{message.fields[0], readyStateFromText(message.fields[1])};
}

QByteArray RoomStatusToServer::encode() const
{
    return buildMessage(kCode, {roomStatusText(status)});
}

Decoded<RoomStatusToServer> RoomStatusToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const std::optional<RoomStatus> status = roomStatusFromText(message.fields[0]);
    if (!status)
        return fieldError(kCode, "status", message.fields[0], "\"In chat\" or \"In game\"");
    return RoomStatusToServer{*status};
}

QByteArray RoomStatusToClient::encode() const
{
    return buildMessage(kCode, {host, status});
}

Decoded<RoomStatusToClient> RoomStatusToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return RoomStatusToClient{message.fields[0], message.fields[1]};
}

} // namespace protocol
