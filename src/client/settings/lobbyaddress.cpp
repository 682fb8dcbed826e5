#include "client/settings/lobbyaddress.h"

#include <QDir>
#include <QSettings>

namespace client {

std::optional<HostPort> HostPort::parse(const QString &text, quint16 defaultPort)
{
    const QString trimmed = text.trimmed();
    QString host = trimmed;
    QString port;
    if (trimmed.startsWith(QLatin1Char('['))) {
        const qsizetype close = trimmed.indexOf(QLatin1Char(']'));
        if (close < 0)
            return std::nullopt;
        host = trimmed.mid(1, close - 1);
        const QString rest = trimmed.mid(close + 1);
        if (!rest.isEmpty()) {
            if (!rest.startsWith(QLatin1Char(':')))
                return std::nullopt;
            port = rest.mid(1);
        }
    } else if (trimmed.count(QLatin1Char(':')) == 1) {
        host = trimmed.section(QLatin1Char(':'), 0, 0);
        port = trimmed.section(QLatin1Char(':'), 1);
    }
    if (host.isEmpty())
        return std::nullopt;
    HostPort result{host, defaultPort};
    if (!port.isNull()) {
        bool ok = false;
        const uint value = port.toUInt(&ok);
        if (!ok || value == 0 || value > 65535)
            return std::nullopt;
        result.port = quint16(value);
    }
    return result;
}

QString HostPort::toString() const
{
    return QStringLiteral("%1:%2").arg(bracketedHost()).arg(port);
}

QString HostPort::bracketedHost() const
{
    return host.contains(QLatin1Char(':')) ? QLatin1Char('[') + host + QLatin1Char(']') : host;
}

static QString settingsPath(const QString &dataFolder)
{
    return QDir(dataFolder).filePath(QStringLiteral("servers.ini"));
}

ServerAddresses ServerAddresses::load(const QString &dataFolder)
{
    ServerAddresses addresses;
    QSettings ini(settingsPath(dataFolder), QSettings::IniFormat);
    if (auto lobby = HostPort::parse(ini.value(QStringLiteral("lobby")).toString(), kLobbyPort))
        addresses.lobby = *lobby;
    if (auto web = HostPort::parse(ini.value(QStringLiteral("web")).toString(), kWebPort))
        addresses.web = *web;
    addresses.avatars = ini.value(QStringLiteral("avatars")).toString();
    return addresses;
}

void ServerAddresses::save(const QString &dataFolder) const
{
    QSettings ini(settingsPath(dataFolder), QSettings::IniFormat);
    ini.setValue(QStringLiteral("lobby"), lobby.toString());
    if (web)
        ini.setValue(QStringLiteral("web"), web->toString());
    else
        ini.remove(QStringLiteral("web"));
    if (!avatars.isEmpty())
        ini.setValue(QStringLiteral("avatars"), avatars);
}

} // namespace client
