#pragma once

#include <QList>
#include <QString>
#include <array>

namespace client {

// What a game server said in its last status replies. The reply is backslash-separated keys
// and values; the nineteen known keys are read in their fixed order, and a key that a reply
// lacks (or whose successor it lacks) keeps the value of an earlier reply. Values keep the
// backslash before and after them ("\0\" for a flag that is off).
//
// The table has rows 0..20 and columns 0..2: column 1 holds the key names, column 2 the
// values; row 0, row 20 and column 0 are empty.
class StatusTable
{
public:
    enum Row {
        GameName = 1,
        GameVer,
        HostName,
        HostPort,
        HostIp,
        MapName,
        GameType,
        NumPlayers,
        MaxPlayers,
        GameMode,
        TeamPlay,
        Password,
        ServerLocked,
        Mods,
        KitRestrictions,
        ArmPatches,
        HighBandwidth,
        TimeLimit,
        Player0,
    };
    static constexpr int kRows = 21;
    static constexpr int kColumns = 3;
    static constexpr int kMaxPlayers = 16;

    // Each text with its enclosing backslashes; empty when the reply lacks its markers.
    struct Player
    {
        QString name;
        QString team;
        QString ping;
    };

    StatusTable();

    void parse(const QString &data);

    // "" outside rows 0..20 and columns 0..2.
    QString cell(int column, int row) const;
    QString value(Row row) const { return m_values[row]; }

    // "numplayers" read as a number and truncated; not capped, unlike players().
    int playerCount() const { return m_playerCount; }
    const QList<Player> &players() const { return m_players; }
    // "maxplayers" read as a number and truncated; 0 when the reply named none.
    int slotCount() const;
    // Every slot taken, by the last reply's count.
    bool isFull() const { return slotCount() > 0 && m_playerCount >= slotCount(); }
    // Whether the last reply named a time limit at all.
    bool hasTimeLimit() const { return m_hasTimeLimit; }

private:
    void parseKeys(const QString &data);
    void parsePlayers(const QString &data);

    std::array<QString, kRows> m_values;
    int m_playerCount = 0;
    QList<Player> m_players;
    bool m_hasTimeLimit = false;
};

// The text without any backslash.
QString withoutBackslashes(const QString &text);
// The text without its first and last characters; "" when it is shorter than two.
QString withoutEnds(const QString &text);
// The leading number of a text, as the games' own tools read numbers: "2.5x" is 2.5, a text
// that does not begin with a number is 0.
double leadingNumber(const QString &text);

} // namespace client
