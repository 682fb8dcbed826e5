#include "client/platform/wineconfig.h"

#include "client/platform/detachedprocessstarter.h"

#include <QDir>
#include <QSettings>

namespace client::WineConfig {

namespace {

QString filePath(const QString &dataFolder)
{
    return QDir(dataFolder).filePath(QStringLiteral("game.ini"));
}

} // namespace

QString command(const QString &dataFolder)
{
    const QString saved = dataFolder.isEmpty()
                              ? QString()
                              : QSettings(filePath(dataFolder), QSettings::IniFormat)
                                    .value(QStringLiteral("wine"))
                                    .toString()
                                    .trimmed();
    return saved.isEmpty() ? QString::fromLatin1(DetachedProcessStarter::kDefaultWine) : saved;
}

void saveCommand(const QString &dataFolder, const QString &command)
{
    QSettings settings(filePath(dataFolder), QSettings::IniFormat);
    settings.setValue(QStringLiteral("wine"), command);
}

} // namespace client::WineConfig
