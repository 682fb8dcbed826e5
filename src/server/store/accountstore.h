#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace server {

class Database;

struct Account
{
    int id = 0;
    QString name; // as first registered; the case-folded form is unique
    QByteArray passwordHash;
    QString email;
    bool moderator = false;
    int chatColour = 0; // 0x00BBGGRR
};

// Accounts of the lobby. Names are unique by their folded key (playernames.h); lookups by
// name fold too. Every write is its own committed transaction.
class AccountStore
{
public:
    explicit AccountStore(Database &database);

    std::optional<Account> findByName(const QString &name) const;
    std::optional<Account> findById(int id) const;
    // nullopt when the name is taken (in any case) or the write failed.
    std::optional<Account> create(const QString &name, const QByteArray &passwordHash,
                                  const QString &email = QString());
    bool setPasswordHash(const QString &name, const QByteArray &passwordHash);
    bool setModerator(const QString &name, bool moderator, std::optional<int> chatColour);
    QList<Account> all() const;

private:
    Database &m_database;
};

} // namespace server
