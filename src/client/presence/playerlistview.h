#pragma once

class QLineEdit;
class QTreeView;

namespace client {

class PlayerListFilter;

// Shows `filter` in `view` as the player list: a flat list with only the "Name" column visible
// (the other ten are per-entry fields), one selected player at a time, no editing. A click on
// a group row, or Space or Enter on it, folds or unfolds its players. The model keeps its own
// order, so the view never sorts. When `findBox` is given, what is typed there filters the players
// by name.
void configurePlayerListView(QTreeView &view, PlayerListFilter &filter,
                             QLineEdit *findBox = nullptr);

} // namespace client
