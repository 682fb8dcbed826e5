#include "server/web/html.h"

#include <cmath>

namespace server::html {

namespace {
const QString kStyle = QStringLiteral(
    "body{font-family:sans-serif;margin:0 auto;padding:0 .8em;max-width:60em;line-height:1.4}"
    "h1{font-size:1.5em}h2{font-size:1.2em;margin-top:1.5em}h3{font-size:1em}"
    ".scroll{overflow-x:auto}table{border-collapse:collapse}"
    "th,td{padding:.2em .6em;border-bottom:1px solid #ddd;text-align:left}"
    "tr.own{font-weight:bold}.muted{color:#666}");
} // namespace

QByteArray document(const QString &title, const QString &body)
{
    return (QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                           "<meta name=\"viewport\" content=\"width=device-width, "
                           "initial-scale=1\"><title>") +
            text(title) + QStringLiteral("</title><style>") + kStyle +
            QStringLiteral("</style></head>\n<body>\n") + body + QStringLiteral("</body></html>\n"))
        .toUtf8();
}

QString table(const QStringList &headers, const QList<QStringList> &rows,
              const QStringList &rowClasses)
{
    QString out = QStringLiteral("<div class=\"scroll\"><table><thead><tr>");
    for (const QString &header : headers)
        out += QStringLiteral("<th>") + header + QStringLiteral("</th>");
    out += QStringLiteral("</tr></thead><tbody>\n");
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QString rowClass = rowClasses.value(i);
        out += rowClass.isEmpty()
                   ? QStringLiteral("<tr>")
                   : QStringLiteral("<tr class=\"") + rowClass + QStringLiteral("\">");
        for (const QString &cell : rows[i])
            out += QStringLiteral("<td>") + cell + QStringLiteral("</td>");
        out += QStringLiteral("</tr>\n");
    }
    return out + QStringLiteral("</tbody></table></div>\n");
}

QString figure(double value)
{
    if (std::isfinite(value) && value == std::trunc(value) && std::abs(value) < 1e15)
        return QString::number(qint64(value));
    return QString::number(value, 'f', 2);
}

} // namespace server::html
