#include "client/presence/playerlistview.h"

#include "client/presence/playerlistmodel.h"

#include <QHeaderView>
#include <QTreeView>

namespace client {

void configurePlayerListView(QTreeView &view, PlayerListModel &model)
{
    view.setModel(&model);
    for (int column = PlayerListModel::Name + 1; column < PlayerListModel::ColumnCount; ++column)
        view.setColumnHidden(column, true);
    view.setRootIsDecorated(false);
    view.setItemsExpandable(false);
    view.setIndentation(0);
    view.setUniformRowHeights(true);
    view.setSortingEnabled(false);
    view.setSelectionMode(QAbstractItemView::SingleSelection);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setAllColumnsShowFocus(true);
    view.header()->setStretchLastSection(true);
    view.header()->setSectionsMovable(false);
    view.header()->setSectionsClickable(false);
}

} // namespace client
