#pragma once

#include <QList>
#include <QNetworkDatagram>
#include <QUdpSocket>

// A game server's UDP side as a test needs it: keeps every datagram it receives and, when it
// has a reply, answers each request from its own address and port.
struct UdpResponder
{
    UdpResponder()
    {
        QObject::connect(&socket, &QUdpSocket::readyRead, [this] {
            while (socket.hasPendingDatagrams()) {
                requests.append(socket.receiveDatagram());
                if (!reply.isEmpty())
                    socket.writeDatagram(reply, requests.last().senderAddress(),
                                         quint16(requests.last().senderPort()));
            }
        });
    }
    // Sends from this responder's address, as a late or stray answer would come.
    void sendTo(const QByteArray &data, quint16 port)
    {
        socket.writeDatagram(data, QHostAddress::LocalHost, port);
    }

    QUdpSocket socket;
    QByteArray reply;
    QList<QNetworkDatagram> requests;
};

// The status reply of a server named "My Game" on "Training" with Bob (ping 40) and Al (55).
inline QByteArray exampleReply()
{
    return "\\gamename\\roguespear\\gamever\\2.15\\hostname\\My Game\\hostport\\2346"
           "\\hostip\\10.0.0.5\\mapname\\Training\\gametype\\Team Survival"
           "\\numplayers\\2\\maxplayers\\16\\gamemode\\openplaying\\teamplay\\1"
           "\\password\\0\\rs_serverlocked\\1\\rs_mods\\0\\rs_kitrestrictions\\0"
           "\\rs_armpatches\\1\\rs_highbandwidth\\0\\timelimit\\600"
           "\\player_0\\Bob\\team_0\\1\\ping_0\\40\\player_1\\Al\\team_1\\2\\ping_1\\55"
           "\\final\\\\queryid\\7.1";
}

// The players part of a reply: P0, P1, ... in team 1 with pings 10, 11, ..., then the end.
inline QByteArray playerKeys(int count)
{
    QString keys;
    for (int j = 0; j < count; ++j)
        keys += QStringLiteral("\\player_%1\\P%1\\team_%1\\1\\ping_%1\\%2").arg(j).arg(10 + j);
    return keys.toLatin1() + "\\final\\\\queryid\\1.1";
}
