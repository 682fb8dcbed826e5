#pragma once

#include <QIcon>
#include <QStandardItemModel>

namespace client {

// The room list `ListView1`: every open room and every running game that lobby players are
// in. The rows are the only store of rooms; messages find a room row by its host's name and a
// running-game row by its address.
//
// Six text columns. Column 0 also carries the row's hidden tag (the host's or game server's
// dotted IPv4 address) and its icon index, which tells the kind of row.
class RoomListModel : public QStandardItemModel
{
    Q_OBJECT

public:
    enum Column { Host = 0, RoomName, Ping, Status, Players, Map, ColumnCount };
    enum IconIndex { OpenRoom = 2, LockedRoom = 3, RunningGame = 4 };
    static constexpr int TagRole = Qt::UserRole + 1;  // on column 0: address
    static constexpr int IconRole = Qt::UserRole + 2; // on column 0: IconIndex
    static constexpr int FullRole = Qt::UserRole + 3; // on column 0: bool, running games only

    explicit RoomListModel(QObject *parent = nullptr);

    // The picture of a row kind: an open room has a picture of its own (index 2 is the
    // players' picture), the others their small icons.
    static QIcon pictureOf(IconIndex icon);

    // Appends a row with the six column texts, its tag and icon; in sorted mode the list is
    // sorted again, so the row moves to its place. Returns the row where it stands.
    int appendRow(const QStringList &columns, const QString &tag, IconIndex icon);

    // Column 0 also answers Qt::AccessibleTextRole: the row as a person would say it ("Friday
    // night raid, host player1, in chat, 2 players, open").
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    QString text(int row, Column column) const;
    // Rows do not move when a text changes, even in sorted mode, so that a caller can write
    // several columns of the row it found; the next append or header click sorts again.
    void setText(int row, Column column, const QString &text);
    QString tag(int row) const;
    IconIndex icon(int row) const;
    void setIcon(int row, IconIndex icon);
    // Whether a running game's last status answer had every slot taken; false until one came.
    bool isFull(int row) const;
    void setFull(int row, bool full);

    // The first row in display order whose column 0 is `host` exactly and which is not a
    // running game; -1 when the room is unknown.
    int findRoomRow(const QString &host) const;
    // The first row in display order whose tag is `address`, of either kind when
    // `runningGameOnly` is false; -1 when none.
    int findRowByTag(const QString &address, bool runningGameOnly = false) const;

    void clearRows();

    // Sorting by a column header: the model itself is kept in display order, so lookups
    // "in display order" are lookups in row order. The first click puts the list into sorted
    // mode; a click on the column clicked last flips the order (descending becomes ascending,
    // anything else descending), a click on another column keeps it. Both the last clicked
    // and the sort column start at "Host", so the first click on "Host" already flips.
    // Cells compare as people read them (compareRoomCells); equal cells follow the hosts'
    // names, and rows equal in both keep their order.
    void sortByHeader(int column);
    bool isSorted() const { return m_sorted; }
    Qt::SortOrder sortOrder() const { return m_order; }
    int sortKey() const { return m_sortColumn; }

private:
    void resort();

    bool m_sorted = false;
    Qt::SortOrder m_order = Qt::AscendingOrder;
    int m_sortColumn = 0;        // the column of the current sort
    int m_lastClickedColumn = 0; // both start at 0, so a first click on "Host" flips
};

// Right-aligns a text in eight characters so that numbers sort by value as text; a text of
// eight or more characters is returned unchanged.
QString padLeft8(const QString &text);

} // namespace client
