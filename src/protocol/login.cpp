#include "protocol/login.h"

namespace protocol {

QByteArray Version::encode() const
{
    return buildMessage(kCode, {version});
}

Decoded<Version> Version::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return Version{message.fields[0]};
}

QByteArray Login::encode() const
{
    return buildMessage(kCode, {name, password});
}

Decoded<Login> Login::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return Login{message.fields[0], message.fields[1]};
}

QByteArray LoginAccepted::encode() const
{
    return buildMessage(kCode, {statsId.text, name});
}

Decoded<LoginAccepted> LoginAccepted::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    return LoginAccepted{NumberText::read(message.fields[0]), message.fields[1]};
}

} // namespace protocol
