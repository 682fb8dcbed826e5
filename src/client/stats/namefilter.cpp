#include "client/stats/namefilter.h"

#include "client/text/blanks.h"

namespace client {

namespace {

constexpr qsizetype kMaxLength = 15;

bool isAllowed(QChar c)
{
    static const QString allowed =
        QStringLiteral("qwertyuiop\u00e5asdfghjkl\u00f6\u00e4zxcvbnm0123456789 \"().,/&[]?!*#+-@$");
    return allowed.contains(c.toLower());
}

} // namespace

QString filterName(const QString &name)
{
    QString kept;
    for (const QChar c : trimBlanks(name))
        if (isAllowed(c))
            kept += c;
    return kept.left(kMaxLength);
}

} // namespace client
