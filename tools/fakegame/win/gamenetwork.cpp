#include "gamenetwork.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <cstdio>

namespace {

std::string socketError(const char *what, int error)
{
    return std::string(what) + ": Winsock error " + std::to_string(error);
}

void say(const std::string &line)
{
    std::fputs((line + '\n').c_str(), stdout);
    std::fflush(stdout);
}

} // namespace

GameNetwork::GameNetwork(HWND window, UINT message, ServerInfo info)
    : m_window(window), m_message(message), m_info(std::move(info))
{
}

GameNetwork::~GameNetwork()
{
    for (SOCKET socket : {m_listener, m_status, m_connection}) {
        if (socket != INVALID_SOCKET)
            closesocket(socket);
    }
    for (SOCKET socket : m_players)
        closesocket(socket);
}

std::string GameNetwork::host(const std::string &bindAddress, unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    if (!bindAddress.empty() && inet_pton(AF_INET, bindAddress.c_str(), &address.sin_addr) != 1)
        return "bad address: " + bindAddress;
    address.sin_port = htons(port);

    const std::string listenError = "cannot listen on TCP port " + std::to_string(port);
    m_listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (m_listener == INVALID_SOCKET)
        return socketError(listenError.c_str(), WSAGetLastError());
    // A game started again right after the last one must get its port back, even while the
    // old connections linger.
    const BOOL reuse = TRUE;
    setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char *>(&reuse),
               sizeof reuse);
    if (bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
        listen(m_listener, SOMAXCONN) != 0)
        return socketError(listenError.c_str(), WSAGetLastError());
    int size = sizeof address;
    getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size);
    m_info.hostPort = ntohs(address.sin_port);

    m_status = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (m_status == INVALID_SOCKET ||
        bind(m_status, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        return socketError(("cannot listen on UDP port " + std::to_string(m_info.hostPort)).c_str(),
                           WSAGetLastError());
    WSAAsyncSelect(m_listener, m_window, m_message, FD_ACCEPT);
    WSAAsyncSelect(m_status, m_window, m_message, FD_READ);

    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
    say("status " + std::string(text) + ' ' + std::to_string(m_info.hostPort));
    return {};
}

std::string GameNetwork::join(const std::string &address, unsigned short port)
{
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found) != 0 || !found)
        return "cannot find " + address;
    m_joining = address + ' ' + std::to_string(port);
    m_connection = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    std::string error;
    if (m_connection == INVALID_SOCKET) {
        error = socketError("cannot make a socket", WSAGetLastError());
    } else {
        WSAAsyncSelect(m_connection, m_window, m_message, FD_CONNECT | FD_READ | FD_CLOSE);
        if (connect(m_connection, found->ai_addr, int(found->ai_addrlen)) != 0 &&
            WSAGetLastError() != WSAEWOULDBLOCK)
            error = socketError(("cannot join " + m_joining).c_str(), WSAGetLastError());
    }
    freeaddrinfo(found);
    return error;
}

void GameNetwork::onEvent(SOCKET socket, LPARAM event)
{
    const int error = WSAGETSELECTERROR(event);
    switch (WSAGETSELECTEVENT(event)) {
    case FD_ACCEPT:
        acceptPlayers();
        break;
    case FD_CONNECT:
        if (error == 0) {
            say("joined " + m_joining);
        } else {
            std::fputs(
                ("fakegame: " + socketError(("cannot join " + m_joining).c_str(), error) + '\n')
                    .c_str(),
                stderr);
            std::fflush(stderr);
        }
        break;
    case FD_READ:
        if (socket == m_status) {
            answerQueries();
        } else {
            // What the other side sends is not looked at.
            char ignored[1024];
            recv(socket, ignored, sizeof ignored, 0);
        }
        break;
    case FD_CLOSE:
        closeSocket(socket);
        break;
    }
}

void GameNetwork::answerQueries()
{
    // One event may stand for several datagrams; read until none is left.
    for (;;) {
        char datagram[2048];
        sockaddr_in sender{};
        int senderSize = sizeof sender;
        const int size = recvfrom(m_status, datagram, sizeof datagram, 0,
                                  reinterpret_cast<sockaddr *>(&sender), &senderSize);
        if (size < 0) {
            // A datagram too long for the buffer is not a status query; others may follow.
            if (WSAGetLastError() == WSAEMSGSIZE)
                continue;
            return;
        }
        if (std::string_view(datagram, std::size_t(size)).find("\\status\\") ==
            std::string_view::npos)
            continue;
        const std::string reply =
            statusReply(withJoinedPlayers(m_info, m_players.size()), ++m_queries);
        sendto(m_status, reply.data(), int(reply.size()), 0,
               reinterpret_cast<const sockaddr *>(&sender), senderSize);
    }
}

void GameNetwork::acceptPlayers()
{
    for (;;) {
        sockaddr_in from{};
        int fromSize = sizeof from;
        const SOCKET player = accept(m_listener, reinterpret_cast<sockaddr *>(&from), &fromSize);
        if (player == INVALID_SOCKET)
            return;
        if (!hasRoom(m_info, m_players.size())) {
            say("player turned away, the game is full");
            closesocket(player);
            continue;
        }
        WSAAsyncSelect(player, m_window, m_message, FD_READ | FD_CLOSE);
        m_players.push_back(player);
        char text[INET_ADDRSTRLEN] = {};
        inet_ntop(AF_INET, &from.sin_addr, text, sizeof text);
        say("player joined from " + std::string(text));
    }
}

void GameNetwork::closeSocket(SOCKET socket)
{
    if (socket == m_connection)
        m_connection = INVALID_SOCKET;
    const auto player = std::find(m_players.begin(), m_players.end(), socket);
    if (player != m_players.end())
        m_players.erase(player);
    closesocket(socket);
}
