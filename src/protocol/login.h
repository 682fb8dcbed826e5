#pragma once

#include "protocol/number.h"
#include "protocol/wiremessage.h"

#include <QString>

// The way into the lobby: the version check, the login and its answers, and the keep-alive
// that holds a logged-in connection open.

namespace protocol {

// VE: the client's version, sent as soon as the connection is made.
struct Version
{
    static constexpr Code kCode = Code::Version;
    static constexpr Direction kDirection = Direction::ToServer;

    QString version;

    QByteArray encode() const;
    static Decoded<Version> decode(const Message &message);
    bool operator==(const Version &) const = default;
};

// LG: the login, both in plain text.
struct Login
{
    static constexpr Code kCode = Code::Login;
    static constexpr Direction kDirection = Direction::ToServer;

    QString name;
    QString password;

    QByteArray encode() const;
    static Decoded<Login> decode(const Message &message);
    bool operator==(const Login &) const = default;
};

// LT: the login is accepted.
struct LoginAccepted
{
    static constexpr Code kCode = Code::LoginAccepted;
    static constexpr Direction kDirection = Direction::ToClient;

    NumberText statsId; // the account's id, used as it arrives in statistics addresses
    QString name;       // the account name as stored

    QByteArray encode() const;
    static Decoded<LoginAccepted> decode(const Message &message);
    bool operator==(const LoginAccepted &) const = default;
};

using SendLogin = BareMessage<Code::SendLogin, Direction::ToClient>;     // SL: asks for the login
using LoginFailed = BareMessage<Code::LoginFailed, Direction::ToClient>; // LF
using OldVersion = BareMessage<Code::OldVersion, Direction::ToClient>; // OV: the client must update
using KeepAlive = BareMessage<Code::KeepAlive, Direction::ToServer>;   // PI

} // namespace protocol
