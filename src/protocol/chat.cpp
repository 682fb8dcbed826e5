#include "protocol/chat.h"

#include "protocol/number.h"

namespace protocol {

QByteArray ChatLineToServer::encode() const
{
    return buildMessage(kCode, {text});
}

Decoded<ChatLineToServer> ChatLineToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return ChatLineToServer{message.fields[0]};
}

QByteArray ChatLineToClient::encode() const
{
    return buildMessage(kCode, {name, colour ? QString::number(*colour) : QString(), text});
}

Decoded<ChatLineToClient> ChatLineToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const std::optional<qint64> colour = readWholeNumber(message.fields[1]);
    const bool isColour = colour && *colour >= 0 && *colour <= 0xFFFFFFFF;
    return ChatLineToClient{message.fields[0],
                            isColour ? std::optional<quint32>(quint32(*colour)) : std::nullopt,
                            message.fields[2]};
}

QByteArray PrivateMessageToServer::encode() const
{
    return buildMessage(kCode, {recipient, text});
}

Decoded<PrivateMessageToServer> PrivateMessageToServer::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return PrivateMessageToServer{message.fields[0], message.fields[1]};
}

QByteArray PrivateMessageToClient::encode() const
{
    return buildMessage(kCode, {partner, text, echo ? flagText(*echo) : QString()});
}

Decoded<PrivateMessageToClient> PrivateMessageToClient::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    const QString &echo = message.fields[2];
    std::optional<bool> isEcho;
    if (echo == QLatin1String("1") || echo == QLatin1String("0"))
        isEcho = echo == QLatin1String("1");
    return PrivateMessageToClient{message.fields[0], message.fields[1], isEcho};
}

} // namespace protocol
