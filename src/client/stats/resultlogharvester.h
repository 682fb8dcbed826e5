#pragma once

#include <QObject>

namespace client {

class BasRegistry;
class Clock;
class LobbyConnection;

// Harvests the results log of a round (`harvestResultLog`): reads it, and uploads the round
// to the lobby server ("DS") when it is a plausible Survival or Team Survival round. A log
// modified more than 15 s ago ("old file: ") or one that cannot be read ("getStats
// errorLine: " and the step that failed) is reported to the lobby's service account as a
// private message instead. Nothing is sent, nor kept for later, while the lobby is not
// connected. Each call reads its file afresh; nothing is remembered between them.
//
// The local player's name comes from the Wine prefix the game runs in (the one its folder lies
// in, or else the default one), asked of Wine itself while the log waits, since Wine writes
// its registry file only every half minute; the file, or `registry` for the default prefix,
// answers when Wine cannot. Without a prefix the log is uploaded at once.
class ResultLogHarvester : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 kMaxAgeSeconds = 15;
    // Larger than any log a game writes (16 players of twelve short lines); the rest of a
    // larger file is not read.
    static constexpr qint64 kMaxLogBytes = 1 << 20;

    // `registry` holds the games' name for the local player; `wineCommand` runs Wine, which
    // is asked for it first.
    ResultLogHarvester(LobbyConnection &connection, const Clock &clock, BasRegistry &registry,
                       QString wineCommand = QStringLiteral("wine"), QObject *parent = nullptr);

    void harvestResultLog(const QString &path);

    // The account on the lobby server that hears about logs that could not be used.
    static QString serviceAccount() { return QStringLiteral("QUORVEL"); }
    // The name the games use for the local player: Rogue Spear's, or Black Ops' when that
    // is empty; "" when neither game has one.
    static QString localPlayerName(BasRegistry &registry);

private:
    void upload(const QByteArray &content, const QString &localName);
    void report(const QString &text);

    LobbyConnection &m_connection;
    const Clock &m_clock;
    BasRegistry &m_registry;
    QString m_wineCommand;
};

} // namespace client
