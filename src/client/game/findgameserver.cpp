#include "client/game/findgameserver.h"

#include "client/game/gameport.h"
#include "client/game/gamewindows.h"
#include "client/platform/dialogs.h"

#include <QStringList>

namespace client {

GameServerScan::GameServerScan(const GameWindows &windows, TcpTable &table, Dialogs &dialogs)
    : m_windows(windows), m_table(table), m_dialogs(dialogs)
{
}

QString GameServerScan::stateName(int state)
{
    static const QStringList names{
        QStringLiteral("CLOSED"),    QStringLiteral("LISTEN"),     QStringLiteral("SYN_SENT"),
        QStringLiteral("SYN_RCVD"),  QStringLiteral("ESTAB"),      QStringLiteral("FIN_WAIT1"),
        QStringLiteral("FIN_WAIT2"), QStringLiteral("CLOSE_WAIT"), QStringLiteral("CLOSING"),
        QStringLiteral("LAST_ACK"),  QStringLiteral("TIME_WAIT"),  QStringLiteral("DELETE_TCB")};
    return names.value(state - 1);
}

QString GameServerScan::gameServerIn(const QList<TcpRow> &rows)
{
    for (const TcpRow &row : rows) {
        const QString name = stateName(row.state);
        if (name == QLatin1String("LISTEN") && row.localPort == GamePort)
            return QStringLiteral("host");
        if (name == QLatin1String("ESTAB") && row.remotePort == GamePort) {
            const TcpRow::Address &a = row.remoteAddress;
            return QStringLiteral("%1.%2.%3.%4").arg(a[0]).arg(a[1]).arg(a[2]).arg(a[3]);
        }
    }
    return {};
}

QString GameServerScan::findGameServer()
{
    if (!m_windows.rogueSpear() && !m_windows.blackOps())
        return {};
    const TcpTable::Result table = m_table.read();
    if (table.status == TcpTable::Status::NotSupported) {
        m_dialogs.messageBox(applicationTitle(),
                             QStringLiteral("IP Helper is not supported by this system."));
        return {};
    }
    if (table.status != TcpTable::Status::Ok)
        return {};
    return gameServerIn(table.rows);
}

} // namespace client
