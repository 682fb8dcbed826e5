#include "client/platform/proctcptable.h"

#include <QFile>

#include <algorithm>
#include <cstring>

namespace client {

namespace {

// "0100007F:0929": an address printed as the native 32-bit words it is stored in, and a port.
// False for anything else, and for IPv6 addresses that are not IPv4 ones.
bool parseEndpoint(const QByteArray &text, TcpRow::Address &address, quint16 &port)
{
    const qsizetype colon = text.indexOf(':');
    const QByteArray hex = text.left(colon);
    if (colon < 0 || (hex.size() != 8 && hex.size() != 32))
        return false;
    bool ok = false;
    port = quint16(text.mid(colon + 1).toUInt(&ok, 16));
    if (!ok)
        return false;
    std::array<quint8, 16> bytes{};
    const qsizetype words = hex.size() / 8;
    for (qsizetype i = 0; i < words; ++i) {
        const quint32 word = hex.mid(i * 8, 8).toUInt(&ok, 16);
        if (!ok)
            return false;
        std::memcpy(bytes.data() + i * 4, &word, 4);
    }
    if (words == 4) {
        static constexpr std::array<quint8, 12> kMapped{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
        const bool unspecified =
            std::all_of(bytes.cbegin(), bytes.cend(), [](quint8 b) { return b == 0; });
        if (!unspecified && !std::equal(kMapped.cbegin(), kMapped.cend(), bytes.cbegin()))
            return false;
        std::memcpy(bytes.data(), bytes.data() + 12, 4);
    }
    std::memcpy(address.data(), bytes.data(), 4);
    return true;
}

// Appends the usable rows of one file; false when it cannot be read.
bool readFile(const QString &path, QList<TcpRow> &rows)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    file.readLine(); // the column titles
    while (!file.atEnd()) {
        const QList<QByteArray> columns = file.readLine().simplified().split(' ');
        if (columns.size() < 4)
            continue;
        TcpRow row;
        bool ok = false;
        row.state = ProcTcpTable::windowsState(int(columns.at(3).toUInt(&ok, 16)));
        if (ok && parseEndpoint(columns.at(1), row.localAddress, row.localPort) &&
            parseEndpoint(columns.at(2), row.remoteAddress, row.remotePort))
            rows.append(row);
    }
    return true;
}

} // namespace

ProcTcpTable::ProcTcpTable(QString procNetFolder) : m_folder(std::move(procNetFolder)) {}

int ProcTcpTable::windowsState(int linuxState)
{
    switch (linuxState) {
    case 0x01:
        return 5; // ESTABLISHED
    case 0x02:
        return 3; // SYN_SENT
    case 0x03:
        return 4; // SYN_RECV
    case 0x04:
        return 6; // FIN_WAIT1
    case 0x05:
        return 7; // FIN_WAIT2
    case 0x06:
        return 11; // TIME_WAIT
    case 0x07:
        return 1; // CLOSE
    case 0x08:
        return 8; // CLOSE_WAIT
    case 0x09:
        return 10; // LAST_ACK
    case 0x0A:
        return 2; // LISTEN
    case 0x0B:
        return 9; // CLOSING
    default:
        return 0;
    }
}

TcpTable::Result ProcTcpTable::read()
{
    Result result;
    if (!readFile(m_folder + QStringLiteral("/tcp"), result.rows)) {
        result.status = Status::NotSupported;
        return result;
    }
    readFile(m_folder + QStringLiteral("/tcp6"), result.rows); // absent without IPv6
    return result;
}

} // namespace client
