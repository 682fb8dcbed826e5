#pragma once

#include <QHostAddress>
#include <QHttpServer>
#include <QObject>

namespace server {

// The web pages of the lobby on their own port. Each area of the server adds its pages
// through http() before or after listen(); a request for anything else gets a short 404 page.
class WebServer : public QObject
{
    Q_OBJECT

public:
    explicit WebServer(QObject *parent = nullptr);

    // Port 0 picks a free one. Returns false when the port cannot be had.
    bool listen(const QHostAddress &address, quint16 port);
    quint16 serverPort() const { return m_port; }

    QHttpServer &http() { return m_http; }

private:
    QHttpServer m_http;
    quint16 m_port = 0;
};

} // namespace server
