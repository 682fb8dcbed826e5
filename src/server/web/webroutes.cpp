#include "server/web/webroutes.h"

namespace server {

WebResponse WebResponse::html(const QByteArray &page, int status)
{
    return {status, QByteArrayLiteral("text/html; charset=utf-8"), page, {}, {}};
}

WebResponse WebResponse::plainText(const QByteArray &text, int status)
{
    return {status, QByteArrayLiteral("text/plain; charset=utf-8"), text, {}, {}};
}

void WebRoutes::add(const QString &path, WebHandler handler)
{
    m_exact.append({path, std::move(handler)});
}

void WebRoutes::addPrefix(const QString &prefix, WebHandler handler)
{
    m_prefixes.append({prefix, std::move(handler)});
}

WebResponse WebRoutes::answer(const WebRequest &request) const
{
    WebResponse response;
    const WebHandler *handler = nullptr;
    for (const auto &[path, h] : m_exact) {
        if (request.path == path)
            handler = &h;
    }
    for (const auto &[prefix, h] : m_prefixes) {
        if (!handler && request.path.size() > prefix.size() && request.path.startsWith(prefix))
            handler = &h;
    }
    if (request.method != "GET" && request.method != "HEAD") {
        response = WebResponse::plainText(QByteArrayLiteral("Pages are only read here.\n"), 405);
        response.withHeader("Allow", kAllowed);
    } else if (handler) {
        response = (*handler)(request);
    } else {
        response = WebResponse::html(
            QByteArrayLiteral("<!DOCTYPE html><html lang=\"en\"><head><meta charset=\"utf-8\">"
                              "<title>Not found</title></head><body><p>Not found.</p></body>"
                              "</html>"),
            404);
    }
    response.withHeader("X-Content-Type-Options", "nosniff");
    return response;
}

} // namespace server
