#include "client/stats/resultlogharvester.h"

#include "client/lobby/lobbyconnection.h"
#include "client/platform/clock.h"
#include "client/platform/registrylinux.h"
#include "client/platform/registrywine.h"
#include "client/platform/winepath.h"
#include "client/platform/wineregistryquery.h"
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

const QString kNameValue = QStringLiteral("MultiplayerPlayerName");

// The games' keys below the machine's root, in the order their names count.
QStringList gameKeys()
{
    QStringList keys;
    for (const char *game : {"Software\\Red Storm Entertainment\\Rogue Spear",
                             "Software\\Red Storm Entertainment\\Black Ops"}) {
        const QString key = QLatin1String(game);
        keys << key << WineRegistry::wow6432Path(key);
    }
    return keys;
}

// The name as the prefix's system.reg holds it.
QString nameInFile(const QString &prefix)
{
    QFile file(prefix + QStringLiteral("/system.reg"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    for (const QString &key : gameKeys()) {
        const std::optional<RegistryValue> value =
            WineRegistry::findValue(content, key, kNameValue);
        // A string read as stored: it ends at its first NUL, as the game reads it.
        const QString name = value ? value->text.section(QChar(0), 0, 0) : QString();
        if (!name.isEmpty())
            return name;
    }
    return {};
}

} // namespace

ResultLogHarvester::ResultLogHarvester(LobbyConnection &connection, const Clock &clock,
                                       BasRegistry &registry, QString wineCommand, QObject *parent)
    : QObject(parent), m_connection(connection), m_clock(clock), m_registry(registry),
      m_wineCommand(std::move(wineCommand))
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

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        report(QStringLiteral("getStats errorLine: %1").arg(int(ResultLogError::Header)));
        return;
    }
    const QByteArray content = file.read(kMaxLogBytes);
    file.close();

    // The game runs in the prefix it is installed in, or else in the default one. A running
    // Wine knows a name changed just before the round; its file may not have it yet.
    const QString gamePrefix = WinePath::prefixOf(path);
    const QString prefix = gamePrefix.isEmpty() ? LinuxRegistry::defaultWinePrefix() : gamePrefix;
    if (!QFileInfo::exists(prefix + QStringLiteral("/system.reg"))) {
        upload(content, localPlayerName(m_registry));
        return;
    }
    QStringList keys;
    for (const QString &key : gameKeys())
        keys << QStringLiteral("HKLM\\") + key;
    auto *query = new WineRegistryQuery(m_wineCommand, prefix, keys, kNameValue, this);
    connect(query, &WineRegistryQuery::finished, this,
            [this, content, gamePrefix](const QString &liveName) {
                QString name = liveName;
                if (name.isEmpty())
                    name =
                        gamePrefix.isEmpty() ? localPlayerName(m_registry) : nameInFile(gamePrefix);
                upload(content, name);
            });
    query->start();
}

void ResultLogHarvester::upload(const QByteArray &content, const QString &localName)
{
    const std::variant<ResultLog, ResultLogError> read = readResultLog(content, localName);
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
