#include "server/roomhandler.h"

#include "protocol/rooms.h"
#include "server/accountlimits.h"
#include "server/announcements.h"
#include "server/connection.h"
#include "server/lobby.h"
#include "server/messagerouter.h"
#include "server/roomregistry.h"
#include "server/session.h"

namespace server {

using namespace protocol;

namespace {
const QString kRoomChanges = QStringLiteral("room changes");
const QString kRoomChat = QStringLiteral("room chat");
const QString kRoomPasswords = QStringLiteral("room passwords");
// Room passwords are compared on at most this many characters and stored no longer.
constexpr qsizetype kMaxRoomPassword = 32;

void sendToMembers(const Room &room, const QByteArray &bytes, const Session *except = nullptr)
{
    for (const RoomMember &m : room.members) {
        if (m.session != except)
            m.session->send(bytes);
    }
}

QByteArray memberCount(const Room &room)
{
    return RoomCount{.host = room.hostName, .playerCount = QString::number(room.members.size())}
        .encode();
}
} // namespace

RoomHandler::RoomHandler(Lobby &lobby, RoomRegistry &rooms, AccountLimits &limits)
    : m_lobby(lobby), m_rooms(rooms), m_limits(limits)
{
}

void RoomHandler::registerWith(MessageRouter &router)
{
    // Every change that is announced to the whole lobby counts against one limit.
    const auto mayChange = [this](const Session &player) {
        return m_limits.tryAcquire(player.player().accountId, kRoomChanges,
                                   AccountLimits::kRoomChanges);
    };
    const auto mayChat = [this](const Session &player) {
        return m_limits.tryAcquire(player.player().accountId, kRoomChat, AccountLimits::kRoomChat);
    };

    router.on<AddRoomToServer>([this, mayChange](Session &host, const AddRoomToServer &add) {
        if (m_rooms.roomOf(&host) || !mayChange(host))
            return;
        const Room &room = m_rooms.create(&host, relayText(add.roomName, kMaxRoomNameBytes),
                                          host.connection().peerAddress());
        m_lobby.broadcast(roomAnnouncement(room));
    });

    router.on<JoinRoom>([this, mayChange](Session &joiner, const JoinRoom &join) {
        if (m_rooms.roomOf(&joiner))
            return;
        Room *room = m_rooms.findByHost(join.host);
        if (!room || !mayChange(joiner))
            return;
        if (!room->password.isEmpty()) {
            // Past the limit every password is wrong, so guessing gains nothing.
            const bool mayTry = m_limits.tryAcquire(joiner.player().accountId, kRoomPasswords,
                                                    AccountLimits::kRoomPasswords);
            if (!mayTry || room->password != join.password.left(kMaxRoomPassword)) {
                joiner.send(WrongPassword{}.encode());
                return;
            }
        }
        m_rooms.addMember(*room, &joiner);
        QByteArray roster;
        for (const RoomMember &m : room->members)
            roster += MemberJoined{.name = m.session->player().name, .state = m.ready}.encode();
        joiner.send(roster);
        sendToMembers(
            *room,
            MemberJoined{.name = joiner.player().name, .state = ReadyState::NotReady}.encode(),
            &joiner);
        m_lobby.broadcast(memberCount(*room));
    });

    router.on<LeaveRoom>([this, mayChange](Session &member, const LeaveRoom &) {
        if (mayChange(member))
            leaveRoom(member);
    });

    router.on<RemoveRoomToServer>([this, mayChange](Session &host, const RemoveRoomToServer &) {
        if (mayChange(host))
            closeRoom(host);
    });

    router.on<MemberReadyToServer>(
        [this, mayChat](Session &member, const MemberReadyToServer &ready) {
            Room *room = m_rooms.roomOf(&member);
            if (!room || !mayChat(member))
                return;
            room->member(&member)->ready = ready.state;
            sendToMembers(
                *room,
                MemberReadyToClient{.name = member.player().name, .state = ready.state}.encode());
        });

    router.on<RoomChat>([this, mayChat](Session &member, const RoomChat &chat) {
        const Room *room = m_rooms.roomOf(&member);
        if (!room || !mayChat(member))
            return;
        sendToMembers(*room, RoomChat{member.player().name + QStringLiteral(": ") +
                                      relayText(chat.text, kMaxRoomChatBytes)}
                                 .encode());
    });

    router.on<RoomStatusToServer>(
        [this, mayChange](Session &host, const RoomStatusToServer &status) {
            Room *room = m_rooms.roomOf(&host);
            if (!room || room->host != &host || !mayChange(host))
                return;
            room->status = status.status;
            m_lobby.broadcast(
                RoomStatusToClient{.host = room->hostName, .status = roomStatusText(status.status)}
                    .encode());
        });

    router.on<LockRoomToServer>([this, mayChange](Session &host, const LockRoomToServer &lock) {
        Room *room = m_rooms.roomOf(&host);
        if (!room || room->host != &host || !mayChange(host))
            return;
        room->password = lock.password.left(kMaxRoomPassword);
        m_lobby.broadcast(
            LockRoomToClient{.host = room->hostName, .locked = !room->password.isEmpty()}.encode());
    });
}

void RoomHandler::leaveOnDeparture(Session &player)
{
    const Room *room = m_rooms.roomOf(&player);
    if (!room)
        return;
    if (room->host == &player)
        closeRoom(player);
    else
        leaveRoom(player);
}

void RoomHandler::closeRoom(Session &host)
{
    const Room *room = m_rooms.roomOf(&host);
    if (!room || room->host != &host)
        return;
    m_lobby.broadcast(
        RemoveRoomToClient{.host = room->hostName, .inGame = room->status == RoomStatus::InGame}
            .encode());
    m_rooms.close(*room);
}

void RoomHandler::leaveRoom(Session &member)
{
    Room *room = m_rooms.roomOf(&member);
    if (!room || room->host == &member)
        return;
    m_rooms.removeMember(*room, &member);
    sendToMembers(*room, MemberLeft{member.player().name}.encode());
    m_lobby.broadcast(memberCount(*room));
}

} // namespace server
