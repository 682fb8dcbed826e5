#include "client/stats/statspage.h"

#include "client/session/sessionstate.h"

namespace client {

QString statsPageAddress(const SessionState &session, const QString &id)
{
    const QString host = session.webPort == 80
                             ? session.webHost
                             : QStringLiteral("%1:%2").arg(session.webHost).arg(session.webPort);
    return QStringLiteral("http://") + host + QStringLiteral("?p=stats&id=") + id;
}

} // namespace client
