#pragma once

#include "protocol/wiremessage.h"

#include <QString>
#include <optional>

// Who is online and what each player is doing, and the buddy list.

namespace protocol {

// A player's presence as it travels: one digit.
enum class Presence { Away = 1, Playing = 2, Lobby = 3 };

// The presence a text stands for: the number it holds, rounded down, when that is 1, 2 or 3.
std::optional<Presence> presenceFromText(QStringView text);
// The digit of a presence; "" for none.
QString presenceText(std::optional<Presence> presence);

// AN: a player is online, as one receiver sees him (the buddy flag differs per receiver).
struct AddPlayer
{
    static constexpr Code kCode = Code::AddPlayer;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;
    qint64 id = 0; // statistics id, rounded down; 0 when the field is not a number
    std::optional<Presence> presence; // nullopt when the state is not 1, 2 or 3
    QString gameAddress;              // "" unless he plays
    bool buddy = false;               // the receiver marked him as a buddy: exactly "1"
    bool highlighted = false;         // a moderator: exactly "True"
    QString emailHash;                // the key of his avatar

    QByteArray encode() const;
    static Decoded<AddPlayer> decode(const Message &message);
    bool operator==(const AddPlayer &) const = default;
};

// RN: a player has gone.
struct RemovePlayer
{
    static constexpr Code kCode = Code::RemovePlayer;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;

    QByteArray encode() const;
    static Decoded<RemovePlayer> decode(const Message &message);
    bool operator==(const RemovePlayer &) const = default;
};

// PS from a client: its own presence. A state other than 1, 2 or 3 makes it unusable.
struct PlayerStatusToServer
{
    static constexpr Code kCode = Code::PlayerStatus;
    static constexpr Direction kDirection = Direction::ToServer;

    Presence presence = Presence::Lobby;
    QString gameAddress; // the game server the client plays on; "host" when it hosts the game

    QByteArray encode() const;
    static Decoded<PlayerStatusToServer> decode(const Message &message);
    bool operator==(const PlayerStatusToServer &) const = default;
};

// PS to a client: a player's presence has changed.
struct PlayerStatusToClient
{
    static constexpr Code kCode = Code::PlayerStatus;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;
    std::optional<Presence> presence; // nullopt when the state is not 1, 2 or 3
    QString gameAddress;              // "" when he is in no game

    QByteArray encode() const;
    static Decoded<PlayerStatusToClient> decode(const Message &message);
    bool operator==(const PlayerStatusToClient &) const = default;
};

// BA and BR: the sender adds a player to, or removes one from, his buddy list. An id that is
// not a number makes them unusable.
template <Code C> struct BuddyChange
{
    static constexpr Code kCode = C;
    static constexpr Direction kDirection = Direction::ToServer;

    qint64 id = 0; // the player's statistics id, rounded down

    QByteArray encode() const { return buildMessage(C, {QString::number(id)}); }
    static Decoded<BuddyChange> decode(const Message &message);
    bool operator==(const BuddyChange &) const = default;
};
using BuddyAdd = BuddyChange<Code::BuddyAdd>;
using BuddyRemove = BuddyChange<Code::BuddyRemove>;

extern template struct BuddyChange<Code::BuddyAdd>;
extern template struct BuddyChange<Code::BuddyRemove>;

} // namespace protocol
