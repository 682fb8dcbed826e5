#include "client/platform/datafolder.h"

#include "client/platform/privatefiles.h"

#include <QDir>
#include <QStandardPaths>

namespace client {

namespace DataFolder {

std::optional<QString> path()
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        return std::nullopt;
    return QDir(base).filePath(QStringLiteral("Quorvel"));
}

QString filePath(const QString &fileName)
{
    const std::optional<QString> folder = path();
    return folder ? QDir(*folder).filePath(fileName) : QString();
}

bool ensureExists()
{
    const std::optional<QString> folder = path();
    if (!folder)
        return false;
    // The result of creating it is not checked: a later read or write reports what fails.
    PrivateFiles::makeFolder(*folder);
    return true;
}

} // namespace DataFolder

} // namespace client
