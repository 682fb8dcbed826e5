#include "client/platform/winepath.h"

#include <QDir>
#include <QFileInfo>

namespace client::WinePath {

namespace {

const QLatin1String kDriveC("drive_c");

} // namespace

QString prefixOf(const QString &path)
{
    if (path.isEmpty())
        return {};
    QDir folder(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    while (!folder.isRoot()) {
        if (folder.dirName() == kDriveC)
            return QFileInfo(folder.path()).path();
        // cdUp() needs the parent to exist; the path may name one not created yet.
        folder.setPath(QFileInfo(folder.path()).path());
    }
    return {};
}

QString windowsPath(const QString &path, const QString &prefix)
{
    const QString absolute = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QString windows;
    if (!prefix.isEmpty()) {
        const QString driveC = QDir::cleanPath(QDir(prefix).absolutePath()) + u'/' + kDriveC;
        if (absolute == driveC)
            windows = QStringLiteral("C:/");
        else if (absolute.startsWith(driveC + u'/'))
            windows = QStringLiteral("C:") + absolute.mid(driveC.size());
    }
    if (windows.isEmpty())
        windows = QStringLiteral("Z:") + absolute;
    return windows.replace(u'/', u'\\');
}

} // namespace client::WinePath
