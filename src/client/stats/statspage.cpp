#include "client/stats/statspage.h"

#include "client/session/sessionstate.h"
#include "client/settings/lobbyaddress.h"

namespace client {

QString statsPageAddress(const SessionState &session, const QString &id)
{
    const HostPort web{session.webHost, session.webPort};
    const QString host = web.port == 80 ? web.bracketedHost() : web.toString();
    return QStringLiteral("http://") + host + QStringLiteral("?p=stats&id=") + id;
}

} // namespace client
