#pragma once

namespace server {

// Raises the soft limit on open files to the hard limit, so that thousands of sessions fit.
// Returns the limit now in force, or -1 when it cannot be read.
long raiseOpenFileLimit();

} // namespace server
