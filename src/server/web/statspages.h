#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

class QHttpServerRequest;
class QHttpServerResponse;

namespace server {

class AccountStore;
class Lobby;
class RoomRegistry;
class StatsStore;
class WebServer;

// The lobby's own web pages, both at "/": without a query, who is online, the open rooms, the
// running games and the leaderboard; with "?p=stats&id=N", player N's statistics since his
// last reset (rounds and totals by game type, the recent rounds with all their players).
// Anything else at "/", and an id that names no account, is not found.
class StatsPages
{
public:
    static constexpr int kRecentRounds = 20;
    static constexpr int kLeaderboardRows = 50;

    StatsPages(const Lobby &lobby, const RoomRegistry &rooms, const AccountStore &accounts,
               const StatsStore &stats);
    void addRoutes(WebServer &web) const;

    QByteArray frontPage() const;
    // nullopt when `id` is not the decimal id of an account.
    std::optional<QByteArray> playerPage(const QString &id) const;
    static QByteArray notFoundPage();

private:
    QHttpServerResponse answer(const QHttpServerRequest &request) const;

    const Lobby &m_lobby;
    const RoomRegistry &m_rooms;
    const AccountStore &m_accounts;
    const StatsStore &m_stats;
};

} // namespace server
