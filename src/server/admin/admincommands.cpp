#include "server/admin/admincommands.h"

#include "server/admin/serveroptions.h"
#include "server/store/accountstore.h"
#include "server/store/passwordhash.h"
#include "server/store/playernames.h"

namespace server {

int runAdminCommand(const AdminCommand &command, AccountStore &accounts, QTextStream &out,
                    QTextStream &err)
{
    switch (command.kind) {
    case AdminCommand::Kind::Add: {
        if (const QString problem = nameProblem(command.name); !problem.isEmpty()) {
            err << problem << '\n';
            return 2;
        }
        if (command.password.isEmpty()) {
            err << "a password is needed\n";
            return 2;
        }
        if (accounts.findByName(command.name)) {
            err << "an account named " << command.name << " exists already\n";
            return 1;
        }
        const QByteArray hash = hashPassword(command.password);
        const std::optional<Account> account =
            hash.isEmpty() ? std::nullopt : accounts.create(command.name, hash, command.email);
        if (!account) {
            err << "could not add " << command.name << '\n';
            return 1;
        }
        out << "added " << account->name << " with id " << account->id << '\n';
        return 0;
    }
    case AdminCommand::Kind::Password: {
        if (command.password.isEmpty()) {
            err << "the password may not be empty\n";
            return 2;
        }
        const QByteArray hash = hashPassword(command.password);
        if (hash.isEmpty() || !accounts.setPasswordHash(command.name, hash)) {
            err << "no account named " << command.name << '\n';
            return 1;
        }
        out << "password of " << command.name << " changed\n";
        return 0;
    }
    case AdminCommand::Kind::Moderator:
        if (!accounts.setModerator(command.name, command.moderator, command.chatColour)) {
            err << "no account named " << command.name << '\n';
            return 1;
        }
        out << command.name << (command.moderator ? " is" : " is not") << " a moderator\n";
        return 0;
    case AdminCommand::Kind::List:
        out << "id\tname\tmoderator\tcolour\te-mail\n";
        for (const Account &a : accounts.all()) {
            out << a.id << '\t' << a.name << '\t' << (a.moderator ? "yes" : "no") << '\t'
                << a.chatColour << '\t' << a.email << '\n';
        }
        return 0;
    }
    return 2;
}

} // namespace server
