#pragma once

#include "server/web/weblimits.h"

#include <QHostAddress>
#include <QString>

struct MHD_Daemon;

namespace server {

class WebRoutes;

// The web pages on their own port, served by GNU libmicrohttpd in a thread of its own, never
// on the lobby's event loop. Requests are answered from `routes`; bodies are refused (413),
// HEAD gets the headers of GET, "Connection: close" and HTTP/1.0 close after the answer, and
// answers from a file are sent with sendfile. The pages' thread runs at a lower priority than
// the lobby's, so that crowds of visitors slow the pages, not the chat. So that web visitors can
// never take the descriptors the lobby needs, at most a quarter of the process's descriptor limit
// goes to web connections, whatever `limits` says.
class WebServer
{
public:
    WebServer(const WebRoutes &routes, const WebLimits &limits = {});
    ~WebServer();
    WebServer(const WebServer &) = delete;
    WebServer &operator=(const WebServer &) = delete;

    // Port 0 picks a free one. Returns false when the port cannot be had. Once only.
    bool listen(const QHostAddress &address, quint16 port);
    quint16 serverPort() const { return m_port; }
    // The connection cap in force once listening.
    int maxConnections() const { return m_maxConnections; }
    // Closes every connection and the port; the pages' thread has ended on return.
    void stop();

private:
    const WebRoutes &m_routes;
    WebLimits m_limits;
    MHD_Daemon *m_daemon = nullptr;
    quint16 m_port = 0;
    int m_maxConnections = 0;
};

} // namespace server
