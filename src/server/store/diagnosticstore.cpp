#include "server/store/diagnosticstore.h"

#include "server/core/serverlog.h"
#include "server/store/database.h"

#include <QSqlError>

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
    QSqlQuery prune(m_database.handle());
    prune.prepare(QStringLiteral("DELETE FROM diagnostics WHERE sender_id = ? AND id NOT IN "
                                 "(SELECT id FROM diagnostics WHERE sender_id = ? "
                                 "ORDER BY id DESC LIMIT ?)"));
    prune.addBindValue(senderId);
    prune.addBindValue(senderId);
    prune.addBindValue(kKeptPerSender);
    if (!query.exec() || !prune.exec()) {
        qCWarning(lcStore).noquote()
            << "diagnostic of" << senderId << "not stored:"
            << (query.lastError().isValid() ? query.lastError() : prune.lastError()).text();
        return false;
    }
    return true;
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
