#pragma once

#include <QHostAddress>
#include <QList>
#include <QNetworkDatagram>
#include <QUdpSocket>

// A game server's UDP side as a test needs it: keeps every datagram it receives and, when it
// has a reply, answers each request from its own address and port.
class UdpResponder : public QObject
{
    Q_OBJECT

public:
    explicit UdpResponder(QObject *parent = nullptr);

    bool bind(const QHostAddress &address, quint16 port = 0);
    quint16 port() const { return m_socket.localPort(); }
    void setReply(const QByteArray &reply) { m_reply = reply; }
    // Sends from this responder's address, as a late or stray answer would come.
    void sendTo(const QByteArray &data, quint16 port);

    QList<QNetworkDatagram> requests;

private:
    void read();

    QUdpSocket m_socket;
    QByteArray m_reply;
};

// The status reply of a server named "My Game" on "Training" with Bob (ping 40) and Al (55).
QByteArray exampleReply(bool withTimeLimit = true);
