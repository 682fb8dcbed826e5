#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrlQuery>
#include <functional>
#include <utility>

namespace server {

// A request as the pages see it, whatever HTTP server carried it.
struct WebRequest
{
    QByteArray method; // "GET", "HEAD", ...
    QString path;      // decoded, without the query
    QUrlQuery query;
    QByteArray ifNoneMatch; // the header's value, empty when absent
};

// An answer: a status, a type and either bytes or a file sent from the disk as it is.
struct WebResponse
{
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QString file; // when set, the body is this file's content, never read into memory
    QList<std::pair<QByteArray, QByteArray>> headers;

    static WebResponse html(const QByteArray &page, int status = 200);
    static WebResponse plainText(const QByteArray &text, int status = 200);
    WebResponse &withHeader(const QByteArray &name, const QByteArray &value)
    {
        headers.append({name, value});
        return *this;
    }
};

using WebHandler = std::function<WebResponse(const WebRequest &)>;

// The table of pages: each area of the server adds its paths before the server starts; the
// table is then only read, from the web server's threads. Pages answer GET, and HEAD like
// GET (the server leaves the body out); any other method is 405 with `Allow`. Every answer
// carries `nosniff`; a path nobody added gets a short 404 page.
class WebRoutes
{
public:
    static constexpr auto kAllowed = "GET, HEAD";

    void add(const QString &path, WebHandler handler);
    // Every path that starts with `prefix` and goes on; the exact paths win.
    void addPrefix(const QString &prefix, WebHandler handler);

    WebResponse answer(const WebRequest &request) const;

private:
    QList<std::pair<QString, WebHandler>> m_exact;
    QList<std::pair<QString, WebHandler>> m_prefixes;
};

} // namespace server
