#pragma once

#include <QString>

namespace server {

// The rules for player names, shared by open registration and the admin commands, and the key
// under which names are unique.
//
// A name is 1 to kMaxNameLength letters, digits and the marks in kNameMarks, with no blank,
// control, format or invisible character, so that no two players can look alike through a
// character nobody sees. Names are unique after case folding and Unicode compatibility
// folding ("ＡＮＮＡ", "anna" and "Anna" are one name), and none may fold to the service
// account's name.
constexpr int kMaxNameLength = 32;
inline constexpr char16_t kNameMarks[] = u"-_.[]()!@#$*+=~^|{}'";

QString nameKey(const QString &name);
// Empty when `name` is acceptable, otherwise why not (for the admin commands' messages).
QString nameProblem(const QString &name);
inline bool isAcceptableName(const QString &name)
{
    return nameProblem(name).isEmpty();
}

} // namespace server
