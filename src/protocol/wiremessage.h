#pragma once

#include "protocol/codes.h"
#include "protocol/decoded.h"
#include "protocol/message.h"

#include <QByteArray>
#include <optional>

namespace protocol {

// Every lobby message is a small struct with named fields, its code and the direction it
// travels (kCode, kDirection), encode() to the wire bytes and a static decode() from a
// received Message. decode() fails only when the message cannot be used at all; a field the
// receiver tolerates in odd form comes out as it would read it (a number rounded down, an
// unknown state as nullopt). encode() writes every field in its plain form.

// Why `message` is not a `code` message with the field count it has in `direction`, or
// nullopt when it is one. Variable messages ("DS") need at least their header fields.
std::optional<DecodeError> shapeError(const Message &message, Code code, Direction direction);

// The message's code as it travels, for reasons and logs.
QString codeText(Code code);

// A reason that names the field of `code` that could not be read, its text and what it
// should have been.
DecodeError fieldError(Code code, const char *field, const QString &text, const char *expected);

// How flags travel: "1" for true, "0" for false.
QString flagText(bool on);

// A message that is its code alone.
template <Code C, Direction D> struct BareMessage
{
    static constexpr Code kCode = C;
    static constexpr Direction kDirection = D;

    QByteArray encode() const { return buildMessage(C); }
    static Decoded<BareMessage> decode(const Message &message)
    {
        if (std::optional<DecodeError> error = shapeError(message, C, D))
            return *error;
        return BareMessage{};
    }
    bool operator==(const BareMessage &) const = default;
};

} // namespace protocol
