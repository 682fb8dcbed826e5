#pragma once

#include <QFileDevice>
#include <QString>

namespace client {

// The data folder holds the saved password: it and the files in it are open to their owner
// only.
namespace PrivateFiles {

inline constexpr QFileDevice::Permissions kFile = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
inline constexpr QFileDevice::Permissions kFolder = kFile | QFileDevice::ExeOwner;

// Creates `folder` and its parents when missing and leaves `folder` open to its owner only,
// also when it existed before. False when it cannot be made so.
bool makeFolder(const QString &folder);

} // namespace PrivateFiles

} // namespace client
