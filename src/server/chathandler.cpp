#include "server/chathandler.h"

#include "server/announcements.h"
#include "server/clock.h"
#include "server/diagnosticstore.h"
#include "server/lobby.h"
#include "server/messagerouter.h"
#include "server/serviceaccount.h"
#include "server/session.h"

#include <QDateTime>

namespace server {

using protocol::Code;
using protocol::Message;

ChatHandler::ChatHandler(Lobby &lobby, DiagnosticStore &diagnostics, const Clock &clock)
    : m_lobby(lobby), m_diagnostics(diagnostics), m_clock(clock)
{
}

void ChatHandler::registerWith(MessageRouter &router)
{
    router.setHandler(Code::ChatLine, [this](Session &sender, const Message &message) {
        Player &player = sender.player();
        if (!player.chatLimit.tryAcquire(m_clock.nowMs()))
            return;
        m_lobby.broadcast(
            protocol::buildMessage(Code::ChatLine, {player.name, QString::number(player.chatColour),
                                                    relayText(message.field(0), kMaxChatBytes)}));
    });

    router.setHandler(Code::PrivateMessage, [this](Session &sender, const Message &message) {
        Player &player = sender.player();
        if (!player.chatLimit.tryAcquire(m_clock.nowMs()))
            return;
        const QString recipient = message.field(0);
        const QString text = relayText(message.field(1), message.field(1).size());
        if (recipient == kServiceAccountName) {
            m_diagnostics.add(player.accountId, text, QDateTime::currentDateTimeUtc());
            return;
        }
        const Session *target = m_lobby.findByName(recipient);
        if (!target)
            return;
        target->send(
            protocol::buildMessage(Code::PrivateMessage, {player.name, text, QStringLiteral("0")}));
        sender.send(
            protocol::buildMessage(Code::PrivateMessage, {recipient, text, QStringLiteral("1")}));
    });
}

} // namespace server
