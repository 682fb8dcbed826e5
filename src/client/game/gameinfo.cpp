#include "client/game/gameinfo.h"

#include <QStandardItemModel>

namespace client {

namespace {

constexpr qsizetype kLabelWidth = 35;

QString yesNo(const QString &caption, const QString &flag)
{
    return caption +
           (flag == QStringLiteral("\\0\\") ? QStringLiteral("NO") : QStringLiteral("YES"));
}

} // namespace

GameInfo::GameInfo(QObject *parent) : QObject(parent), m_players(new QStandardItemModel(0, 2, this))
{
    m_players->setHorizontalHeaderLabels({QStringLiteral("Player"), QStringLiteral("Ping")});
}

void GameInfo::addInfo(const QString &data, bool show)
{
    m_table.parse(data);

    m_players->removeRows(0, m_players->rowCount());
    for (const StatusTable::Player &player : m_table.players()) {
        QList<QStandardItem *> row{new QStandardItem(withoutBackslashes(player.name)),
                                   new QStandardItem(withoutBackslashes(player.ping))};
        for (QStandardItem *item : row)
            item->setEditable(false);
        m_players->appendRow(row); // the model owns the items
    }

    Q_EMIT changed();
    if (show)
        Q_EMIT showRequested();
}

QString GameInfo::getSpelare() const
{
    return m_table.players().isEmpty() ? QString() : m_table.players().first().name;
}

GameInfoLabels GameInfo::labels() const
{
    GameInfoLabels labels;
    const QString hostName = withoutBackslashes(m_table.value(StatusTable::HostName));
    labels.roomName = QStringLiteral("Room name: ") + hostName.left(kLabelWidth);
    labels.roomNameTip = hostName;
    const QString map = withoutBackslashes(m_table.value(StatusTable::MapName));
    labels.map = QStringLiteral("Map: ") + map.left(kLabelWidth);
    labels.mapTip = map;
    labels.gameType =
        QStringLiteral("Game type: ") + withoutBackslashes(m_table.value(StatusTable::GameType));
    labels.players = QStringLiteral("Players: ") + QString::number(m_table.playerCount()) + u'/' +
                     withoutBackslashes(m_table.value(StatusTable::MaxPlayers));
    labels.password = yesNo(QStringLiteral("Password: "), m_table.value(StatusTable::Password));
    labels.locked = yesNo(QStringLiteral("Locked: "), m_table.value(StatusTable::ServerLocked));
    if (m_table.hasTimeLimit()) {
        const double seconds =
            leadingNumber(withoutBackslashes(m_table.value(StatusTable::TimeLimit)));
        labels.timeLimit =
            QStringLiteral("Timelimit: ") + QString::number(seconds / 60) + QStringLiteral(" min");
    } else {
        labels.timeLimit = QStringLiteral("Timelimit: none");
    }
    return labels;
}

} // namespace client
