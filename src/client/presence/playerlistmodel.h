#pragma once

#include "client/presence/playerorder.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>
#include <optional>

namespace client {

// The player list `ListView2`: three group rows (lobby, playing, away) and one entry per
// announced player. It is the client's only store of what it knows about other players, found
// by the player's exact name.
//
// Eleven columns; only "Name" is meant to be shown, the other ten are the per-entry fields.
// Most are texts; the id, the buddy flag and the saved icon are kept typed (read them with
// id(), isBuddy() and savedIcon()) and their columns show them in decimal, empty on a group
// row. Each entry also has a small-icon index (1..11 of Icons), a bold flag and an optional
// text colour.
//
// The model is always in display order: sorted on `playerStatus` as text, descending; entries
// with the same code by name, case ignored (a name announced twice keeps the order of its
// announcements). The order is kept on every change instead of sorting the whole list
// afterwards, and the group counts are kept as entries change, so a burst of n presence
// messages costs O(n log n). Group rows are enabled but never selectable: the selection is
// always a player.
class PlayerListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        Name = 0,
        IpToGame,      // address of the game server the player is in, "" when none
        PlayerStatus,  // status code "1".."9" (see below), "" when unknown
        Index,         // the player's numeric id: id()
        PictureLoaded, // "0" until the avatar is loaded
        Message,       // "1" while a private message from the player is unread
        VanTrue,       // `vänTrue`: "1" for a buddy, else "0": isBuddy()
        IpToPlayer,    // never written
        PingBild,      // the entry's normal icon index: savedIcon()
        File,          // never written
        EpostHash,     // the player's e-mail hash, the avatar key
        ColumnCount
    };

    // Status codes: 9/6/3 are the lobby/playing/away group rows; 8/5/2 buddies and 7/4/1 other
    // players in the lobby/in a game/away.
    enum class Group { Lobby, Playing, Away };

    static constexpr QRgb kHighlightColour = 0xFF8000; // orange, RGB(255, 128, 0)

    // What a new entry holds; columns left empty stay "".
    using Entry = PlayerRow;
    static_assert(PlayerRow::kColumns == ColumnCount);

    explicit PlayerListModel(QObject *parent = nullptr);
    ~PlayerListModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    // Empties the list (the connect step, before it adds the group rows).
    void clearList();
    // Appends the three group rows " Lobby (0)", " Playing (0)", " Away (0)".
    void addGroupRows();

    // Adds an entry at its place in the order; returns its row.
    int addEntry(Entry entry);
    void removeEntry(int row);

    // The first row in display order whose name is `name` exactly; -1 when none.
    int findEntry(const QString &name) const;

    // What a column shows, the typed ones in decimal.
    QString text(int row, Column column) const;
    // Changing `playerStatus` moves the entry to its place in the order. The typed columns are
    // not written as text: use setBuddy().
    void setText(int row, Column column, const QString &text);
    // The statistics id of an entry; none for a group row or a row that is not there.
    std::optional<qint64> id(int row) const;
    bool isBuddy(int row) const;
    void setBuddy(int row, bool buddy);
    int savedIcon(int row) const;
    bool isBold(int row) const;
    void setBold(int row, bool bold);
    int icon(int row) const;
    void setIcon(int row, int icon);
    QColor textColour(int row) const;

    // Rewrites the texts of the group rows from the entries' codes.
    void countPlayers();
    // The number of entries whose code puts them in `group` (what `countPlayers` shows).
    int groupCount(Group group) const;
    // The group an entry or group row of `code` belongs to; none for an empty or odd code.
    static std::optional<Group> groupOfCode(const QString &code);
    static bool isGroupRowCode(const QString &code);

    // Whether any entry has `address` as its `ipToGame` (so a running game still has players).
    bool hasGameAddress(const QString &address) const;

private:
    PlayerRow &rowAt(int row) const { return *m_order.at(row); }
    void setCode(int row, const QString &code);
    void setName(int row, const QString &name);
    // Moves the entry at `from` to its place under `code` and `name`, running `change` (which
    // writes them) while it is out of the order; returns its new row.
    template <typename Change>
    int place(int from, const QString &code, const QString &name, Change change);
    void track(const PlayerRow &row, int delta);
    void emitRowChanged(int row, int firstColumn, int lastColumn, const QList<int> &roles = {});
    QIcon iconFor(int index) const;
    static QString columnText(const PlayerRow &row, Column column);

    PlayerOrder m_order;                         // the entries, in display order
    QHash<QString, QList<PlayerRow *>> m_byName; // every entry under its name
    QHash<QString, int> m_codeCounts;            // entries per status code
    QHash<QString, int> m_gameAddressCounts;     // entries per non-empty ipToGame
    mutable QHash<int, QIcon> m_icons;
};

} // namespace client
