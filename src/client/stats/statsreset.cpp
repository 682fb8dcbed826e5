#include "client/stats/statsreset.h"

#include "client/lobby/lobbyconnection.h"
#include "client/platform/dialogs.h"
#include "client/platform/eventsounds.h"
#include "client/platform/keystate.h"
#include "client/session/sessionstate.h"
#include "client/settings/options.h"
#include "protocol/stats.h"

#include <QTimer>

namespace client {

StatsReset::StatsReset(LobbyConnection &connection, const SessionState &session,
                       const Options &options, KeyState &keys, EventSounds &sounds,
                       Dialogs &dialogs, QObject *parent)
    : QObject(parent), m_connection(connection), m_session(session), m_options(options),
      m_keys(keys), m_sounds(sounds), m_dialogs(dialogs), m_tmrStatsReset(new QTimer(this))
{
    m_tmrStatsReset->setObjectName(QStringLiteral("tmrStatsReset"));
    m_tmrStatsReset->setInterval(kPollInterval);
    connect(m_tmrStatsReset, &QTimer::timeout, this, &StatsReset::pollHotKey);
    const auto follow = [this](bool on) {
        on ? m_tmrStatsReset->start() : m_tmrStatsReset->stop();
    };
    connect(&options, &Options::resetChanged, this, follow);
    follow(options.reset());
}

void StatsReset::picResetStatsClicked()
{
    if (m_dialogs.messageBox(QStringLiteral("Reset your recorded stats"),
                             QStringLiteral("Are you sure?"), Dialogs::Buttons::YesNo,
                             Dialogs::Icon::Question) == Dialogs::Answer::Yes)
        m_connection.send(protocol::StatsReset{});
}

void StatsReset::pollHotKey()
{
    if (!m_keys.isAvailable()) {
        if (!m_unavailableTold) {
            m_unavailableTold = true;
            Q_EMIT statusLine(QStringLiteral(
                "The in-game reset key does not work here: the keyboard cannot be read."));
        }
        return;
    }
    if (!m_session.inGame)
        return;
    const std::optional<int> key = m_options.hotKey();
    if (!key || !m_keys.isKeyDown(*key))
        return;
    m_sounds.playAlways(EventSounds::Event::StatsReset);
    m_connection.send(protocol::StatsReset{});
}

} // namespace client
