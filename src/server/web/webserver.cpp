#include "server/web/webserver.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>

namespace server {

WebServer::WebServer(QObject *parent) : QObject(parent)
{
    m_http.setMissingHandler([](const QHttpServerRequest &, QHttpServerResponder &&responder) {
        responder.write(QByteArrayLiteral("<!DOCTYPE html><html lang=\"en\"><head><meta "
                                          "charset=\"utf-8\"><title>Not found</title></head>"
                                          "<body><p>Not found.</p></body></html>"),
                        QByteArrayLiteral("text/html; charset=utf-8"),
                        QHttpServerResponder::StatusCode::NotFound);
    });
}

bool WebServer::listen(const QHostAddress &address, quint16 port)
{
    m_port = m_http.listen(address, port);
    return m_port != 0;
}

} // namespace server
