#pragma once

#include <QList>

#include <array>

namespace client {

// One connection of the machine's IPv4 TCP table. States are numbered as on Windows
// (1 CLOSED, 2 LISTEN, ... 5 ESTAB, ... 12 DELETE_TCB); addresses are their four bytes in
// network order (the first is the first octet), ports in host order.
struct TcpRow
{
    using Address = std::array<quint8, 4>;

    int state = 0;
    Address localAddress{};
    quint16 localPort = 0;
    Address remoteAddress{};
    quint16 remotePort = 0;

    bool operator==(const TcpRow &) const = default;
};

// The machine's IPv4 TCP connection table.
class TcpTable
{
public:
    enum class Status { Ok, NotSupported, ReadError };
    struct Result
    {
        Status status = Status::Ok;
        QList<TcpRow> rows; // in the platform's order
    };

    virtual ~TcpTable() = default;
    virtual Result read() = 0;
};

} // namespace client
