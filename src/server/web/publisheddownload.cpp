#include "server/web/publisheddownload.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHttpServer>
#include <QHttpServerResponse>

namespace server {

namespace {

QHttpServerResponse notFound()
{
    return QHttpServerResponse(QByteArrayLiteral("text/plain; charset=utf-8"),
                               QByteArrayLiteral("Nothing is published.\n"),
                               QHttpServerResponse::StatusCode::NotFound);
}

} // namespace

void PublishedDownload::addRoutes(QHttpServer &http) const
{
    const QString file = m_file;
    http.route(QString::fromLatin1(kPath), [file] {
        if (file.isEmpty() || !QFile::exists(file))
            return notFound();
        QHttpServerResponse response = QHttpServerResponse::fromFile(file);
        response.setHeader(QByteArrayLiteral("Cache-Control"), QByteArrayLiteral("no-cache"));
        return response;
    });
    http.route(QString::fromLatin1(kPath) + QStringLiteral(".sha256"), [file] {
        QFile published(file);
        if (file.isEmpty() || !published.open(QIODevice::ReadOnly))
            return notFound();
        QByteArray line;
        QFile given(file + QStringLiteral(".sha256"));
        if (given.open(QIODevice::ReadOnly)) {
            line = given.read(4096);
        } else {
            QCryptographicHash hash(QCryptographicHash::Sha256);
            if (!hash.addData(&published))
                return notFound();
            line = hash.result().toHex() + "  quor_vel.exe\n";
        }
        QHttpServerResponse response(QByteArrayLiteral("text/plain; charset=utf-8"), line);
        response.setHeader(QByteArrayLiteral("Cache-Control"), QByteArrayLiteral("no-cache"));
        return response;
    });
}

} // namespace server
