#include "client/rooms/roomlistview.h"

#include "client/rooms/roomlistmodel.h"

#include <QHeaderView>
#include <QTreeView>

namespace client {

void setUpRoomListView(QTreeView &view, RoomListModel &model)
{
    view.setModel(&model);
    view.setSortingEnabled(false);
    view.setRootIsDecorated(false);
    view.setItemsExpandable(false);
    view.setUniformRowHeights(true);
    view.setAllColumnsShowFocus(true);
    view.setSelectionMode(QAbstractItemView::SingleSelection);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setTabKeyNavigation(false); // Tab goes on to the next control; arrows move in the list
    view.setIconSize({16, 16});

    QHeaderView *header = view.header();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(false);
    header->setStretchLastSection(true);
    const int widths[] = {100, 160, 56, 70, 60};
    for (int c = 0; c < int(std::size(widths)); ++c)
        header->resizeSection(c, widths[c]);

    QObject::connect(header, &QHeaderView::sectionClicked, &model,
                     [header, model = &model](int column) {
                         model->sortByHeader(column);
                         header->setSortIndicatorShown(true);
                         header->setSortIndicator(model->sortKey(), model->sortOrder());
                     });
}

} // namespace client
