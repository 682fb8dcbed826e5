#include "client/rooms/roomlisthandlers.h"

#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/roomlistmodel.h"
#include "protocol/message.h"

namespace client {

namespace {

const QString kNotAvailable = QStringLiteral("N/A");
const QString kInGame = QStringLiteral("In game");

// The lock flag of "LR" is a number: exactly the value 1 locks, any other value (or text that
// is no number) leaves the room open.
bool isLockedNumber(const QString &flag)
{
    bool ok = false;
    const double value = flag.trimmed().toDouble(&ok);
    return ok && value == 1.0;
}

} // namespace

RoomListHandlers::RoomListHandlers(RoomListModel &rooms, LobbyDispatcher &dispatcher,
                                   GameAddressInUse gameAddressInUse, QObject *parent)
    : QObject(parent), m_rooms(rooms), m_dispatcher(&dispatcher),
      m_gameAddressInUse(std::move(gameAddressInUse))
{
    using protocol::Code;
    dispatcher.setHandler(Code::AddRoom, [this](const auto &m) { onAddRoom(m); });
    dispatcher.setHandler(Code::RemoveRoom, [this](const auto &m) { onRemoveRoom(m); });
    dispatcher.setHandler(Code::RoomCount, [this](const auto &m) { onRoomCount(m); });
    dispatcher.setHandler(Code::LockRoom, [this](const auto &m) { onLockRoom(m); });
}

RoomListHandlers::~RoomListHandlers()
{
    if (!m_dispatcher)
        return;
    for (auto code : {protocol::Code::AddRoom, protocol::Code::RemoveRoom,
                      protocol::Code::RoomCount, protocol::Code::LockRoom})
        m_dispatcher->setHandler(code, {});
}

void RoomListHandlers::onAddRoom(const protocol::Message &message)
{
    // host name, room name, host address, status text, player count, lock flag
    const QString host = message.field(0);
    const QString roomName = message.field(1);
    const QString address = message.field(2);
    const QString status = message.field(3);
    const QString players = padLeft8(message.field(4));
    const bool locked = message.field(5) == QLatin1String("1");
    m_rooms.appendRow({host, roomName, QString(), status, players, QString()}, address,
                      locked ? RoomListModel::LockedRoom : RoomListModel::OpenRoom);
}

void RoomListHandlers::onRemoveRoom(const protocol::Message &message)
{
    // host name, game flag
    const QString host = message.field(0);
    Q_EMIT roomClosing(host);
    QString address;
    const int row = m_rooms.findRoomRow(host);
    if (row >= 0) {
        address = m_rooms.tag(row);
        m_rooms.removeRow(row);
    }
    if (message.field(1) == QLatin1String("1"))
        addGameRow(address);
}

void RoomListHandlers::onRoomCount(const protocol::Message &message)
{
    // host name, player count
    const int row = m_rooms.findRoomRow(message.field(0));
    if (row >= 0)
        m_rooms.setText(row, RoomListModel::Players, padLeft8(message.field(1)));
}

void RoomListHandlers::onLockRoom(const protocol::Message &message)
{
    // host name, lock flag
    const int row = m_rooms.findRoomRow(message.field(0));
    if (row >= 0)
        m_rooms.setIcon(row, isLockedNumber(message.field(1)) ? RoomListModel::LockedRoom
                                                              : RoomListModel::OpenRoom);
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
