#include "client/presence/playerlistview.h"

#include "client/presence/playerlistfilter.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTreeView>

namespace client {

void configurePlayerListView(QTreeView &view, PlayerListFilter &filter, QLineEdit *findBox)
{
    view.setModel(&filter);
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
    QObject::connect(&view, &QAbstractItemView::clicked, &filter,
                     [&filter](const QModelIndex &index) { filter.toggleGroupAt(index); });
    if (findBox) {
        findBox->setClearButtonEnabled(true);
        QObject::connect(findBox, &QLineEdit::textChanged, &filter,
                         &PlayerListFilter::setNameFilter);
    }
}

} // namespace client
