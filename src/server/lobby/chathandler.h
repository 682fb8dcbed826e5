#pragma once

namespace server {

class AccountLimits;
class DiagnosticStore;
class Lobby;
class MessageRouter;

// Lobby chat ("MD") and private messages ("PM"), which share one rate limit per account.
// Private messages to the service account are stored as client diagnostics.
class ChatHandler
{
public:
    ChatHandler(Lobby &lobby, DiagnosticStore &diagnostics, AccountLimits &limits);
    void registerWith(MessageRouter &router);

private:
    Lobby &m_lobby;
    DiagnosticStore &m_diagnostics;
    AccountLimits &m_limits;
};

} // namespace server
