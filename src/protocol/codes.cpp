#include "protocol/codes.h"

#include <cstdint>

#include <array>

namespace protocol {
namespace {

struct CodeInfo
{
    Code code;
    const char *wire;
    int toClient; // -1: never sent to the client
    int toServer; // -1: never sent to the server
};

// Field counts in both directions. Order here is the order of the enum.
constexpr std::array<CodeInfo, kCodeCount> kCodes = {{
    {Code::PlayerStatus, "PS", 3, 2},
    {Code::OldVersion, "OV", 0, -1},
    {Code::SendLogin, "SL", 0, -1},
    {Code::LoginAccepted, "LT", 2, -1},
    {Code::LoginFailed, "LF", 0, -1},
    {Code::ChatLine, "MD", 3, 1},
    {Code::AddPlayer, "AN", 7, -1},
    {Code::RemovePlayer, "RN", 1, -1},
    {Code::AddRoom, "AR", 6, 1},
    {Code::MemberReady, "\xD6R", 2, 1},
    {Code::RoomChat, "\xD6M", 1, 1},
    {Code::MemberJoined, "\xD6T", 2, -1},
    {Code::MemberLeft,
     "\xD6"
     "B",
     1, -1},
    {Code::RoomStatus, "\xD6S", 2, 1},
    {Code::RoomCount,
     "\xD6"
     "C",
     2, -1},
    {Code::RemoveRoom, "RR", 2, 0},
    {Code::LockRoom, "LR", 2, 1},
    {Code::WrongPassword, "\xD6W", 0, -1},
    {Code::PrivateMessage, "PM", 3, 2},
    {Code::Version, "VE", -1, 1},
    {Code::Login, "LG", -1, 2},
    {Code::KeepAlive, "PI", -1, 0},
    {Code::BuddyAdd, "BA", -1, 1},
    {Code::BuddyRemove, "BR", -1, 1},
    {Code::JoinRoom, "\xD6J", -1, 2},
    {Code::LeaveRoom, "\xD6L", -1, 0},
    {Code::StatsUpload, "DS", -1, 4},
    {Code::StatsReset, "RS", -1, 0},
    {Code::RoomRefused,
     "\xD6"
     "N",
     1, -1},
}};

constexpr std::array<Code, 20> kClientIncomingOrder = {
    Code::PlayerStatus, Code::OldVersion,    Code::SendLogin,      Code::LoginAccepted,
    Code::LoginFailed,  Code::ChatLine,      Code::AddPlayer,      Code::RemovePlayer,
    Code::AddRoom,      Code::MemberReady,   Code::RoomChat,       Code::MemberJoined,
    Code::MemberLeft,   Code::RoomStatus,    Code::RoomCount,      Code::RemoveRoom,
    Code::LockRoom,     Code::WrongPassword, Code::PrivateMessage, Code::RoomRefused};

const CodeInfo &info(Code code)
{
    return kCodes[static_cast<std::size_t>(code)];
}

} // namespace

std::optional<int> fieldCount(Code code, Direction direction)
{
    const int n = direction == Direction::ToClient ? info(code).toClient : info(code).toServer;
    if (n < 0)
        return std::nullopt;
    return n;
}

QByteArrayView wireCode(Code code)
{
    return QByteArrayView(info(code).wire, 2);
}

namespace {

// Index into kCodes by the two wire bytes, -1 for no code: the receive loop looks a code up
// at every position it resynchronises over, so this is a table, not a search.
constexpr std::array<std::int8_t, 65536> makeCodeIndex()
{
    std::array<std::int8_t, 65536> index{};
    for (auto &entry : index)
        entry = -1;
    for (std::size_t i = 0; i < kCodes.size(); ++i) {
        const auto a = static_cast<unsigned char>(kCodes[i].wire[0]);
        const auto b = static_cast<unsigned char>(kCodes[i].wire[1]);
        index[a * 256 + b] = static_cast<std::int8_t>(i);
    }
    return index;
}
constexpr std::array<std::int8_t, 65536> kCodeIndex = makeCodeIndex();

} // namespace

std::optional<Code> codeAt(QByteArrayView bytes, Direction direction)
{
    if (bytes.size() < 2)
        return std::nullopt;
    const auto a = static_cast<unsigned char>(bytes[0]);
    const auto b = static_cast<unsigned char>(bytes[1]);
    const int i = kCodeIndex[a * 256 + b];
    if (i < 0)
        return std::nullopt;
    const CodeInfo &c = kCodes[static_cast<std::size_t>(i)];
    const int n = direction == Direction::ToClient ? c.toClient : c.toServer;
    return n < 0 ? std::nullopt : std::optional<Code>(c.code);
}

std::span<const Code> clientIncomingOrder()
{
    return kClientIncomingOrder;
}

} // namespace protocol

namespace protocol {
namespace {
constexpr bool tableFollowsEnum()
{
    for (std::size_t i = 0; i < kCodes.size(); ++i) {
        if (static_cast<std::size_t>(kCodes[i].code) != i)
            return false;
    }
    return true;
}
static_assert(tableFollowsEnum(), "kCodes must list the codes in the order of the enum");
} // namespace
} // namespace protocol
