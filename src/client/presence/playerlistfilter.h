#pragma once

#include "client/presence/playerlistmodel.h"

#include <QAbstractProxyModel>
#include <array>
#include <vector>

namespace client {

class IgnoreList;

// What the player list shows of PlayerListModel: every group row, and the players of the groups
// that are not folded whose names contain the filter text (case ignored). The group rows keep
// their texts, so they still count every player of their group. The order is the model's.
// An ignored player's entry shows in grey, with "ignored" as its tool tip and description.
//
// A QSortFilterProxyModel takes every move of the model (a "PS", a buddy change) as a new
// layout and filters the whole list again, which makes a burst of n status changes cost
// O(n²) rows filtered. This proxy follows inserts, removals and moves one by one: it keeps the
// numbers of the shown source rows in order, renumbers those after a change (a pass over plain
// integers) and filters only the rows that changed.
class PlayerListFilter : public QAbstractProxyModel
{
    Q_OBJECT

public:
    using Group = PlayerListModel::Group;
    // On a group row: whether its group is folded. Nothing on a player.
    static constexpr int FoldedRole = Qt::UserRole + 1;

    PlayerListFilter(PlayerListModel &players, const IgnoreList &ignored,
                     QObject *parent = nullptr);

    QString nameFilter() const { return m_nameFilter; }
    // Part of a name; blanks around it are ignored, and an empty text shows everybody.
    void setNameFilter(const QString &text);

    bool isFolded(Group group) const { return m_folded[std::size_t(group)]; }
    void setFolded(Group group, bool folded);
    // The group whose row is at `index` of this model, if it is a group row.
    std::optional<Group> groupRowAt(const QModelIndex &index) const;
    // Folds or unfolds the group whose row is at `index`; false when it is no group row.
    bool toggleGroupAt(const QModelIndex &index);
    // The row of `group`'s group row in this model; -1 without group rows.
    int groupRow(Group group) const;

    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    void foldingChanged(Group group, bool folded);

private:
    // The row as a screen reader says it: "player2, in the lobby, buddy"; a group row as
    // its title, and whether it is folded.
    QString spokenRow(const QModelIndex &index) const;
    bool accepts(int sourceRow) const;
    // The first shown row whose source row is `sourceRow` or after it.
    int placeOf(int sourceRow) const;
    int shownRowOf(int sourceRow) const;
    void shift(int fromSourceRow, int delta);
    void refilter();
    void rebuild();
    // Shows or hides the source row after a change, if its acceptance changed.
    void recheck(int sourceRow);

    void onRowsInserted(const QModelIndex &parent, int first, int last);
    void onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last);
    void onRowsRemoved(const QModelIndex &parent, int first, int last);
    void onRowsAboutToBeMoved(const QModelIndex &parent, int start, int end,
                              const QModelIndex &destination, int row);
    void onRowsMoved(const QModelIndex &parent, int start, int end, const QModelIndex &destination,
                     int row);
    void onDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                       const QList<int> &roles);
    void onModelReset();

    // The entries the ignore list now marks (or unmarks) are repainted.
    void onIgnoredChanged();

    PlayerListModel &m_players;
    const IgnoreList &m_ignored;
    QString m_nameFilter;
    std::array<bool, 3> m_folded{};
    std::vector<int> m_shown; // the source rows shown, in order
    bool m_moving = false;    // a move of shown rows is announced
};

} // namespace client
