#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <cstddef>
#include <optional>
#include <span>

namespace protocol {

inline constexpr char kSeparator = '\x0E';
inline constexpr char kTerminator = '\x0F';

// Every message code of the lobby protocol. The wire text of each (two bytes, "Ö" as 0xD6)
// is spelled only in codes.cpp.
enum class Code {
    PlayerStatus,   // PS: presence state, both directions
    OldVersion,     // OV: the client must update
    SendLogin,      // SL: the server asks for the login
    LoginAccepted,  // LT
    LoginFailed,    // LF
    ChatLine,       // MD: lobby chat, both directions
    AddPlayer,      // AN
    RemovePlayer,   // RN
    AddRoom,        // AR: both directions
    MemberReady,    // ÖR: both directions
    RoomChat,       // ÖM: both directions
    MemberJoined,   // ÖT
    MemberLeft,     // ÖB
    RoomStatus,     // ÖS: both directions
    RoomCount,      // ÖC
    RemoveRoom,     // RR: both directions
    LockRoom,       // LR: both directions
    WrongPassword,  // ÖW
    PrivateMessage, // PM: both directions
    Version,        // VE
    Login,          // LG
    KeepAlive,      // PI
    BuddyAdd,       // BA
    BuddyRemove,    // BR
    JoinRoom,       // ÖJ
    LeaveRoom,      // ÖL
    StatsUpload,    // DS
    StatsReset,     // RS
    RoomRefused,    // ÖN: a room could not be opened or joined, and why
};

inline constexpr std::size_t kCodeCount = 29;

enum class Direction { ToClient, ToServer };

// Number of fields a message carries in a direction, or nullopt when the code does not
// travel that way. "DS" is variable: its count is the minimum (4 header fields).
std::optional<int> fieldCount(Code code, Direction direction);

// The two wire bytes of a code.
QByteArrayView wireCode(Code code);

// The code whose wire bytes are the first two bytes of `bytes` and that travels in
// `direction`, or nullopt.
std::optional<Code> codeAt(QByteArrayView bytes, Direction direction);

// Codes the client recognises, in the order the client compares them.
std::span<const Code> clientIncomingOrder();

} // namespace protocol
