#include "client/stats/resultlogharvester.h"

#include "client/lobby/lobbyconnection.h"
#include "client/platform/clock.h"
#include "client/settings/basregistry.h"
#include "client/stats/resultlog.h"
#include "protocol/chat.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace client {

namespace {

// The date and time as the locale writes them, with the seconds.
QString dateTimeText(const QDateTime &time)
{
    const QLocale locale;
    return locale.toString(time.date(), QLocale::ShortFormat) + u' ' +
           locale.toString(time.time(), QStringLiteral("HH:mm:ss"));
}

} // namespace

ResultLogHarvester::ResultLogHarvester(LobbyConnection &connection, const Clock &clock,
                                       BasRegistry &registry, QObject *parent)
    : QObject(parent), m_connection(connection), m_clock(clock), m_registry(registry)
{
}

QString ResultLogHarvester::localPlayerName(BasRegistry &registry)
{
    const QString value = QStringLiteral("MultiplayerPlayerName");
    for (const char *game : {"SOFTWARE\\Red Storm Entertainment\\Rogue Spear",
                             "SOFTWARE\\Red Storm Entertainment\\Black Ops"}) {
        const QString name =
            registry.readValue(Registry::Root::LocalMachine, QLatin1String(game), value).toString();
        if (!name.isEmpty())
            return name;
    }
    return {};
}

void ResultLogHarvester::harvestResultLog(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile())
        return;
    // Counted in whole seconds of the clock, as the two times read.
    const QDateTime modified = info.lastModified();
    const QDateTime now = m_clock.now();
    if (now.toSecsSinceEpoch() - modified.toSecsSinceEpoch() > kMaxAgeSeconds) {
        report((QStringLiteral("old file: ") + dateTimeText(modified) + QStringLiteral(" - ") +
                dateTimeText(now))
                   .trimmed());
        return;
    }

    const QString localName = localPlayerName(m_registry);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        report(QStringLiteral("getStats errorLine: %1").arg(int(ResultLogError::Header)));
        return;
    }
    const std::variant<ResultLog, ResultLogError> read =
        readResultLog(file.read(kMaxLogBytes), localName);
    file.close();
    if (const ResultLogError *error = std::get_if<ResultLogError>(&read)) {
        report(QStringLiteral("getStats errorLine: %1").arg(int(*error)));
        return;
    }
    if (const std::optional<protocol::StatsUpload> upload =
            statsUploadOf(std::get<ResultLog>(read)))
        m_connection.send(*upload);
}

void ResultLogHarvester::report(const QString &text)
{
    m_connection.send(protocol::PrivateMessageToServer{serviceAccount(), text});
}

} // namespace client
