#include "server/lobby/roundannouncer.h"

#include "protocol/rooms.h"
#include "server/lobby/announcements.h"
#include "server/lobby/roomregistry.h"
#include "server/net/connection.h"
#include "server/net/session.h"
#include "server/store/serviceaccount.h"

#include <QCryptographicHash>
#include <algorithm>

namespace server {

namespace {

// The same round from each of its players differs only in whose record is his own.
QByteArray roundKey(const protocol::StatsUpload &round)
{
    protocol::StatsUpload content = round;
    content.ownIndex = 0;
    return QCryptographicHash::hash(content.encode(), QCryptographicHash::Sha256);
}

// The service's lines are longer than a player's room chat, but no longer than a lobby line.
constexpr qsizetype kMaxLineBytes = kMaxChatBytes;

} // namespace

RoundAnnouncer::RoundAnnouncer(const RoomRegistry &rooms, QString webAddress)
    : m_rooms(rooms), m_webAddress(std::move(webAddress))
{
    while (m_webAddress.endsWith(QLatin1Char('/')))
        m_webAddress.chop(1);
}

void RoundAnnouncer::announce(const Session &uploader, const protocol::StatsUpload &round)
{
    const Room *room = m_rooms.roomOf(&uploader);
    if (!room || room->members.size() < 2)
        return;
    QByteArray &told = m_lastTold[room->hostName];
    const QByteArray key = roundKey(round);
    if (told == key)
        return;
    told = key;
    if (m_lastTold.size() > 2 * qsizetype(m_rooms.rooms().size()) + 16) {
        m_lastTold.removeIf([this](const auto &entry) { return !m_rooms.findByHost(entry.key()); });
    }
    const QString line =
        kServiceAccountName + QStringLiteral(": ") + summary(round, pageAddress(uploader));
    const QByteArray bytes = protocol::RoomChat{relayText(line, kMaxLineBytes)}.encode();
    for (const RoomMember &member : room->members)
        member.session->send(bytes);
}

QString RoundAnnouncer::summary(const protocol::StatsUpload &round, const QString &pageAddress)
{
    QList<const protocol::StatsRecord *> ranked;
    for (const protocol::StatsRecord &record : round.records)
        ranked.append(&record);
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto *a, const auto *b) {
        return a->kills.value.value_or(0) > b->kills.value.value_or(0);
    });
    QStringList best;
    for (const protocol::StatsRecord *record :
         ranked.first(std::min<qsizetype>(kBestShown, ranked.size())))
        best.append((record->playerName.isEmpty() ? QStringLiteral("?") : record->playerName) +
                    QLatin1Char(' ') + record->kills.text);
    QString text = round.gameType;
    if (!round.headerA.isEmpty())
        text += QStringLiteral(" on ") + round.headerA;
    if (!best.isEmpty())
        text += QStringLiteral(", most kills: ") + best.join(QStringLiteral(", "));
    if (!pageAddress.isEmpty())
        text += QStringLiteral(" - ") + pageAddress;
    return text;
}

QString RoundAnnouncer::pageAddress(const Session &uploader) const
{
    QString base = m_webAddress;
    if (base.isEmpty()) {
        if (m_webPort == 0)
            return {};
        QString host = uploader.connection().localAddress();
        if (host.contains(QLatin1Char(':')))
            host = QLatin1Char('[') + host + QLatin1Char(']');
        base = QStringLiteral("http://%1:%2").arg(host).arg(m_webPort);
    }
    return base + QStringLiteral("/?p=stats&id=%1").arg(uploader.player().accountId);
}

} // namespace server
