#pragma once

#include <QString>

namespace client {

// The player names of a results log as they are uploaded: blanks trimmed at both ends, every
// character dropped that is not a letter of the Swedish alphabet (either case), a digit, the
// blank or one of " ( ) . , / & [ ] ? ! * # + - @ $, and cut to 15 characters. The same
// filter serves the name of the player who made the kill, so that the two compare.
QString filterName(const QString &name);

} // namespace client
