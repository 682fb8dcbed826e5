#include "client/rooms/roomlisthandlers.h"

#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/roomlistmodel.h"
#include "protocol/rooms.h"

namespace client {

namespace {

const QString kNotAvailable = QStringLiteral("N/A");
const QString kInGame = QStringLiteral("In game");

} // namespace

RoomListHandlers::RoomListHandlers(RoomListModel &rooms, LobbyDispatcher &dispatcher,
                                   GameAddressInUse gameAddressInUse, QObject *parent)
    : QObject(parent), m_rooms(rooms), m_dispatcher(&dispatcher),
      m_gameAddressInUse(std::move(gameAddressInUse))
{
    dispatcher.on<protocol::AddRoomToClient>([this](const auto &m) { onAddRoom(m); });
    dispatcher.on<protocol::RemoveRoomToClient>([this](const auto &m) { onRemoveRoom(m); });
    dispatcher.on<protocol::RoomCount>([this](const auto &m) { onRoomCount(m); });
    dispatcher.on<protocol::LockRoomToClient>([this](const auto &m) { onLockRoom(m); });
}

RoomListHandlers::~RoomListHandlers()
{
    if (!m_dispatcher)
        return;
    m_dispatcher->off<protocol::AddRoomToClient>();
    m_dispatcher->off<protocol::RemoveRoomToClient>();
    m_dispatcher->off<protocol::RoomCount>();
    m_dispatcher->off<protocol::LockRoomToClient>();
}

void RoomListHandlers::onAddRoom(const protocol::AddRoomToClient &message)
{
    m_rooms.appendRow({message.host, message.roomName, QString(), message.status,
                       padLeft8(message.playerCount.text), QString()},
                      message.hostAddress,
                      message.locked ? RoomListModel::LockedRoom : RoomListModel::OpenRoom);
}

void RoomListHandlers::onRemoveRoom(const protocol::RemoveRoomToClient &message)
{
    Q_EMIT roomClosing(message.host);
    QString address;
    const int row = m_rooms.findRoomRow(message.host);
    if (row >= 0) {
        address = m_rooms.tag(row);
        m_rooms.removeRow(row);
    }
    if (message.inGame)
        addGameRow(address);
}

void RoomListHandlers::onRoomCount(const protocol::RoomCount &message)
{
    const int row = m_rooms.findRoomRow(message.host);
    if (row >= 0)
        m_rooms.setText(row, RoomListModel::Players, padLeft8(message.playerCount.text));
}

void RoomListHandlers::onLockRoom(const protocol::LockRoomToClient &message)
{
    const int row = m_rooms.findRoomRow(message.host);
    if (row >= 0)
        m_rooms.setIcon(row, message.locked ? RoomListModel::LockedRoom : RoomListModel::OpenRoom);
}

void RoomListHandlers::addGameRow(const QString &address)
{
    if (address.isEmpty() || m_rooms.findRowByTag(address) >= 0)
        return;
    m_rooms.appendRow({kNotAvailable, kNotAvailable, QString(), kInGame, kNotAvailable, QString()},
                      address, RoomListModel::RunningGame);
    Q_EMIT gameRowAdded(address);
}

void RoomListHandlers::removeGameRow(const QString &address)
{
    if (address.isEmpty() || (m_gameAddressInUse && m_gameAddressInUse(address)))
        return;
    const int row = m_rooms.findRowByTag(address, true);
    if (row >= 0)
        m_rooms.removeRow(row);
}

} // namespace client
