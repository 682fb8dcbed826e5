#include "server/diagnosticstore.h"

#include "server/database.h"

#include <QSqlQuery>
#include <QVariant>

namespace server {

DiagnosticStore::DiagnosticStore(Database &database) : m_database(database) {}

bool DiagnosticStore::add(int senderId, const QString &text, const QDateTime &received)
{
    QSqlQuery query(m_database.handle());
    query.prepare(
        QStringLiteral("INSERT INTO diagnostics (sender_id, received, text) VALUES (?, ?, ?)"));
    query.addBindValue(senderId);
    query.addBindValue(received.toUTC().toString(Qt::ISODateWithMs));
    query.addBindValue(text.isNull() ? QStringLiteral("") : text); // null binds as NULL
    return query.exec();
}

QList<Diagnostic> DiagnosticStore::all() const
{
    QList<Diagnostic> rows;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT sender_id, received, text FROM diagnostics ORDER BY id"));
    if (!query.exec())
        return rows;
    while (query.next()) {
        rows.append({query.value(0).toInt(),
                     QDateTime::fromString(query.value(1).toString(), Qt::ISODateWithMs),
                     query.value(2).toString()});
    }
    return rows;
}

} // namespace server
