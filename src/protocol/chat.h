#pragma once

#include "protocol/wiremessage.h"

#include <QString>
#include <optional>

// The lobby chat and private messages.

namespace protocol {

// MD from a client: a line for the lobby chat.
struct ChatLineToServer
{
    static constexpr Code kCode = Code::ChatLine;
    static constexpr Direction kDirection = Direction::ToServer;

    QString text;

    QByteArray encode() const;
    static Decoded<ChatLineToServer> decode(const Message &message);
    bool operator==(const ChatLineToServer &) const = default;
};

// MD to a client: a lobby chat line to show.
struct ChatLineToClient
{
    static constexpr Code kCode = Code::ChatLine;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;
    // The sender's colour, 0x00BBGGRR, rounded down; nullopt when the field is not a number
    // in 0..0xFFFFFFFF.
    std::optional<quint32> colour;
    QString text;

    QByteArray encode() const;
    static Decoded<ChatLineToClient> decode(const Message &message);
    bool operator==(const ChatLineToClient &) const = default;
};

// PM from a client: a private message for `recipient`.
struct PrivateMessageToServer
{
    static constexpr Code kCode = Code::PrivateMessage;
    static constexpr Direction kDirection = Direction::ToServer;

    QString recipient;
    QString text;

    QByteArray encode() const;
    static Decoded<PrivateMessageToServer> decode(const Message &message);
    bool operator==(const PrivateMessageToServer &) const = default;
};

// PM to a client: a private message in the conversation with `partner`.
struct PrivateMessageToClient
{
    static constexpr Code kCode = Code::PrivateMessage;
    static constexpr Direction kDirection = Direction::ToClient;

    QString partner;
    QString text;
    // true ("1"): the copy of what the receiver sent to the partner; false ("0"): a message
    // from the partner; nullopt for any other text, which is neither.
    std::optional<bool> echo;

    QByteArray encode() const;
    static Decoded<PrivateMessageToClient> decode(const Message &message);
    bool operator==(const PrivateMessageToClient &) const = default;
};

} // namespace protocol
