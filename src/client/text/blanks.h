#pragma once

#include <QStringView>

namespace client {

// Removes the blanks (spaces only; tabs and other white space stay) at both ends of a text,
// the way the lobby's texts have always been trimmed.
inline QStringView trimBlanks(QStringView text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return text.sliced(begin, end - begin);
}

} // namespace client
