#pragma once

#include "client/platform/tcptable.h"

#include <QString>

namespace client {

// The TCP table on Linux: "tcp" and, for its IPv4-mapped and unspecified rows (sockets that
// serve IPv4 through IPv6), "tcp6" of /proc/net, their states mapped to the Windows numbers.
// Not supported when "tcp" cannot be opened; the table never fails otherwise (unreadable rows
// are left out).
class ProcTcpTable final : public TcpTable
{
public:
    explicit ProcTcpTable(QString procNetFolder = QStringLiteral("/proc/net"));

    Result read() override;

    // The Windows state number of a Linux TCP state (the hex "st" column); 0 for none.
    static int windowsState(int linuxState);

private:
    QString m_folder;
};

} // namespace client
