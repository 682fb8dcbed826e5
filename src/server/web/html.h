#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// The little HTML the web pages need. Everything that came from a player goes through text();
// attributes are always double-quoted, which text() escapes.
namespace server::html {

inline QString text(const QString &plain)
{
    return plain.toHtmlEscaped();
}

// A whole HTML5 document in UTF-8, readable on a phone, without scripts.
QByteArray document(const QString &title, const QString &body);

// A table of ready HTML cells; `rowClasses` (optional, per row) become the rows' classes.
QString table(const QStringList &headers, const QList<QStringList> &rows,
              const QStringList &rowClasses = {});

// A number as a figure: whole numbers without a fraction, others with two decimals.
QString figure(double value);

} // namespace server::html
