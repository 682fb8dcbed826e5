#pragma once

#include "serverinfo.h"

#include <QHostAddress>
#include <QObject>
#include <QUdpSocket>

// Answers every "\status\" datagram on its UDP port with the server's status reply, to the
// sender's address and port; other datagrams get no answer. The reply counts the players who
// joined over the network as well as those of the command line.
class StatusResponder : public QObject
{
    Q_OBJECT

public:
    explicit StatusResponder(ServerInfo info, QObject *parent = nullptr);

    bool listen(const QHostAddress &address, quint16 port);
    quint16 port() const { return m_socket.localPort(); }
    QString errorString() const { return m_socket.errorString(); }
    const ServerInfo &info() const { return m_info; }
    void setJoinedPlayers(std::size_t joined) { m_joined = joined; }

private:
    void answer();

    ServerInfo m_info;
    QUdpSocket m_socket;
    int m_queries = 0;
    std::size_t m_joined = 0;
};
