#pragma once

#include <QString>

namespace client {

// user.txt in the data folder: the saved user name and password, two lines in code page
// 1252, each ended by CR LF, in plain text (the server needs the password as typed), readable
// by its owner only.
struct Credentials
{
    QString name;
    QString password;
};

namespace CredentialsFile {

inline constexpr auto kFileName = "user.txt";

// The two lines of the file; missing lines (or a missing file) read as empty.
Credentials read(const QString &path);
// Writes both lines whole. False when the file cannot be written.
bool write(const QString &path, const Credentials &credentials);

} // namespace CredentialsFile

} // namespace client
