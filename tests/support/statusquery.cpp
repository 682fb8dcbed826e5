#include "support/statusquery.h"

#include <QNetworkDatagram>
#include <QUdpSocket>

QByteArray askStatus(quint16 port, const QList<QByteArray> &requests)
{
    QUdpSocket socket;
    socket.bind(QHostAddress::LocalHost, 0);
    for (const QByteArray &request : requests)
        socket.writeDatagram(request, QHostAddress::LocalHost, port);
    return socket.waitForReadyRead(5000) ? socket.receiveDatagram().data() : QByteArray();
}
