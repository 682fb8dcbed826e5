#include "client/platform/privatefiles.h"

#include <QDir>
#include <QFile>

namespace client {

namespace PrivateFiles {

bool makeFolder(const QString &folder)
{
    return QDir().mkpath(folder) && QFile::setPermissions(folder, kFolder);
}

} // namespace PrivateFiles

} // namespace client
