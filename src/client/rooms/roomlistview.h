#pragma once

class QTreeView;

namespace client {

class RoomListModel;

// Shows the room list in `ListView1`: its six columns with the rows' icons, one row selected
// at a time, nothing editable. A click on a column header sorts the model by that column
// (RoomListModel::sortByHeader) and the header shows the column and order. The view itself
// never sorts: the model is kept in display order.
void setUpRoomListView(QTreeView &view, RoomListModel &model);

} // namespace client
