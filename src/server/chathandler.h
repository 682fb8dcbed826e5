#pragma once

namespace server {

class Clock;
class DiagnosticStore;
class Lobby;
class MessageRouter;

// Lobby chat ("MD") and private messages ("PM"), which share one rate limit per player.
// Private messages to the service account are stored as client diagnostics.
class ChatHandler
{
public:
    static constexpr int kMaxChatBytes = 512;

    ChatHandler(Lobby &lobby, DiagnosticStore &diagnostics, const Clock &clock);
    void registerWith(MessageRouter &router);

private:
    Lobby &m_lobby;
    DiagnosticStore &m_diagnostics;
    const Clock &m_clock;
};

} // namespace server
