#include "client/lobby/credentialsfile.h"

#include "client/platform/privatefiles.h"
#include "protocol/cp1252.h"

#include <QFile>
#include <QSaveFile>

namespace client {

namespace CredentialsFile {

Credentials read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(64 * 1024);
    // Lines end with CR LF; a file edited by hand may have bare LF.
    QList<QByteArray> lines = bytes.split('\n');
    for (QByteArray &line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
    }
    Credentials credentials;
    if (!lines.isEmpty())
        credentials.name = protocol::fromCp1252(lines.value(0));
    if (lines.size() > 1)
        credentials.password = protocol::fromCp1252(lines.value(1));
    return credentials;
}

bool write(const QString &path, const Credentials &credentials)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(PrivateFiles::kFile))
        return false;
    file.write(protocol::toCp1252(credentials.name) + "\r\n");
    file.write(protocol::toCp1252(credentials.password) + "\r\n");
    return file.commit();
}

} // namespace CredentialsFile

} // namespace client
