#pragma once

#include "client/game/gameport.h"

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <array>
#include <optional>

class QNetworkDatagram;
class QUdpSocket;

namespace client {

class GameInfo;
class RoomListModel;
class TickCount;

// Asks game servers for their status over UDP ("\status\" to the game port) and files the
// answers. Slot 0 serves the game-info window; slots 1..100 serve room pings in turn, each a
// fresh socket whose send time gives the ping. A ping reply fills the running-game row whose
// address sent it (host, room name, ping, players, map, whether it is full); every reply also
// replaces what `GameInfo` holds. Only replies that carry "queryid" count, and on slot 0 only the
// one from the game port of the server asked last: a datagram from anyone else opens no window.
class GameServerQuery : public QObject
{
    Q_OBJECT

public:
    static constexpr int kGameInfoSlot = 0;
    static constexpr int kPingSlots = 100;

    // Binds slot 0 at once, so the game-info query is ready.
    GameServerQuery(RoomListModel &rooms, GameInfo &gameInfo, const TickCount &ticks,
                    QObject *parent = nullptr);

    // The port queried on every server; the product always asks the game port. Tests point
    // it elsewhere so that they need not own it.
    void setQueryPort(quint16 port) { m_queryPort = port; }
    quint16 queryPort() const { return m_queryPort; }

    // `nextPingSlot`: the ping slot used last, 0 before the first ping.
    int nextPingSlot() const { return m_nextPingSlot; }
    // The local port of a slot's socket; 0 when the slot holds none.
    quint16 localPort(int slot) const;

public Q_SLOTS:
    // "Game Info" of the player menu: the answer is shown in the game-info window.
    void queryGameInfo(const QString &address);
    // Pings the game server of one running-game row (called when the room list adds one).
    void pingGameServer(const QString &address);
    // "Refresh pings": pings every running-game row of the room list, in list order.
    void refreshPings();

Q_SIGNALS:
    // A ping's reply came from the game server at `address` (dotted IPv4) and was filed.
    void gameAnswered(const QString &address, bool full);

private:
    struct Slot
    {
        QUdpSocket *socket = nullptr; // owned by this object
        std::optional<qint64> sentAt; // the socket's tag: tick of its request
    };

    QUdpSocket *createSocket(int slot);
    void releaseSocket(int slot);
    void send(int slot, const QString &address);
    void readReplies(int slot);
    void fillRow(const QString &sender, qint64 ping);
    bool isFromGameInfoServer(const QNetworkDatagram &datagram) const;

    RoomListModel &m_rooms;
    GameInfo &m_gameInfo;
    const TickCount &m_ticks;
    quint16 m_queryPort = GamePort;
    quint16 m_nextPingSlot = 0;
    QHostAddress m_gameInfoServer; // asked last on slot 0; none before the first query
    std::array<Slot, kPingSlots + 1> m_slots;
};

} // namespace client
