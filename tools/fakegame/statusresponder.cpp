#include "statusresponder.h"

#include <QNetworkDatagram>

StatusResponder::StatusResponder(ServerInfo info, QObject *parent)
    : QObject(parent), m_info(std::move(info))
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &StatusResponder::answer);
}

bool StatusResponder::listen(const QHostAddress &address, quint16 port)
{
    if (!m_socket.bind(address, port))
        return false;
    m_info.hostPort = m_socket.localPort();
    return true;
}

void StatusResponder::answer()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram request = m_socket.receiveDatagram();
        if (!request.isValid())
            return;
        if (!request.data().contains("\\status\\"))
            continue;
        m_socket.writeDatagram(QByteArray::fromStdString(
                                   statusReply(withJoinedPlayers(m_info, m_joined), ++m_queries)),
                               request.senderAddress(), quint16(request.senderPort()));
    }
}
