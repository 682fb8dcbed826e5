#include "client/ui/icons.h"

#include <QFile>

// Outside any namespace, as resource registration requires.
static void initIconResources()
{
    // The client is a static library: its resources must be registered by hand.
    static const bool done = [] {
        Q_INIT_RESOURCE(icons);
        return true;
    }();
    Q_UNUSED(done);
}

namespace client {

static QIcon iconAt(const QString &path)
{
    initIconResources();
    if (!QFile::exists(path))
        return {};
    return QIcon(path);
}

QIcon Icons::smallIcon(int index)
{
    if (index < 1 || index > 11)
        return {};
    return iconAt(QStringLiteral(":/icons/small%1.svg").arg(index, 2, 10, QLatin1Char('0')));
}

QIcon Icons::openRoom()
{
    return iconAt(QStringLiteral(":/icons/openroom.svg"));
}

QIcon Icons::button(const QString &name)
{
    return iconAt(QStringLiteral(":/icons/%1.svg").arg(name));
}

} // namespace client
