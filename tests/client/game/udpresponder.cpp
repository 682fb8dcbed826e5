#include "udpresponder.h"

UdpResponder::UdpResponder(QObject *parent) : QObject(parent)
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &UdpResponder::read);
}

bool UdpResponder::bind(const QHostAddress &address, quint16 port)
{
    return m_socket.bind(address, port);
}

void UdpResponder::sendTo(const QByteArray &data, quint16 port)
{
    m_socket.writeDatagram(data, QHostAddress::LocalHost, port);
}

void UdpResponder::read()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram request = m_socket.receiveDatagram();
        if (!request.isValid())
            return;
        requests.append(request);
        if (!m_reply.isEmpty())
            m_socket.writeDatagram(m_reply, request.senderAddress(), quint16(request.senderPort()));
    }
}

QByteArray exampleReply(bool withTimeLimit)
{
    QByteArray reply = "\\gamename\\roguespear\\gamever\\2.15\\hostname\\My Game\\hostport\\2346"
                       "\\hostip\\10.0.0.5\\mapname\\Training\\gametype\\Team Survival"
                       "\\numplayers\\2\\maxplayers\\16\\gamemode\\openplaying\\teamplay\\1"
                       "\\password\\0\\rs_serverlocked\\1\\rs_mods\\0\\rs_kitrestrictions\\0"
                       "\\rs_armpatches\\1\\rs_highbandwidth\\0";
    if (withTimeLimit)
        reply += "\\timelimit\\600";
    reply += "\\player_0\\Bob\\team_0\\1\\ping_0\\40\\player_1\\Al\\team_1\\2\\ping_1\\55"
             "\\final\\\\queryid\\7.1";
    return reply;
}
