#pragma once

#include <QString>

namespace client {

// Game folders come from Windows installs, where file names are not case-sensitive, and the
// program names files in them with Windows paths ("\data\sound\English\re_srch1.wav").
// Joins such a path to a native folder, matching each part case-insensitively when the exact
// spelling does not exist. Parts that match nothing are kept as written, so the result names
// a missing file rather than a wrong one.
QString resolveCaseInsensitive(const QString &folder, const QString &windowsPath);

} // namespace client
