#pragma once

#include <QList>
#include <QString>
#include <QStringView>

class QTime;

namespace client {

// The text rules of the lobby chat box, apart from any widget.

// The word the user points at when the selection of the chat box starts at `selectionStart`
// (0-based) in `text`: from just after the last space at or before that position up to the next
// space. Only spaces delimit words: line breaks and brackets belong to the word. A start past
// the end of the text points at the text's first word.
QString wordAtSelection(QStringView text, qsizetype selectionStart);

// Whether a word is opened when pointed at: it contains "http://", "https://", "ftp://" or
// "www." anywhere, in these exact letters.
bool isOpenableWord(QStringView word);

// What pointing at an openable word opens: the web address found in it, without brackets or
// punctuation around it ("(www.a.com)," opens "www.a.com"); the whole word when no address
// starts in it ("visitwww.a.com").
QString addressInWord(const QString &word);

// Where web addresses stand in `text`, to be shown as links: offset and length of each.
struct TextSpan
{
    qsizetype start;
    qsizetype length;
};
QList<TextSpan> findWebAddresses(const QString &text);

// The characters of `text` that code page 1252 cannot carry (they go out as "?"), each once,
// in the order they first appear.
QString uncarriedCharacters(QStringView text);

// The time of day as a chat line shows it: the system's long time format without its time
// zone.
QString chatTimeText(const QTime &time);

} // namespace client
