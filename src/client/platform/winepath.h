#pragma once

#include <QString>

namespace client {

// Where a Windows program installed under Wine lives, as Wine sees it.
namespace WinePath {

// The Wine prefix a path lies in: the folder that holds the "drive_c" folder above it, or ""
// when no folder above it is called "drive_c". A game installed into a prefix runs in it.
QString prefixOf(const QString &path);

// The path as the Windows programs of `prefix` name it: below the prefix's drive_c it is on
// "C:", anywhere else on "Z:" (Wine's drive for the root folder), with backslashes. Computed
// from Wine's standard drive mapping, without asking Wine.
QString windowsPath(const QString &path, const QString &prefix);

} // namespace WinePath

} // namespace client
