#pragma once

#include <QTcpServer>

namespace server {

// A QTcpServer whose accepted sockets write straight to the kernel when nothing is queued,
// with Nagle's algorithm off. A broadcast to thousands of sessions then costs one send per
// session at once instead of one event-loop round per socket, and no line waits for the
// peer's delayed acknowledgement of the one before.
class TcpListener : public QTcpServer
{
    Q_OBJECT

public:
    using QTcpServer::QTcpServer;

protected:
    void incomingConnection(qintptr descriptor) override;
};

} // namespace server
