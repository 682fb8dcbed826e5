#pragma once

#include "protocol/number.h"
#include "protocol/wiremessage.h"

#include <QString>
#include <optional>

// Rooms: the room list, joining and leaving, and the room window's members, chat, ready
// states, status and lock. A room is keyed by its host's name.

namespace protocol {

// A member's ready state as it travels: one digit.
enum class ReadyState { NotReady = 1, Ready = 2 };

// The ready state a text stands for: the number it holds, rounded down, when that is 1 or 2.
std::optional<ReadyState> readyStateFromText(QStringView text);
// The digit of a ready state; "" for none.
QString readyStateText(std::optional<ReadyState> state);

// What a room is doing: its members wait in the room window, or the host's game runs.
enum class RoomStatus { InChat, InGame };

// "In chat" or "In game".
QString roomStatusText(RoomStatus status);
// The status a text names exactly; nullopt for any other text.
std::optional<RoomStatus> roomStatusFromText(QStringView text);

// AR from a client: it opens a room and hosts it.
struct AddRoomToServer
{
    static constexpr Code kCode = Code::AddRoom;
    static constexpr Direction kDirection = Direction::ToServer;

    QString roomName;

    QByteArray encode() const;
    static Decoded<AddRoomToServer> decode(const Message &message);
    bool operator==(const AddRoomToServer &) const = default;
};

// AR to a client: a room is open.
struct AddRoomToClient
{
    static constexpr Code kCode = Code::AddRoom;
    static constexpr Direction kDirection = Direction::ToClient;

    QString host;
    QString roomName;
    QString hostAddress;    // dotted IPv4; the members' games connect to it
    QString status;         // "In chat" or "In game", shown as it arrives
    NumberText playerCount; // shown as it arrives, a number or not
    bool locked = false;    // exactly "1"

    QByteArray encode() const;
    static Decoded<AddRoomToClient> decode(const Message &message);
    bool operator==(const AddRoomToClient &) const = default;
};

// RR to a client: a room has closed.
struct RemoveRoomToClient
{
    static constexpr Code kCode = Code::RemoveRoom;
    static constexpr Direction kDirection = Direction::ToClient;

    QString host;
    bool inGame = false; // closed because its game runs: exactly "1"

    QByteArray encode() const;
    static Decoded<RemoveRoomToClient> decode(const Message &message);
    bool operator==(const RemoveRoomToClient &) const = default;
};

// ÖC to a client: the number of players in a room.
struct RoomCount
{
    static constexpr Code kCode = Code::RoomCount;
    static constexpr Direction kDirection = Direction::ToClient;

    QString host;
    NumberText playerCount; // shown as it arrives, a number or not

    QByteArray encode() const;
    static Decoded<RoomCount> decode(const Message &message);
    bool operator==(const RoomCount &) const = default;
};

// LR from a host: lock the room with a password, or open it with an empty one.
struct LockRoomToServer
{
    static constexpr Code kCode = Code::LockRoom;
    static constexpr Direction kDirection = Direction::ToServer;

    QString password;

    QByteArray encode() const;
    static Decoded<LockRoomToServer> decode(const Message &message);
    bool operator==(const LockRoomToServer &) const = default;
};

// LR to a client: a room was locked or opened.
struct LockRoomToClient
{
    static constexpr Code kCode = Code::LockRoom;
    static constexpr Direction kDirection = Direction::ToClient;

    QString host;
    bool locked = false; // the field is a number whose value is exactly 1 ("1", "1.0")

    QByteArray encode() const;
    static Decoded<LockRoomToClient> decode(const Message &message);
    bool operator==(const LockRoomToClient &) const = default;
};

// ÖJ from a client: join the room of `host`.
struct JoinRoom
{
    static constexpr Code kCode = Code::JoinRoom;
    static constexpr Direction kDirection = Direction::ToServer;

    QString host;
    QString password; // "" for an open room

    QByteArray encode() const;
    static Decoded<JoinRoom> decode(const Message &message);
    bool operator==(const JoinRoom &) const = default;
};

// ÖT to a client: a member is in the receiver's room.
struct MemberJoined
{
    static constexpr Code kCode = Code::MemberJoined;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;
    std::optional<ReadyState> state; // nullopt when the field is not 1 or 2

    QByteArray encode() const;
    static Decoded<MemberJoined> decode(const Message &message);
    bool operator==(const MemberJoined &) const = default;
};

// ÖB to a client: a member has left the receiver's room.
struct MemberLeft
{
    static constexpr Code kCode = Code::MemberLeft;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;

    QByteArray encode() const;
    static Decoded<MemberLeft> decode(const Message &message);
    bool operator==(const MemberLeft &) const = default;
};

// ÖM, both ways: from a member the text he typed, to a member a whole line to show as is.
struct RoomChat
{
    static constexpr Code kCode = Code::RoomChat;

    QString text;

    QByteArray encode() const;
    static Decoded<RoomChat> decode(const Message &message);
    bool operator==(const RoomChat &) const = default;
};

// ÖR from a member: the ready state he asks for. Any other state makes it unusable.
struct MemberReadyToServer
{
    static constexpr Code kCode = Code::MemberReady;
    static constexpr Direction kDirection = Direction::ToServer;

    ReadyState state = ReadyState::NotReady;

    QByteArray encode() const;
    static Decoded<MemberReadyToServer> decode(const Message &message);
    bool operator==(const MemberReadyToServer &) const = default;
};

// ÖR to a member: a member's ready state has changed.
struct MemberReadyToClient
{
    static constexpr Code kCode = Code::MemberReady;
    static constexpr Direction kDirection = Direction::ToClient;

    QString name;
    std::optional<ReadyState> state; // nullopt when the field is not 1 or 2

    QByteArray encode() const;
    static Decoded<MemberReadyToClient> decode(const Message &message);
    bool operator==(const MemberReadyToClient &) const = default;
};

// ÖS from a host: his room's new status. Any other text makes it unusable.
struct RoomStatusToServer
{
    static constexpr Code kCode = Code::RoomStatus;
    static constexpr Direction kDirection = Direction::ToServer;

    RoomStatus status = RoomStatus::InChat;

    QByteArray encode() const;
    static Decoded<RoomStatusToServer> decode(const Message &message);
    bool operator==(const RoomStatusToServer &) const = default;
};

// ÖS to a client: a room's status has changed.
struct RoomStatusToClient
{
    static constexpr Code kCode = Code::RoomStatus;
    static constexpr Direction kDirection = Direction::ToClient;

    QString host;
    QString status; // "In chat" or "In game", shown as it arrives

    QByteArray encode() const;
    static Decoded<RoomStatusToClient> decode(const Message &message);
    bool operator==(const RoomStatusToClient &) const = default;
};

// ÖN to a client: the room it just opened or joined was refused (too many attempts, the room
// has gone); it is not in that room. Clients that do not know the code skip it.
struct RoomRefused
{
    static constexpr Code kCode = Code::RoomRefused;
    static constexpr Direction kDirection = Direction::ToClient;

    QString reason; // a sentence to show the player

    QByteArray encode() const;
    static Decoded<RoomRefused> decode(const Message &message);
    bool operator==(const RoomRefused &) const = default;
};

using RemoveRoomToServer = BareMessage<Code::RemoveRoom, Direction::ToServer>; // RR: host leaves
using LeaveRoom = BareMessage<Code::LeaveRoom, Direction::ToServer>;           // ÖL: member leaves
using WrongPassword = BareMessage<Code::WrongPassword, Direction::ToClient>;   // ÖW: join refused

} // namespace protocol
