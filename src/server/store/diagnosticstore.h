#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

namespace server {

class Database;

struct Diagnostic
{
    int senderId = 0;
    QDateTime received;
    QString text;
};

// Reports that clients address to the service account instead of a player. Only the newest
// kKeptPerSender of each sender are kept.
class DiagnosticStore
{
public:
    explicit DiagnosticStore(Database &database);

    static constexpr int kKeptPerSender = 100;

    bool add(int senderId, const QString &text, const QDateTime &received);
    QList<Diagnostic> all() const;

private:
    Database &m_database;
};

} // namespace server
