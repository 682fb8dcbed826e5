#pragma once

#include "client/platform/tcptable.h"

#include <QString>

namespace client {

class Dialogs;
class GameWindows;

// Which game server the local game plays on (`findGameServer`): "host" when a game window
// exists and something listens on the game port, the remote address of an established
// connection to the game port, or "" (no game window, no such connection, no table).
class GameServerScan
{
public:
    GameServerScan(const GameWindows &windows, TcpTable &table, Dialogs &dialogs);

    QString findGameServer();

    // The scan of the table alone: the first row that listens on local port 2346 ("host") or
    // is established to remote port 2346 (its remote address) decides.
    static QString gameServerIn(const QList<TcpRow> &rows);
    // "CLOSED", "LISTEN", ... for the Windows state numbers 1 to 12; "" for any other.
    static QString stateName(int state);

private:
    const GameWindows &m_windows;
    TcpTable &m_table;
    Dialogs &m_dialogs;
};

} // namespace client
