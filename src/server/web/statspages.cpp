#include "server/web/statspages.h"

#include "server/store/accountstore.h"
#include "server/store/statsstore.h"
#include "server/web/html.h"
#include "server/web/livelobby.h"
#include "server/web/pagestores.h"

#include <QMap>
#include <QRegularExpression>
#include <QUrlQuery>

namespace server {

using html::figure;
using html::text;

namespace {

QString playerLink(int id, const QString &name)
{
    return QStringLiteral("<a href=\"/?p=stats&amp;id=%1\">%2</a>").arg(id).arg(text(name));
}

QString presenceText(protocol::Presence presence)
{
    switch (presence) {
    case protocol::Presence::Away:
        return QStringLiteral("away");
    case protocol::Presence::Playing:
        return QStringLiteral("playing");
    case protocol::Presence::Lobby:
        break;
    }
    return QStringLiteral("in the lobby");
}

QString timeText(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm 'UTC'"));
}

QString heading(int level, const QString &html)
{
    return QStringLiteral("<h%1>%2</h%1>\n").arg(level).arg(html);
}

QString paragraph(const QString &html, const QString &cssClass = {})
{
    return (cssClass.isEmpty() ? QStringLiteral("<p>")
                               : QStringLiteral("<p class=\"%1\">").arg(cssClass)) +
           html + QStringLiteral("</p>\n");
}

const QStringList kRecordHeaders{QStringLiteral("#"),  QStringLiteral("Name"), QStringLiteral("P1"),
                                 QStringLiteral("P2"), QStringLiteral("P3"),   QStringLiteral("P4"),
                                 QStringLiteral("P5"), QStringLiteral("P6"),   QStringLiteral("P7"),
                                 QStringLiteral("P8")};

QString roundSection(const StoredRound &round)
{
    QList<QStringList> rows;
    QStringList classes;
    for (qsizetype i = 0; i < round.records.size(); ++i) {
        const protocol::StatsRecord &r = round.records[i];
        rows.append({QString::number(i + 1), text(r.playerName), text(r.p1.text),
                     text(r.rounds.text), text(r.kills.text), text(r.p4), text(r.p5), text(r.p6),
                     text(r.killedBy), text(r.p8)});
        classes.append(i + 1 == round.ownIndex ? QStringLiteral("own") : QString());
    }
    return heading(3, text(timeText(round.received) + QStringLiteral(", ") + round.gameType)) +
           paragraph(text(round.headerA + QStringLiteral(" · ") + round.headerB),
                     QStringLiteral("muted")) +
           html::table(kRecordHeaders, rows, classes);
}

} // namespace

StatsPages::StatsPages(const LiveLobby &live, PageStores &stores) : m_live(live), m_stores(stores)
{
}

void StatsPages::addRoutes(WebRoutes &routes)
{
    routes.add(QStringLiteral("/"), [this](const WebRequest &request) { return answer(request); });
}

WebResponse StatsPages::answer(const WebRequest &request)
{
    std::optional<QByteArray> page;
    if (request.query.isEmpty())
        page = frontPage();
    else if (request.query.queryItemValue(QStringLiteral("p")) == QLatin1String("stats"))
        page = playerPage(request.query.queryItemValue(QStringLiteral("id")));
    if (!page)
        return WebResponse::html(notFoundPage(), 404);
    return WebResponse::html(*page).withHeader("Cache-Control", kCacheControl);
}

QByteArray StatsPages::notFoundPage()
{
    return html::document(QStringLiteral("Not found"),
                          heading(1, QStringLiteral("Not found")) +
                              paragraph(QStringLiteral("There is no such page or player. "
                                                       "<a href=\"/\">The lobby</a>")));
}

std::optional<QByteArray> StatsPages::playerPage(const QString &idText)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,9}$"));
    const AccountStore *accounts = m_stores.accounts();
    const StatsStore *stats = m_stores.stats();
    if (!digits.match(idText).hasMatch() || !accounts || !stats)
        return std::nullopt;
    const std::optional<Account> account = accounts->findById(idText.toInt());
    if (!account)
        return std::nullopt;
    const int id = account->id;

    QString body = heading(1, text(account->name));
    if (const LobbySnapshot::Player *online = m_live.current()->findByAccount(id))
        body += paragraph(QStringLiteral("Online now, ") + presenceText(online->presence) +
                          QStringLiteral("."));
    else
        body += paragraph(QStringLiteral("Not online."));
    const std::optional<QDateTime> reset = stats->lastReset(id);
    body += paragraph(reset ? QStringLiteral("Figures since the reset of ") + timeText(*reset) +
                                  QStringLiteral(".")
                            : QStringLiteral("Figures of every round uploaded."),
                      QStringLiteral("muted"));

    body += heading(2, QStringLiteral("Rounds"));
    const QList<GameTypeTotals> totals = stats->totalsByGameType(id);
    if (totals.isEmpty()) {
        body += paragraph(QStringLiteral("No rounds yet."));
    } else {
        QList<QStringList> rows;
        GameTypeTotals all{QStringLiteral("All"), 0, 0, 0, 0};
        for (const GameTypeTotals &t : totals) {
            rows.append({text(t.gameType), QString::number(t.rounds), figure(t.p1), figure(t.p2),
                         figure(t.p3)});
            all.rounds += t.rounds;
            all.p1 += t.p1;
            all.p2 += t.p2;
            all.p3 += t.p3;
        }
        if (totals.size() > 1)
            rows.append({all.gameType, QString::number(all.rounds), figure(all.p1), figure(all.p2),
                         figure(all.p3)});
        body += html::table({QStringLiteral("Game type"), QStringLiteral("Rounds"),
                             QStringLiteral("P1 total"), QStringLiteral("P2 total"),
                             QStringLiteral("P3 total")},
                            rows);

        body += heading(2, QStringLiteral("Recent rounds"));
        for (const StoredRound &round : stats->recentRounds(id, kRecentRounds))
            body += roundSection(round);
    }
    body += paragraph(QStringLiteral("<a href=\"/\">The lobby</a>"));
    return html::document(account->name + QStringLiteral(": statistics"), body);
}

QByteArray StatsPages::frontPage()
{
    std::shared_ptr<const LobbySnapshot> live = m_live.current();
    const QMutexLocker lock(&m_frontMutex);
    if (m_frontOf != live) {
        m_front = buildFrontPage(*live);
        m_frontOf = std::move(live);
    }
    return m_front;
}

QByteArray StatsPages::buildFrontPage(const LobbySnapshot &live)
{
    QString body = heading(1, QStringLiteral("QUORVEL lobby"));

    const QList<LobbySnapshot::Player> &players = live.players;
    body += heading(2, QStringLiteral("Online (%1)").arg(players.size()));
    if (players.isEmpty()) {
        body += paragraph(QStringLiteral("Nobody is online."));
    } else {
        QString list = QStringLiteral("<ul>\n");
        for (const LobbySnapshot::Player &player : players) {
            list += QStringLiteral("<li>") + playerLink(player.accountId, player.name) +
                    QStringLiteral(" <span class=\"muted\">") + presenceText(player.presence) +
                    QStringLiteral("</span></li>\n");
        }
        body += list + QStringLiteral("</ul>\n");
    }

    body += heading(2, QStringLiteral("Open rooms (%1)").arg(live.rooms.size()));
    if (live.rooms.empty()) {
        body += paragraph(QStringLiteral("No rooms."));
    } else {
        QList<QStringList> rows;
        for (const LobbySnapshot::Room &room : live.rooms) {
            rows.append({text(room.name), playerLink(room.hostId, room.hostName),
                         QString::number(room.members),
                         room.inGame ? QStringLiteral("In game") : QStringLiteral("In chat"),
                         room.locked ? QStringLiteral("locked") : QStringLiteral("open")});
        }
        body +=
            html::table({QStringLiteral("Room"), QStringLiteral("Host"), QStringLiteral("Players"),
                         QStringLiteral("Status"), QStringLiteral("Access")},
                        rows);
    }

    // Players in the same game report the same game address; the address itself stays private.
    QMap<QString, QStringList> games;
    for (const LobbySnapshot::Player &player : players) {
        if (player.presence == protocol::Presence::Playing && !player.gameAddress.isEmpty())
            games[player.gameAddress].append(playerLink(player.accountId, player.name));
    }
    body += heading(2, QStringLiteral("Running games (%1)").arg(games.size()));
    if (games.isEmpty()) {
        body += paragraph(QStringLiteral("No games running."));
    } else {
        QString list = QStringLiteral("<ul>\n");
        for (const QStringList &players : std::as_const(games))
            list += QStringLiteral("<li>") + players.join(QStringLiteral(", ")) +
                    QStringLiteral("</li>\n");
        body += list + QStringLiteral("</ul>\n");
    }

    body += heading(2, QStringLiteral("Leaderboard"));
    const StatsStore *stats = m_stores.stats();
    const QList<LeaderboardRow> leaders =
        stats ? stats->leaderboard(kLeaderboardRows) : QList<LeaderboardRow>();
    if (leaders.isEmpty()) {
        body += paragraph(QStringLiteral("No rounds recorded yet."));
    } else {
        QList<QStringList> rows;
        for (qsizetype i = 0; i < leaders.size(); ++i) {
            const LeaderboardRow &row = leaders[i];
            rows.append({QString::number(i + 1), playerLink(row.accountId, row.name),
                         QString::number(row.rounds), figure(row.p1), figure(row.p2),
                         figure(row.p3)});
        }
        body +=
            html::table({QStringLiteral("#"), QStringLiteral("Player"), QStringLiteral("Rounds"),
                         QStringLiteral("P1"), QStringLiteral("P2"), QStringLiteral("P3")},
                        rows);
    }
    return html::document(QStringLiteral("QUORVEL lobby"), body);
}

} // namespace server
