#pragma once

#include "serverinfo.h"

// Winsock before the rest of Windows, which would bring in the old Winsock.
#include <winsock2.h>

#include <windows.h>

#include <string>
#include <vector>

// The game's connections over Winsock (started by the caller). A host listens on its TCP
// port, keeps joining players connected until they leave (turning them away when every slot is
// taken) and answers every "\status\" datagram on the UDP port of the same number, counting
// them; a client connects to a host. The sockets
// report to `window` as `message` (WSAAsyncSelect), which the window hands to onEvent().
// Progress goes to standard output as lines: "status ADDRESS PORT" once hosting,
// "player joined from ADDRESS" per player, "joined ADDRESS PORT" once connected.
class GameNetwork
{
public:
    GameNetwork(HWND window, UINT message, ServerInfo info);
    ~GameNetwork();
    GameNetwork(const GameNetwork &) = delete;
    GameNetwork &operator=(const GameNetwork &) = delete;

    // An error text, or empty. `bindAddress` empty: every address; port 0: any.
    std::string host(const std::string &bindAddress, unsigned short port);
    std::string join(const std::string &address, unsigned short port);
    void onEvent(SOCKET socket, LPARAM event);

private:
    void answerQueries();
    void acceptPlayers();
    void closeSocket(SOCKET socket);

    HWND m_window;
    UINT m_message;
    ServerInfo m_info;
    SOCKET m_listener = INVALID_SOCKET;
    SOCKET m_status = INVALID_SOCKET;
    SOCKET m_connection = INVALID_SOCKET;
    std::vector<SOCKET> m_players;
    std::string m_joining; // "ADDRESS PORT" while connecting
    int m_queries = 0;
};
