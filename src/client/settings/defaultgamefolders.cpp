#include "client/settings/defaultgamefolders.h"

#include "client/platform/casepath.h"
#include "client/settings/options.h"

#include <QFileInfo>

namespace client {

namespace {

// A 64-bit Windows (and Wine prefix) installs these 32-bit games under "Program Files (x86)";
// a 32-bit one has only "Program Files".
const char *const kProgramFolders[] = {"Program Files (x86)", "Program Files"};

} // namespace

DefaultGameFolders DefaultGameFolders::forWinePrefix(const QString &prefix)
{
    return DefaultGameFolders(prefix + QStringLiteral("/drive_c"));
}

QString DefaultGameFolders::rogueSpear() const
{
    return find(QStringLiteral("Red Storm Entertainment\\Rogue Spear"),
                QStringLiteral("roguespear.exe"));
}

QString DefaultGameFolders::blackOps() const
{
    return find(QStringLiteral("Red Storm Entertainment\\Rainbow Six Black Ops"),
                QStringLiteral("R6BO.exe"));
}

QString DefaultGameFolders::find(const QString &gameFolder, const QString &executable) const
{
    if (m_driveC.isEmpty())
        return {};
    for (const char *programs : kProgramFolders) {
        const QString folder =
            resolveCaseInsensitive(m_driveC, QLatin1String(programs) + u'\\' + gameFolder);
        if (QFileInfo(resolveCaseInsensitive(folder, executable)).isFile())
            return folder;
    }
    return {};
}

bool DefaultGameFolders::fillEmpty(Options &options) const
{
    if (options.pathRS().isEmpty()) {
        if (const QString folder = rogueSpear(); !folder.isEmpty())
            options.setPathRS(folder);
    }
    if (options.pathBlackOps().isEmpty()) {
        if (const QString folder = blackOps(); !folder.isEmpty())
            options.setPathBlackOps(folder);
    }
    return !options.pathRS().isEmpty() || !options.pathBlackOps().isEmpty();
}

} // namespace client
