#include "client/game/gameserverquery.h"

#include "client/game/gameinfo.h"
#include "client/platform/tickcount.h"
#include "client/rooms/roomlistmodel.h"
#include "protocol/cp1252.h"

#include <QNetworkDatagram>
#include <QUdpSocket>

namespace client {

namespace {

const QByteArray kStatusRequest = QByteArrayLiteral("\\status\\");
const QByteArray kReplyMark = QByteArrayLiteral("queryid");

// Rows are keyed by dotted IPv4 text, so an IPv4-mapped sender is written the same way.
QString addressText(const QHostAddress &address)
{
    bool isV4 = false;
    const quint32 v4 = address.toIPv4Address(&isV4);
    return isV4 ? QHostAddress(v4).toString() : address.toString();
}

} // namespace

GameServerQuery::GameServerQuery(RoomListModel &rooms, GameInfo &gameInfo, const TickCount &ticks,
                                 QObject *parent)
    : QObject(parent), m_rooms(rooms), m_gameInfo(gameInfo), m_ticks(ticks)
{
    createSocket(kGameInfoSlot);
}

quint16 GameServerQuery::localPort(int slot) const
{
    if (slot < 0 || slot > kPingSlots || !m_slots[slot].socket)
        return 0;
    return m_slots[slot].socket->localPort();
}

void GameServerQuery::queryGameInfo(const QString &address)
{
    // Only this server's answer may open the game-info window, until another is asked.
    m_gameInfoServer = QHostAddress(address);
    send(kGameInfoSlot, address);
}

void GameServerQuery::pingGameServer(const QString &address)
{
    m_nextPingSlot = m_nextPingSlot >= kPingSlots ? 1 : m_nextPingSlot + 1;
    // A server that never answered leaves its socket waiting until the slot comes round.
    releaseSocket(m_nextPingSlot);
    createSocket(m_nextPingSlot);
    send(m_nextPingSlot, address);
}

void GameServerQuery::refreshPings()
{
    QStringList addresses;
    for (int row = 0; row < m_rooms.rowCount(); ++row) {
        if (m_rooms.icon(row) == RoomListModel::RunningGame)
            addresses.append(m_rooms.tag(row));
    }
    for (const QString &address : std::as_const(addresses))
        pingGameServer(address);
}

QUdpSocket *GameServerQuery::createSocket(int slot)
{
    auto *socket = new QUdpSocket(this);
    // A socket that cannot bind is kept all the same: its send fails quietly and the row
    // keeps its values, as with a server that does not answer.
    socket->bind(QHostAddress::AnyIPv4, 0);
    connect(socket, &QUdpSocket::readyRead, this, [this, slot] { readReplies(slot); });
    m_slots[slot] = Slot{socket, std::nullopt};
    return socket;
}

void GameServerQuery::releaseSocket(int slot)
{
    QUdpSocket *socket = m_slots[slot].socket;
    m_slots[slot] = Slot{};
    if (!socket)
        return;
    socket->disconnect(this);
    socket->close();
    // It may be the socket whose reply is being handled right now.
    socket->deleteLater();
}

void GameServerQuery::send(int slot, const QString &address)
{
    Slot &entry = m_slots[slot];
    entry.sentAt = m_ticks.now();
    // Only literal addresses are queried: rows and players carry dotted IPv4 text, and an
    // empty address (a player without a server) asks nobody.
    const QHostAddress target(address);
    if (target.isNull())
        return;
    entry.socket->writeDatagram(kStatusRequest, target, m_queryPort);
}

void GameServerQuery::readReplies(int slot)
{
    QUdpSocket *socket = m_slots[slot].socket;
    while (socket && socket->hasPendingDatagrams()) {
        const QNetworkDatagram datagram = socket->receiveDatagram();
        if (!datagram.isValid())
            return;
        // Other datagrams are taken and dropped rather than left waiting: an unread datagram
        // would hold back every later reply on this socket.
        if (!datagram.data().contains(kReplyMark))
            continue;

        if (slot == kGameInfoSlot && !isFromGameInfoServer(datagram))
            continue;
        const QString data = protocol::fromCp1252(datagram.data());
        if (slot == kGameInfoSlot) {
            m_gameInfo.addInfo(data, true);
            m_slots[slot].sentAt.reset();
            continue;
        }
        const qint64 ping = m_ticks.now() - m_slots[slot].sentAt.value_or(m_ticks.now());
        m_gameInfo.addInfo(data, false);
        const QString sender = addressText(datagram.senderAddress());
        fillRow(sender, ping);
        releaseSocket(slot);
        Q_EMIT gameAnswered(sender, m_gameInfo.table().isFull());
        return;
    }
}

bool GameServerQuery::isFromGameInfoServer(const QNetworkDatagram &datagram) const
{
    return !m_gameInfoServer.isNull() && datagram.senderPort() == m_queryPort &&
           datagram.senderAddress().isEqual(m_gameInfoServer, QHostAddress::TolerantConversion);
}

void GameServerQuery::fillRow(const QString &sender, qint64 ping)
{
    const int found = m_rooms.findRowByTag(sender);
    if (found < 0)
        return;
    // Writing a column of a sorted list can move the row; the persistent index follows it.
    const QPersistentModelIndex row(m_rooms.index(found, 0));
    const auto write = [&](RoomListModel::Column column, const QString &text) {
        if (row.isValid())
            m_rooms.setText(row.row(), column, text);
    };
    const StatusTable &table = m_gameInfo.table();

    // Texts too short to have their enclosing backslashes leave the column as it was.
    const QString firstPlayer = m_gameInfo.getSpelare();
    if (firstPlayer.size() >= 2)
        write(RoomListModel::Host, withoutEnds(firstPlayer));
    const QString hostName = table.value(StatusTable::HostName);
    if (hostName.size() >= 2)
        write(RoomListModel::RoomName, withoutEnds(hostName));
    write(RoomListModel::Ping, padLeft8(QString::number(ping)));
    write(RoomListModel::Players,
          padLeft8(withoutBackslashes(table.value(StatusTable::NumPlayers))));
    const QString map = table.value(StatusTable::MapName);
    if (map.size() >= 2)
        write(RoomListModel::Map, withoutEnds(map));
    if (row.isValid())
        m_rooms.setFull(row.row(), table.isFull());
}

} // namespace client
