#include "server/lobby/chathandler.h"

#include "protocol/chat.h"
#include "server/lobby/accountlimits.h"
#include "server/lobby/announcements.h"
#include "server/lobby/lobby.h"
#include "server/net/messagerouter.h"
#include "server/net/session.h"
#include "server/store/diagnosticstore.h"
#include "server/store/serviceaccount.h"

#include <QDateTime>

namespace server {

using namespace protocol;

namespace {
const QString kChat = QStringLiteral("chat");
} // namespace

ChatHandler::ChatHandler(Lobby &lobby, DiagnosticStore &diagnostics, AccountLimits &limits)
    : m_lobby(lobby), m_diagnostics(diagnostics), m_limits(limits)
{
}

void ChatHandler::registerWith(MessageRouter &router)
{
    router.on<ChatLineToServer>([this](Session &sender, const ChatLineToServer &line) {
        Player &player = sender.player();
        if (!m_limits.tryAcquire(player.accountId, kChat, AccountLimits::kChat))
            return;
        m_lobby.broadcast(ChatLineToClient{.name = player.name,
                                           .colour = quint32(player.chatColour),
                                           .text = relayText(line.text, kMaxChatBytes)}
                              .encode());
    });

    router.on<PrivateMessageToServer>([this](Session &sender,
                                             const PrivateMessageToServer &message) {
        Player &player = sender.player();
        if (!m_limits.tryAcquire(player.accountId, kChat, AccountLimits::kChat))
            return;
        const QString text = relayText(message.text, kMaxPrivateBytes);
        if (message.recipient == kServiceAccountName) {
            m_diagnostics.add(player.accountId, text, QDateTime::currentDateTimeUtc());
            return;
        }
        const Session *target = m_lobby.findByName(message.recipient);
        if (!target)
            return;
        target->send(
            PrivateMessageToClient{.partner = player.name, .text = text, .echo = false}.encode());
        sender.send(PrivateMessageToClient{.partner = message.recipient, .text = text, .echo = true}
                        .encode());
    });
}

} // namespace server
