#include "client/presence/chatwords.h"

#include "client/session/blanks.h"

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
    // next blank, without the punctuation that usually ends a sentence.
    static const QRegularExpression address(
        QStringLiteral("(?<![\\w.@])(?:(?:https?|ftp|file)://|mailto:|news:|www\\.)\\S+"),
        QRegularExpression::CaseInsensitiveOption);
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
