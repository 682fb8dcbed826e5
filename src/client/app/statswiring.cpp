#include "client/app/appparts.h"
#include "client/app/appwiring.h"
#include "client/app/form1.h"
#include "client/desktop/x11keystate.h"
#include "client/presence/lobbychat.h"
#include "client/session/sessionstate.h"
#include "client/settings/basregistry.h"
#include "client/stats/resultlogharvester.h"
#include "client/stats/resultlogwatch.h"
#include "client/stats/statspage.h"
#include "client/stats/statsreset.h"
#include "client/ui/picturebutton.h"

#include <QDesktopServices>
#include <QUrl>

namespace client {

void wireStats(AppParts &p)
{
    QObject *owner = &p.owner;
    // The running game's results logs are read and uploaded as they are written.
    auto *harvester = new ResultLogHarvester(*p.connection, *p.services.clock, *p.basRegistry,
                                             p.services.wineCommand, owner);
    QObject::connect(
        new ResultLogWatch(*p.services.folderWatcher, ResultLogWatch::kSettleTime, owner),
        &ResultLogWatch::resultLogWritten, harvester, &ResultLogHarvester::harvestResultLog);

    if (!p.services.keyState) {
        p.ownKeyState = std::make_unique<X11KeyState>();
        p.services.keyState = p.ownKeyState.get();
    }
    p.statsReset = new StatsReset(*p.connection, *p.session, *p.options, *p.services.keyState,
                                  *p.sounds, *p.services.dialogs, owner);
    QObject::connect(p.form->picResetStats, &QAbstractButton::clicked, p.statsReset,
                     &StatsReset::picResetStatsClicked);
    QObject::connect(p.statsReset, &StatsReset::statusLine, p.chat, &LobbyChat::addStatusLine);
    const SessionState *session = p.session;
    QObject::connect(p.form->picViewStats, &QAbstractButton::clicked, owner,
                     [session] { openStatsPage(*session, session->lobbyStatsId); });
}

void openStatsPage(const SessionState &session, const QString &id)
{
    QDesktopServices::openUrl(QUrl(statsPageAddress(session, id)));
}

} // namespace client
