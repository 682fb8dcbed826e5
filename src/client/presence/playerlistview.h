#pragma once

class QTreeView;

namespace client {

class PlayerListModel;

// Shows `model` in `view` as the player list: a flat list with only the "Name" column visible
// (the other ten are per-entry fields), one selected entry at a time, no editing. The model
// keeps its own order, so the view never sorts.
void configurePlayerListView(QTreeView &view, PlayerListModel &model);

} // namespace client
