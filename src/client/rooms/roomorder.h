#pragma once

#include <QString>

namespace client {

// How two cells of one room-list column compare when the user sorts by it, as people read
// them: the counts and pings by value (a cell that is no number, "N/A" or empty, after every
// number), and text as the user's language sorts it, case ignored and numbers inside names by
// value ("Room 9" before "Room 10"). Negative, zero or positive.
int compareRoomCells(int column, const QString &left, const QString &right);

} // namespace client
