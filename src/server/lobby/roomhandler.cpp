#include "server/lobby/roomhandler.h"

#include "protocol/rooms.h"
#include "server/lobby/accountlimits.h"
#include "server/lobby/announcements.h"
#include "server/lobby/lobby.h"
#include "server/lobby/roomregistry.h"
#include "server/net/connection.h"
#include "server/net/messagerouter.h"
#include "server/net/session.h"

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
    return RoomCount{.host = room.hostName,
                     .playerCount = protocol::NumberText::of(double(room.members.size()))}
        .encode();
}

// A create or join the server does not carry out is answered, so that the client, which
// opened its room window at once, lets go of it and tells the player why.
QByteArray refusal(const char *reason)
{
    return RoomRefused{QString::fromLatin1(reason)}.encode();
}

constexpr auto kTooFast =
    "You are opening and joining rooms too fast: wait a moment and try again.";
constexpr auto kRoomGone = "That room has closed.";
constexpr auto kTooManyPasswords = "Too many wrong room passwords: try again in a minute.";
} // namespace

RoomHandler::RoomHandler(Lobby &lobby, RoomRegistry &rooms, AccountLimits &limits,
                         int readySpacingMs)
    : m_lobby(lobby), m_rooms(rooms), m_limits(limits),
      m_readyChanges(readySpacingMs, [this](const Session &member) { sendReady(member); })
{
}

void RoomHandler::registerWith(MessageRouter &router)
{
    router.on(this, &RoomHandler::addRoom);
    router.on(this, &RoomHandler::join);
    router.on(this, &RoomHandler::leave);
    router.on(this, &RoomHandler::remove);
    router.on(this, &RoomHandler::setReady);
    router.on(this, &RoomHandler::chat);
    router.on(this, &RoomHandler::setStatus);
    router.on(this, &RoomHandler::lock);
}

bool RoomHandler::mayChange(const Session &player)
{
    return m_limits.tryAcquire(player.player().accountId, kRoomChanges,
                               AccountLimits::kRoomChanges);
}

bool RoomHandler::mayChat(const Session &player)
{
    return m_limits.tryAcquire(player.player().accountId, kRoomChat, AccountLimits::kRoomChat);
}

void RoomHandler::addRoom(Session &host, const AddRoomToServer &add)
{
    if (m_rooms.roomOf(&host))
        return;
    if (!mayChange(host)) {
        host.send(refusal(kTooFast));
        return;
    }
    const Room &room = m_rooms.create(&host, relayText(add.roomName, kMaxRoomNameBytes),
                                      host.connection().peerAddress());
    m_lobby.broadcast(roomAnnouncement(room));
}

void RoomHandler::join(Session &joiner, const JoinRoom &join)
{
    if (m_rooms.roomOf(&joiner))
        return;
    Room *room = m_rooms.findByHost(join.host);
    if (!room) {
        joiner.send(refusal(kRoomGone));
        return;
    }
    if (!mayChange(joiner)) {
        joiner.send(refusal(kTooFast));
        return;
    }
    if (!room->password.isEmpty()) {
        // Past the limit no password is tried, so guessing gains nothing; the player hears
        // why rather than that the right password is wrong.
        if (!m_limits.tryAcquire(joiner.player().accountId, kRoomPasswords,
                                 AccountLimits::kRoomPasswords)) {
            joiner.send(refusal(kTooManyPasswords));
            return;
        }
        if (room->password != join.password.left(kMaxRoomPassword)) {
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
        *room, MemberJoined{.name = joiner.player().name, .state = ReadyState::NotReady}.encode(),
        &joiner);
    m_lobby.broadcast(memberCount(*room));
}

void RoomHandler::leave(Session &member, const LeaveRoom &)
{
    leaveRoom(member);
}

void RoomHandler::remove(Session &host, const RemoveRoomToServer &)
{
    closeRoom(host);
}

void RoomHandler::setReady(Session &member, const MemberReadyToServer &ready)
{
    Room *room = m_rooms.roomOf(&member);
    if (!room)
        return;
    room->member(&member)->ready = ready.state;
    m_readyChanges.changed(member);
}

void RoomHandler::sendReady(const Session &member)
{
    // Sent later than changed, the member may have left; his room's members then heard "ÖB".
    Room *room = m_rooms.roomOf(&member);
    if (!room)
        return;
    const RoomMember *self = room->member(&member);
    sendToMembers(*room,
                  MemberReadyToClient{.name = member.player().name, .state = self->ready}.encode());
}

void RoomHandler::chat(Session &member, const RoomChat &chat)
{
    const Room *room = m_rooms.roomOf(&member);
    if (!room || !mayChat(member))
        return;
    sendToMembers(*room, RoomChat{member.player().name + QStringLiteral(": ") +
                                  relayText(chat.text, kMaxRoomChatBytes)}
                             .encode());
}

void RoomHandler::setStatus(Session &host, const RoomStatusToServer &status)
{
    Room *room = m_rooms.roomOf(&host);
    if (!room || room->host != &host || !mayChange(host))
        return;
    room->status = status.status;
    m_lobby.broadcast(
        RoomStatusToClient{.host = room->hostName, .status = roomStatusText(status.status)}
            .encode());
}

void RoomHandler::lock(Session &host, const LockRoomToServer &lock)
{
    Room *room = m_rooms.roomOf(&host);
    if (!room || room->host != &host || !mayChange(host))
        return;
    room->password = lock.password.left(kMaxRoomPassword);
    m_lobby.broadcast(
        LockRoomToClient{.host = room->hostName, .locked = !room->password.isEmpty()}.encode());
}

void RoomHandler::leaveOnDeparture(Session &player)
{
    m_readyChanges.forget(player);
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
    for (const RoomMember &m : room->members)
        m_readyChanges.forget(*m.session);
    m_rooms.close(*room);
}

void RoomHandler::leaveRoom(Session &member)
{
    Room *room = m_rooms.roomOf(&member);
    if (!room || room->host == &member)
        return;
    m_readyChanges.forget(member);
    m_rooms.removeMember(*room, &member);
    sendToMembers(*room, MemberLeft{member.player().name}.encode());
    m_lobby.broadcast(memberCount(*room));
}

} // namespace server
