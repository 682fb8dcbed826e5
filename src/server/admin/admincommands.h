#pragma once

#include <QTextStream>

namespace server {

class AccountStore;
struct AdminCommand;

// Runs one account command on the store, writing its result to `out` and problems to `err`.
// Returns the process exit code: 0 on success.
int runAdminCommand(const AdminCommand &command, AccountStore &accounts, QTextStream &out,
                    QTextStream &err);

} // namespace server
