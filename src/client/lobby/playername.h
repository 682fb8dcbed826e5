#pragma once

#include <QString>

namespace client {

// The key under which the lobby server tells players' names apart: names that differ only in
// case or in a compatibility form ("ＡＮＮＡ", "anna", "Anna") are one player's. Whatever the
// client keeps about another player by name is kept under this key.
QString nameKey(const QString &name);

} // namespace client
