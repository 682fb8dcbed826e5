#pragma once

#include <QString>
#include <optional>

namespace client {

// The client's data folder: the user's shared application-data folder + "/Quorvel"
// (follows XDG_DATA_HOME). It holds user.txt, settingRS.txt and temp.jpg. Computed afresh at
// every call, as the environment may change between calls.
namespace DataFolder {

inline constexpr int kNotFoundError = 513;
inline constexpr auto kNotFoundMessage = "The folder path could not be detected";

// The path, or nullopt when the platform reports no application-data folder.
std::optional<QString> path();

// The path of a file in the data folder; empty when the folder cannot be found.
QString filePath(const QString &fileName);

// Creates the folder when it does not exist. False when it cannot be found.
bool ensureExists();

} // namespace DataFolder

} // namespace client
