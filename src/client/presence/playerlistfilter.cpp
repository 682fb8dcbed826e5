#include "client/presence/playerlistfilter.h"

#include "client/lobby/ignorelist.h"

#include <QColor>

#include <algorithm>
#include <utility>

namespace client {

namespace {

constexpr QRgb kIgnoredColour = 0x909090;

} // namespace

PlayerListFilter::PlayerListFilter(PlayerListModel &players, const IgnoreList &ignored,
                                   QObject *parent)
    : QAbstractProxyModel(parent), m_players(players), m_ignored(ignored)
{
    connect(&ignored, &IgnoreList::changed, this, &PlayerListFilter::onIgnoredChanged);
    QAbstractProxyModel::setSourceModel(&players);
    connect(&players, &QAbstractItemModel::rowsInserted, this, &PlayerListFilter::onRowsInserted);
    connect(&players, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            &PlayerListFilter::onRowsAboutToBeRemoved);
    connect(&players, &QAbstractItemModel::rowsRemoved, this, &PlayerListFilter::onRowsRemoved);
    connect(&players, &QAbstractItemModel::rowsAboutToBeMoved, this,
            &PlayerListFilter::onRowsAboutToBeMoved);
    connect(&players, &QAbstractItemModel::rowsMoved, this, &PlayerListFilter::onRowsMoved);
    connect(&players, &QAbstractItemModel::dataChanged, this, &PlayerListFilter::onDataChanged);
    connect(&players, &QAbstractItemModel::modelAboutToBeReset, this,
            &PlayerListFilter::beginResetModel);
    connect(&players, &QAbstractItemModel::modelReset, this, &PlayerListFilter::onModelReset);
    // The model keeps its own order and never changes its layout; should it, start afresh.
    connect(&players, &QAbstractItemModel::layoutAboutToBeChanged, this,
            &PlayerListFilter::beginResetModel);
    connect(&players, &QAbstractItemModel::layoutChanged, this, &PlayerListFilter::onModelReset);
    connect(&players, &QAbstractItemModel::headerDataChanged, this,
            &PlayerListFilter::headerDataChanged);
    rebuild();
}

QString PlayerListFilter::spokenRow(const QModelIndex &index) const
{
    const int row = mapToSource(index).row();
    if (row < 0)
        return {};
    const QString name = m_players.text(row, PlayerListModel::Name).trimmed();
    if (const std::optional<Group> group = groupRowAt(index))
        return name + (isFolded(*group) ? tr(", folded") : QString());
    static const QStringList places{tr("in the lobby"), tr("playing"), tr("away")};
    QStringList parts{name};
    const std::optional<Group> group =
        PlayerListModel::groupOfCode(m_players.text(row, PlayerListModel::PlayerStatus));
    if (group)
        parts << places.at(int(*group));
    if (m_players.isBuddy(row))
        parts << tr("buddy");
    if (m_players.text(row, PlayerListModel::Message) == QLatin1String("1"))
        parts << tr("unread message");
    if (m_ignored.contains(m_players.text(row, PlayerListModel::Name)))
        parts << tr("ignored");
    return parts.join(QStringLiteral(", "));
}

void PlayerListFilter::setNameFilter(const QString &text)
{
    const QString filter = text.trimmed();
    if (filter == m_nameFilter)
        return;
    m_nameFilter = filter;
    refilter();
}

void PlayerListFilter::setFolded(Group group, bool folded)
{
    if (isFolded(group) == folded)
        return;
    m_folded[std::size_t(group)] = folded;
    refilter();
    Q_EMIT foldingChanged(group, folded);
}

std::optional<PlayerListFilter::Group> PlayerListFilter::groupRowAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.model() != this)
        return std::nullopt;
    const QString code = m_players.text(mapToSource(index).row(), PlayerListModel::PlayerStatus);
    if (!PlayerListModel::isGroupRowCode(code))
        return std::nullopt;
    return PlayerListModel::groupOfCode(code);
}

bool PlayerListFilter::toggleGroupAt(const QModelIndex &index)
{
    const std::optional<Group> group = groupRowAt(index);
    if (!group)
        return false;
    setFolded(*group, !isFolded(*group));
    return true;
}

int PlayerListFilter::groupRow(Group group) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (groupRowAt(index(row, 0)) == group)
            return row;
    }
    return -1;
}

QModelIndex PlayerListFilter::index(int row, int column, const QModelIndex &parent) const
{
    if (parent.isValid() || row < 0 || row >= rowCount() || column < 0 || column >= columnCount())
        return {};
    return createIndex(row, column);
}

QModelIndex PlayerListFilter::parent(const QModelIndex &) const
{
    return {};
}

int PlayerListFilter::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

int PlayerListFilter::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_players.columnCount();
}

bool PlayerListFilter::hasChildren(const QModelIndex &parent) const
{
    return !parent.isValid() && !m_shown.empty();
}

QModelIndex PlayerListFilter::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!proxyIndex.isValid() || proxyIndex.model() != this)
        return {};
    return m_players.index(m_shown[std::size_t(proxyIndex.row())], proxyIndex.column());
}

QModelIndex PlayerListFilter::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid() || sourceIndex.model() != &m_players)
        return {};
    const int row = shownRowOf(sourceIndex.row());
    return row < 0 ? QModelIndex() : createIndex(row, sourceIndex.column());
}

QVariant PlayerListFilter::data(const QModelIndex &index, int role) const
{
    if (role == Qt::AccessibleTextRole && index.column() == PlayerListModel::Name)
        return spokenRow(index);
    if (role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole ||
        role == Qt::ForegroundRole) {
        const QModelIndex source = mapToSource(index);
        if (source.isValid() && !groupRowAt(index) &&
            m_ignored.contains(m_players.text(source.row(), PlayerListModel::Name)))
            return role == Qt::ForegroundRole ? QVariant(QColor(kIgnoredColour))
                                              : QVariant(tr("ignored"));
    }
    if (role == Qt::ToolTipRole || role == FoldedRole) {
        const std::optional<Group> group = groupRowAt(index);
        if (!group)
            return {};
        if (role == FoldedRole)
            return isFolded(*group);
        return isFolded(*group) ? tr("Folded: click to show these players")
                                : tr("Click to fold these players away");
    }
    return QAbstractProxyModel::data(index, role);
}

void PlayerListFilter::onIgnoredChanged()
{
    if (!m_shown.empty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_shown.size()) - 1, columnCount() - 1),
                           {Qt::ForegroundRole, Qt::ToolTipRole, Qt::AccessibleDescriptionRole});
}

QVariant PlayerListFilter::headerData(int section, Qt::Orientation orientation, int role) const
{
    return orientation == Qt::Horizontal ? m_players.headerData(section, orientation, role)
                                         : QVariant();
}

bool PlayerListFilter::accepts(int sourceRow) const
{
    const QString code = m_players.text(sourceRow, PlayerListModel::PlayerStatus);
    if (PlayerListModel::isGroupRowCode(code))
        return true;
    if (const std::optional<Group> group = PlayerListModel::groupOfCode(code);
        group && isFolded(*group))
        return false;
    return m_nameFilter.isEmpty() || m_players.text(sourceRow, PlayerListModel::Name)
                                         .contains(m_nameFilter, Qt::CaseInsensitive);
}

int PlayerListFilter::placeOf(int sourceRow) const
{
    return int(std::lower_bound(m_shown.begin(), m_shown.end(), sourceRow) - m_shown.begin());
}

int PlayerListFilter::shownRowOf(int sourceRow) const
{
    const int at = placeOf(sourceRow);
    return at < rowCount() && m_shown[std::size_t(at)] == sourceRow ? at : -1;
}

void PlayerListFilter::shift(int fromSourceRow, int delta)
{
    for (auto it = m_shown.begin() + placeOf(fromSourceRow); it != m_shown.end(); ++it)
        *it += delta;
}

void PlayerListFilter::refilter()
{
    // Hides what no longer passes, in runs from the bottom, then shows what newly passes, in
    // runs from the top; the rows that stay keep their selection.
    for (int end = rowCount(); end > 0;) {
        if (accepts(m_shown[std::size_t(end - 1)])) {
            --end;
            continue;
        }
        int start = end - 1;
        while (start > 0 && !accepts(m_shown[std::size_t(start - 1)]))
            --start;
        beginRemoveRows({}, start, end - 1);
        m_shown.erase(m_shown.begin() + start, m_shown.begin() + end);
        endRemoveRows();
        end = start;
    }
    int at = 0;
    const int sourceRows = m_players.rowCount();
    for (int source = 0; source < sourceRows;) {
        if (at < rowCount() && m_shown[std::size_t(at)] == source) {
            ++at;
            ++source;
            continue;
        }
        std::vector<int> run;
        for (; source < sourceRows && !(at < rowCount() && m_shown[std::size_t(at)] == source);
             ++source) {
            if (accepts(source))
                run.push_back(source);
        }
        if (run.empty())
            continue;
        beginInsertRows({}, at, at + int(run.size()) - 1);
        m_shown.insert(m_shown.begin() + at, run.begin(), run.end());
        endInsertRows();
        at += int(run.size());
    }
}

void PlayerListFilter::recheck(int sourceRow)
{
    const int shown = shownRowOf(sourceRow);
    const bool passes = accepts(sourceRow);
    if (shown >= 0 && !passes) {
        beginRemoveRows({}, shown, shown);
        m_shown.erase(m_shown.begin() + shown);
        endRemoveRows();
    } else if (shown < 0 && passes) {
        const int at = placeOf(sourceRow);
        beginInsertRows({}, at, at);
        m_shown.insert(m_shown.begin() + at, sourceRow);
        endInsertRows();
    }
}

void PlayerListFilter::onRowsInserted(const QModelIndex &parent, int first, int last)
{
    if (parent.isValid())
        return;
    shift(first, last - first + 1);
    std::vector<int> run;
    for (int source = first; source <= last; ++source) {
        if (accepts(source))
            run.push_back(source);
    }
    if (run.empty())
        return;
    const int at = placeOf(first);
    beginInsertRows({}, at, at + int(run.size()) - 1);
    m_shown.insert(m_shown.begin() + at, run.begin(), run.end());
    endInsertRows();
}

void PlayerListFilter::onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last)
{
    if (parent.isValid())
        return;
    const int start = placeOf(first);
    const int end = placeOf(last + 1);
    if (start == end)
        return;
    beginRemoveRows({}, start, end - 1);
    m_shown.erase(m_shown.begin() + start, m_shown.begin() + end);
    endRemoveRows();
}

void PlayerListFilter::onRowsRemoved(const QModelIndex &parent, int first, int last)
{
    if (!parent.isValid())
        shift(last + 1, -(last - first + 1));
}

void PlayerListFilter::onRowsAboutToBeMoved(const QModelIndex &parent, int start, int end,
                                            const QModelIndex &destination, int row)
{
    if (parent.isValid() || destination.isValid())
        return;
    const int first = placeOf(start);
    const int last = placeOf(end + 1) - 1;
    const int to = placeOf(row);
    // Shown rows that stay where they are among the shown rows need no move.
    m_moving = first <= last && (to < first || to > last + 1);
    if (m_moving)
        beginMoveRows({}, first, last, {}, to);
}

void PlayerListFilter::onRowsMoved(const QModelIndex &parent, int start, int end,
                                   const QModelIndex &destination, int row)
{
    if (parent.isValid() || destination.isValid())
        return;
    const int count = end - start + 1;
    const bool down = row > end;
    // The source rows between the old and the new place move by `count` the other way.
    const int low = down ? start : row;
    const int high = down ? row : end + 1; // exclusive
    const auto first = m_shown.begin() + placeOf(low);
    const auto last = m_shown.begin() + placeOf(high);
    const auto movedFirst = m_shown.begin() + placeOf(start);
    const auto movedLast = m_shown.begin() + placeOf(end + 1);
    const int movedBy = down ? row - end - 1 : row - start;
    for (auto it = first; it != last; ++it)
        *it += it >= movedFirst && it < movedLast ? movedBy : (down ? -count : count);
    // The shown rows that moved go past the others they passed: a rotation keeps the order.
    if (down)
        std::rotate(first, movedLast, last);
    else
        std::rotate(first, movedFirst, last);
    if (std::exchange(m_moving, false))
        endMoveRows();
}

void PlayerListFilter::onDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                     const QList<int> &roles)
{
    if (!topLeft.isValid() || topLeft.parent().isValid())
        return;
    const bool textsChanged = roles.isEmpty() || roles.contains(Qt::DisplayRole);
    if (textsChanged) {
        for (int source = topLeft.row(); source <= bottomRight.row(); ++source)
            recheck(source);
    }
    const int first = placeOf(topLeft.row());
    const int last = placeOf(bottomRight.row() + 1) - 1;
    if (first <= last)
        Q_EMIT dataChanged(index(first, topLeft.column()), index(last, bottomRight.column()),
                           roles);
}

void PlayerListFilter::onModelReset()
{
    rebuild();
    endResetModel();
}

void PlayerListFilter::rebuild()
{
    m_shown.clear();
    const int rows = m_players.rowCount();
    for (int source = 0; source < rows; ++source) {
        if (accepts(source))
            m_shown.push_back(source);
    }
}

} // namespace client
