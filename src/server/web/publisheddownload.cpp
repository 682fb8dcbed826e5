#include "server/web/publisheddownload.h"

#include "server/web/webroutes.h"

#include <QCryptographicHash>
#include <QFile>

namespace server {

namespace {

WebResponse notFound()
{
    return WebResponse::plainText(QByteArrayLiteral("Nothing is published.\n"), 404);
}

} // namespace

void PublishedDownload::addRoutes(WebRoutes &routes) const
{
    const QString file = m_file;
    routes.add(QString::fromLatin1(kPath), [file](const WebRequest &) {
        if (file.isEmpty() || !QFile::exists(file))
            return notFound();
        WebResponse response{200, QByteArrayLiteral("application/octet-stream"), {}, file, {}};
        return response.withHeader("Cache-Control", "no-cache");
    });
    routes.add(QString::fromLatin1(kPath) + QStringLiteral(".sha256"), [file](const WebRequest &) {
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
        return WebResponse::plainText(line).withHeader("Cache-Control", "no-cache");
    });
    // Only the key's holder can make a signature: it is never made here, only passed on.
    routes.add(QString::fromLatin1(kPath) + QStringLiteral(".sig"), [file](const WebRequest &) {
        QFile signature(file + QStringLiteral(".sig"));
        if (file.isEmpty() || !signature.open(QIODevice::ReadOnly))
            return notFound();
        return WebResponse::plainText(signature.read(4096)).withHeader("Cache-Control", "no-cache");
    });
}

} // namespace server
