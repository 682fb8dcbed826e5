#include "client/presence/chatwords.h"

#include "client/text/blanks.h"
#include "protocol/cp1252.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTime>

namespace client {

QString wordAtSelection(QStringView text, qsizetype selectionStart)
{
    if (selectionStart < 0)
        return {};
    // A start at or past the end finds no space before it, so the word runs from the top.
    const qsizetype space =
        selectionStart < text.size() ? text.lastIndexOf(u' ', selectionStart) : qsizetype(-1);
    QStringView word =
        space < 0 ? text.first(std::min(selectionStart + 1, text.size())) : text.sliced(space + 1);
    word = trimBlanks(word);
    const qsizetype inner = word.indexOf(u' ');
    if (inner >= 0)
        word = word.first(inner);
    return word.toString();
}

bool isOpenableWord(QStringView word)
{
    for (const char16_t *marker : {u"http://", u"ftp://", u"https://", u"www."}) {
        if (word.contains(QStringView(marker)))
            return true;
    }
    return false;
}

QList<TextSpan> findWebAddresses(const QString &text)
{
    // What a rich-text box links by itself: a scheme or "www." that starts a word, up to the
    // next blank or line break, without the punctuation that usually ends a sentence.
    static const QRegularExpression address(
        QStringLiteral("(?<![\\w.@])(?:(?:https?|ftp|file)://|mailto:|news:|www\\.)\\S+"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    QList<TextSpan> spans;
    for (auto it = address.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        qsizetype length = match.capturedLength();
        while (length > 0 &&
               QStringView(u".,;:!?'\")]}>").contains(text[match.capturedStart() + length - 1]))
            --length;
        spans.append({match.capturedStart(), length});
    }
    return spans;
}

QString addressInWord(const QString &word)
{
    const QList<TextSpan> spans = findWebAddresses(word);
    return spans.isEmpty() ? word : word.mid(spans.first().start, spans.first().length);
}

QString uncarriedCharacters(QStringView text)
{
    QString found;
    for (qsizetype i = 0; i < text.size(); ++i) {
        // A character beyond the first plane is one pair of code units, shown together.
        const qsizetype length =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate() ? 2
                                                                                             : 1;
        const QStringView character = text.sliced(i, length);
        i += length - 1;
        if (character == u"?" || protocol::toCp1252(character) != "?")
            continue;
        if (!found.contains(character))
            found += character;
    }
    return found;
}

QString chatTimeText(const QTime &time)
{
    // The long format ends in a time zone ("t") in many locales; a chat line shows none.
    const QString format = QLocale::system().timeFormat(QLocale::LongFormat);
    QString withoutZone;
    bool quoted = false;
    for (const QChar c : format) {
        if (c == u'\'')
            quoted = !quoted;
        if (!quoted && c == u't')
            continue;
        withoutZone += c;
    }
    return QLocale::system().toString(time, withoutZone.trimmed());
}

} // namespace client
