#pragma once

#include "client/game/statustable.h"

#include <QObject>

class QStandardItemModel;

namespace client {

// The seven lines that describe a game server, ready to show.
struct GameInfoLabels
{
    QString roomName;
    QString roomNameTip; // the whole host name, when the line is cut
    QString map;
    QString mapTip;
    QString gameType;
    QString players;
    QString password;
    QString locked;
    QString timeLimit;
};

// The game server that was queried last: every status reply, from the game-info query and
// from room pings alike, replaces it. Keeps the reply's table and a list model of its players
// ("Player", "Ping"); the game-info window watches it.
class GameInfo : public QObject
{
    Q_OBJECT

public:
    explicit GameInfo(QObject *parent = nullptr);

    // Parses one reply; asks for the window to be shown when `show` is set.
    void addInfo(const QString &data, bool show);
    // The first player's name with its enclosing backslashes; "" without players.
    QString getSpelare() const;
    // The reply table's cell (rows 0..20, columns 0..2).
    QString getTestArray(int column, int row) const { return m_table.cell(column, row); }

    const StatusTable &table() const { return m_table; }
    QStandardItemModel *playersModel() const { return m_players; }
    GameInfoLabels labels() const;

Q_SIGNALS:
    void changed();
    void showRequested();

private:
    StatusTable m_table;
    QStandardItemModel *m_players;
};

} // namespace client
