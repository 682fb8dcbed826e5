#include "server/store/accountstore.h"

#include "server/store/database.h"
#include "server/store/playernames.h"

#include "server/core/serverlog.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace server {

namespace {
const QString kColumns =
    QStringLiteral("id, name, password_hash, email, moderator, chat_colour FROM accounts");

Account readAccount(const QSqlQuery &query)
{
    Account account;
    account.id = query.value(0).toInt();
    account.name = query.value(1).toString();
    account.passwordHash = query.value(2).toString().toLatin1();
    account.email = query.value(3).toString();
    account.moderator = query.value(4).toInt() != 0;
    account.chatColour = query.value(5).toInt();
    return account;
}

QString notNull(const QString &text)
{
    // QtSql binds a null QString as SQL NULL.
    return text.isNull() ? QStringLiteral("") : text;
}
} // namespace

AccountStore::AccountStore(Database &database) : m_database(database) {}

std::optional<Account> AccountStore::findByName(const QString &name) const
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" WHERE name_key = ?"));
    query.addBindValue(nameKey(name));
    if (!query.exec() || !query.next())
        return std::nullopt;
    return readAccount(query);
}

std::optional<Account> AccountStore::findById(int id) const
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" WHERE id = ?"));
    query.addBindValue(id);
    if (!query.exec() || !query.next())
        return std::nullopt;
    return readAccount(query);
}

std::optional<Account> AccountStore::create(const QString &name, const QByteArray &passwordHash,
                                            const QString &email)
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("INSERT INTO accounts (name, name_key, password_hash, email, "
                                 "created) VALUES (?, ?, ?, ?, ?)"));
    query.addBindValue(name);
    query.addBindValue(nameKey(name));
    query.addBindValue(QString::fromLatin1(passwordHash));
    query.addBindValue(notNull(email));
    query.addBindValue(QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    if (!query.exec()) {
        qCWarning(lcStore).noquote()
            << "account" << name << "not created:" << query.lastError().text();
        return std::nullopt;
    }
    Account account;
    account.id = query.lastInsertId().toInt();
    account.name = name;
    account.passwordHash = passwordHash;
    account.email = email;
    return account;
}

bool AccountStore::setPasswordHash(const QString &name, const QByteArray &passwordHash)
{
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("UPDATE accounts SET password_hash = ? WHERE name_key = ?"));
    query.addBindValue(QString::fromLatin1(passwordHash));
    query.addBindValue(nameKey(name));
    return query.exec() && query.numRowsAffected() == 1;
}

bool AccountStore::setModerator(const QString &name, bool moderator, std::optional<int> chatColour)
{
    QSqlQuery query(m_database.handle());
    if (chatColour) {
        query.prepare(QStringLiteral(
            "UPDATE accounts SET moderator = ?, chat_colour = ? WHERE name_key = ?"));
        query.addBindValue(moderator ? 1 : 0);
        query.addBindValue(*chatColour);
    } else {
        query.prepare(QStringLiteral("UPDATE accounts SET moderator = ? WHERE name_key = ?"));
        query.addBindValue(moderator ? 1 : 0);
    }
    query.addBindValue(nameKey(name));
    return query.exec() && query.numRowsAffected() == 1;
}

QList<Account> AccountStore::all() const
{
    QList<Account> accounts;
    QSqlQuery query(m_database.handle());
    query.prepare(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" ORDER BY id"));
    if (!query.exec())
        return accounts;
    while (query.next())
        accounts.append(readAccount(query));
    return accounts;
}

} // namespace server
