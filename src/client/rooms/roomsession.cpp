#include "client/rooms/roomsession.h"

#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/platform/dialogs.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "protocol/rooms.h"

#include <QCoreApplication>

namespace client {

namespace {

const QString kInChat = QStringLiteral("In chat");
const QString kInGame = QStringLiteral("In game");

QString caption(const QString &roomName, const QString &host)
{
    return QStringLiteral("Room: ") + roomName + QStringLiteral("     Host: ") + host;
}

int stateNumber(std::optional<protocol::ReadyState> state)
{
    return state ? int(*state) : 0;
}

// A room chat line comes whole, "name: text"; no name holds ": ".
QString senderOf(const QString &line)
{
    const qsizetype end = line.indexOf(QStringLiteral(": "));
    return end < 0 ? QString() : line.left(end);
}

} // namespace

RoomSession::RoomSession(RoomState &room, RoomListModel &rooms, LobbyDispatcher &dispatcher,
                         LobbyConnection &connection, SessionState &session, Dialogs &dialogs,
                         const IgnoreList &ignored, OwnName ownName, QObject *parent)
    : QObject(parent), m_room(room), m_rooms(rooms), m_dispatcher(&dispatcher),
      m_connection(connection), m_session(session), m_dialogs(dialogs), m_ignored(ignored),
      m_ownName(std::move(ownName))
{
    // The login opens the way, the logout or a drop closes it; entering a room closes it and
    // leaving one opens it again.
    connect(&session, &SessionState::onlineChanged, this,
            [this](bool online) { m_canCreateOrJoin = online; });
    connect(this, &RoomSession::createRoomButtonShown, this,
            [this](bool shown) { m_canCreateOrJoin = shown; });
    dispatcher.on<protocol::MemberJoined>([this](const auto &m) { onMemberJoined(m); });
    dispatcher.on<protocol::MemberLeft>([this](const auto &m) { onMemberLeft(m); });
    dispatcher.on<protocol::RoomChat>([this](const auto &m) { onRoomChat(m); });
    dispatcher.on<protocol::MemberReadyToClient>([this](const auto &m) { onMemberReady(m); });
    dispatcher.on<protocol::RoomStatusToClient>([this](const auto &m) { onRoomStatus(m); });
    dispatcher.on<protocol::WrongPassword>([this](const auto &) { onWrongPassword(); });
    dispatcher.on<protocol::RoomRefused>([this](const auto &m) { onRoomRefused(m); });
}

RoomSession::~RoomSession()
{
    if (!m_dispatcher)
        return;
    m_dispatcher->off<protocol::MemberJoined>();
    m_dispatcher->off<protocol::MemberLeft>();
    m_dispatcher->off<protocol::RoomChat>();
    m_dispatcher->off<protocol::MemberReadyToClient>();
    m_dispatcher->off<protocol::RoomStatusToClient>();
    m_dispatcher->off<protocol::WrongPassword>();
    m_dispatcher->off<protocol::RoomRefused>();
}

bool RoomSession::isHost() const
{
    return !m_room.hostName.isEmpty() && m_room.hostName == m_ownName();
}

void RoomSession::createRoom(const QString &roomName)
{
    const QString own = m_ownName();
    m_room.clearRoom();
    Q_EMIT createRoomButtonShown(false);
    m_room.hostName = own;
    m_room.hideShowRoom = true;
    m_room.hostControls = true;
    m_room.startShown = m_room.joinShown = false;
    m_room.status = kInChat;
    m_room.caption = caption(roomName, own);
    // The server lists no host in his own room: the client does.
    m_room.addMember(own, int(protocol::ReadyState::NotReady));
    m_room.notify();
    Q_EMIT roomWindowShowRequested();
    QCoreApplication::processEvents();
    m_session.serverStatus = kInChat;
    QCoreApplication::processEvents();
    m_connection.send(protocol::AddRoomToServer{roomName});
}

void RoomSession::joinRow(int row)
{
    if (row < 0 || row >= m_rooms.rowCount())
        return;
    if (m_rooms.icon(row) == RoomListModel::RunningGame) {
        Q_EMIT gameClientStartRequested(m_rooms.tag(row));
        return;
    }
    const QString host = m_rooms.text(row, RoomListModel::Host);
    QString password;
    if (m_rooms.icon(row) == RoomListModel::LockedRoom) {
        password = m_dialogs.inputBox(QStringLiteral("Password"),
                                      QStringLiteral("This server is locked"), {}, true);
        if (password.isEmpty())
            return;
        // Rooms come and go while the box is open: the row may have moved or gone.
        row = m_rooms.findRoomRow(host);
        if (row < 0)
            return;
    }
    m_room.clearRoom();
    m_room.clearChatInput();
    Q_EMIT createRoomButtonShown(false);
    m_room.hostControls = false;
    m_room.startShown = m_room.joinShown = false;
    m_room.caption = caption(m_rooms.text(row, RoomListModel::RoomName), host);
    m_room.hostName = host;
    m_room.hideShowRoom = true;
    m_room.status = m_rooms.text(row, RoomListModel::Status);
    m_room.ipToGame = m_rooms.tag(row);
    m_room.playerReadyStatus = 1;
    m_room.notify();
    Q_EMIT roomWindowShowRequested();
    m_connection.send(protocol::JoinRoom{host, password});
}

bool RoomSession::sendChat(const QString &text)
{
    if (text.isEmpty())
        return false;
    m_connection.send(protocol::RoomChat{text});
    return true;
}

void RoomSession::askReady(int state)
{
    m_connection.send(protocol::MemberReadyToServer{protocol::ReadyState(state)});
}

void RoomSession::setLocked(bool locked, const QString &password)
{
    m_connection.send(protocol::LockRoomToServer{locked ? password : QString()});
}

void RoomSession::sendRoomStatus()
{
    if (const std::optional<protocol::RoomStatus> status =
            protocol::roomStatusFromText(m_session.serverStatus))
        m_connection.send(protocol::RoomStatusToServer{*status});
}

void RoomSession::startGame()
{
    if (m_session.serverStatus != kInGame)
        Q_EMIT gameServerStartRequested();
}

void RoomSession::joinGame()
{
    Q_EMIT gameClientStartRequested(m_room.ipToGame);
}

void RoomSession::leave()
{
    if (m_room.hostControls)
        m_connection.send(protocol::RemoveRoomToServer{});
    else
        m_connection.send(protocol::LeaveRoom{});
    m_room.reset();
    m_session.serverStatus.clear();
    Q_EMIT createRoomButtonShown(true);
    Q_EMIT roomWindowUnloadRequested();
}

void RoomSession::roomClosing(const QString &host)
{
    if (!m_room.hostName.isEmpty() && host == m_room.hostName)
        leave();
}

void RoomSession::onMemberJoined(const protocol::MemberJoined &message)
{
    if (m_room.hostName.isEmpty() || !message.state)
        return;
    m_room.addMember(message.name, stateNumber(message.state));
}

void RoomSession::onMemberLeft(const protocol::MemberLeft &message)
{
    if (!m_room.hostName.isEmpty())
        m_room.removeMember(message.name);
}

void RoomSession::onRoomChat(const protocol::RoomChat &message)
{
    if (!m_room.hostName.isEmpty() && !m_ignored.contains(senderOf(message.text)))
        m_room.addChatLine(message.text);
}

void RoomSession::onMemberReady(const protocol::MemberReadyToClient &message)
{
    if (m_room.hostName.isEmpty() || !message.state)
        return;
    const int state = stateNumber(message.state);
    if (message.name == m_ownName()) {
        m_room.playerReadyStatus = state;
        if (isHost())
            m_room.startShown = state == 2;
        else
            m_room.joinShown = m_room.status == kInGame && state == 2;
        m_room.notify();
    }
    m_room.setMemberIcon(message.name, state);
}

void RoomSession::onRoomStatus(const protocol::RoomStatusToClient &message)
{
    if (!m_room.hostName.isEmpty() && message.host == m_room.hostName) {
        m_room.status = message.status;
        if (!isHost()) {
            m_room.joinShown = message.status != kInChat && m_room.playerReadyStatus == 2;
            if (m_room.joinShown)
                Q_EMIT gameClientAutoStartRequested(m_room.ipToGame);
        }
        m_room.notify();
    }
    const int row = m_rooms.findRoomRow(message.host);
    if (row >= 0)
        m_rooms.setText(row, RoomListModel::Status, message.status);
}

void RoomSession::onRoomRefused(const protocol::RoomRefused &message)
{
    // The room window opened before the server answered: the user is in no room after all.
    if (!m_room.hostName.isEmpty())
        leave();
    m_dialogs.messageBox(applicationTitle(), message.reason);
    Q_EMIT refused(message.reason);
}

void RoomSession::onWrongPassword()
{
    leave();
    m_dialogs.messageBox(applicationTitle(), QStringLiteral("Wrong password"));
}

} // namespace client
