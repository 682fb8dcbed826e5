#include "client/rooms/roomlistmodel.h"

#include "client/rooms/roomorder.h"
#include "client/ui/icons.h"

namespace client {

namespace {

// A cell of the list. Cells compare as compareRoomCells says; rows whose cells are equal
// follow their hosts' names.
class RoomListItem : public QStandardItem
{
public:
    using QStandardItem::QStandardItem;

    QStandardItem *clone() const override { return new RoomListItem(*this); }
    bool operator<(const QStandardItem &other) const override
    {
        if (const int order = compareRoomCells(column(), text(), other.text()))
            return order < 0;
        const QStandardItem *host = hostOf(*this);
        const QStandardItem *otherHost = hostOf(other);
        if (column() == RoomListModel::Host || !host || !otherHost)
            return false;
        return compareRoomCells(RoomListModel::Host, host->text(), otherHost->text()) < 0;
    }

private:
    static const QStandardItem *hostOf(const QStandardItem &cell)
    {
        return cell.model() ? cell.model()->item(cell.row(), RoomListModel::Host) : nullptr;
    }
};

} // namespace

RoomListModel::RoomListModel(QObject *parent) : QStandardItemModel(0, ColumnCount, parent)
{
    setHorizontalHeaderLabels({QStringLiteral("Host"), QStringLiteral("Room name"),
                               QStringLiteral("Ping"), QStringLiteral("Status"),
                               QStringLiteral("Players"), QStringLiteral("Map")});
    setSortRole(Qt::DisplayRole);
    setItemPrototype(new RoomListItem); // the model owns the prototype
}

QIcon RoomListModel::pictureOf(IconIndex icon)
{
    return icon == OpenRoom ? Icons::openRoom() : Icons::smallIcon(int(icon));
}

int RoomListModel::appendRow(const QStringList &columns, const QString &tag, IconIndex icon)
{
    QList<QStandardItem *> items;
    items.reserve(ColumnCount);
    for (int c = 0; c < ColumnCount; ++c) {
        auto *item = new RoomListItem(columns.value(c));
        item->setEditable(false);
        items.append(item);
    }
    items[0]->setData(tag, TagRole);
    items[0]->setData(int(icon), IconRole);
    items[0]->setIcon(pictureOf(icon));
    QStandardItemModel::appendRow(items); // the model owns the items
    const QPersistentModelIndex placed(index(rowCount() - 1, 0));
    if (m_sorted)
        resort();
    return placed.row();
}

QVariant RoomListModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::AccessibleTextRole || index.column() != Host)
        return QStandardItemModel::data(index, role);
    const int row = index.row();
    const auto cell = [&](Column column) { return text(row, column).trimmed(); };
    QStringList parts{cell(RoomName)};
    const QString players = cell(Players);
    const QString count = players == QLatin1String("1") ? QStringLiteral("1 player")
                                                        : players + QStringLiteral(" players");
    if (icon(row) == RunningGame) {
        parts << QStringLiteral("game at ") + tag(row) << count
              << QStringLiteral("map ") + cell(Map);
        if (!cell(Ping).isEmpty())
            parts << QStringLiteral("ping ") + cell(Ping);
    } else {
        parts << QStringLiteral("host ") + cell(Host) << cell(Status).toLower() << count
              << (icon(row) == LockedRoom ? QStringLiteral("locked") : QStringLiteral("open"));
    }
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

QString RoomListModel::text(int row, Column column) const
{
    return data(index(row, column)).toString();
}

void RoomListModel::setText(int row, Column column, const QString &text)
{
    setData(index(row, column), text);
}

QString RoomListModel::tag(int row) const
{
    return data(index(row, 0), TagRole).toString();
}

RoomListModel::IconIndex RoomListModel::icon(int row) const
{
    return IconIndex(data(index(row, 0), IconRole).toInt());
}

bool RoomListModel::isFull(int row) const
{
    return data(index(row, 0), FullRole).toBool();
}

void RoomListModel::setFull(int row, bool full)
{
    setData(index(row, 0), full, FullRole);
}

void RoomListModel::setIcon(int row, IconIndex icon)
{
    setData(index(row, 0), int(icon), IconRole);
    setData(index(row, 0), pictureOf(icon), Qt::DecorationRole);
}

int RoomListModel::findRoomRow(const QString &host) const
{
    for (int r = 0; r < rowCount(); ++r) {
        if (icon(r) != RunningGame && text(r, Host) == host)
            return r;
    }
    return -1;
}

int RoomListModel::findRowByTag(const QString &address, bool runningGameOnly) const
{
    for (int r = 0; r < rowCount(); ++r) {
        if (tag(r) == address && (!runningGameOnly || icon(r) == RunningGame))
            return r;
    }
    return -1;
}

void RoomListModel::clearRows()
{
    removeRows(0, rowCount());
}

void RoomListModel::sortByHeader(int column)
{
    if (column < 0 || column >= ColumnCount)
        return;
    m_sorted = true;
    if (column == m_lastClickedColumn)
        m_order = m_order == Qt::DescendingOrder ? Qt::AscendingOrder : Qt::DescendingOrder;
    m_sortColumn = column;
    m_lastClickedColumn = column;
    resort();
}

void RoomListModel::resort()
{
    sort(m_sortColumn, m_order);
}

QString padLeft8(const QString &text)
{
    return text.size() >= 8 ? text : QString(8 - text.size(), u' ') + text;
}

} // namespace client
