#pragma once

#include "server/web/webroutes.h"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <memory>
#include <optional>

namespace server {

class LiveLobby;
class PageStores;
struct LobbySnapshot;

// The lobby's own web pages, both at "/": without a query, who is online, the open rooms, the
// running games and the leaderboard; with "?p=stats&id=N", player N's statistics since his
// last reset (rounds and totals by game type, the recent rounds with all their players).
// Anything else at "/", and an id that names no account, is not found.
// The lobby is shown as its latest snapshot; the front page is built once per snapshot and
// shared by every visitor until the next. Called from the web server's threads.
class StatsPages
{
public:
    static constexpr int kRecentRounds = 20;
    static constexpr int kLeaderboardRows = 50;
    static constexpr auto kCacheControl = "max-age=5";

    StatsPages(const LiveLobby &live, PageStores &stores);
    void addRoutes(WebRoutes &routes);

    QByteArray frontPage();
    // nullopt when `id` is not the decimal id of an account.
    std::optional<QByteArray> playerPage(const QString &id);
    static QByteArray notFoundPage();

private:
    WebResponse answer(const WebRequest &request);
    QByteArray buildFrontPage(const LobbySnapshot &live);

    const LiveLobby &m_live;
    PageStores &m_stores;
    QMutex m_frontMutex;
    std::shared_ptr<const LobbySnapshot> m_frontOf;
    QByteArray m_front;
};

} // namespace server
