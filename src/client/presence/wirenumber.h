#pragma once

#include <QString>
#include <optional>

namespace client {

// Numbers arrive as decimal text and are "read as a number, rounded down". A text that is not
// a finite number gives nullopt; callers decide what an absent number means.
//
// On its way out: protocol::readWholeNumber reads every number field now, and the chat
// colour, its last user, comes decoded with the chat line once the lobby chat registers for
// message structs. Delete this file then.
std::optional<double> readWholeNumber(const QString &text);

} // namespace client
