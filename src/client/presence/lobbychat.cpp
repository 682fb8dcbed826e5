#include "client/presence/lobbychat.h"

#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/chatinput.h"
#include "client/presence/chatlog.h"
#include "protocol/chat.h"

namespace client {

LobbyChat::LobbyChat(QTextBrowser *txtChat, QLineEdit *txtChatSend, QAbstractButton *Picture3,
                     LobbyConnection &connection, SessionState &session, const Clock &clock,
                     const IgnoreList &ignored, QObject *parent, ChatBox::LinkOpener opener)
    : QObject(parent), m_log(new ChatLog(clock, this)),
      m_input(ChatInput::forLobby(txtChatSend, Picture3, connection, SendRateGuard(session, clock),
                                  this)),
      m_ignored(ignored)
{
    new ChatBox(txtChat, *m_log, std::move(opener), this);
}

void LobbyChat::registerHandler(LobbyDispatcher &dispatcher)
{
    dispatcher.on<protocol::ChatLineToClient>([this](const protocol::ChatLineToClient &line) {
        if (!m_ignored.contains(line.name))
            addChatLine(line.name, line.colour, line.text);
    });
}

void LobbyChat::addChatLine(const QString &name, std::optional<quint32> colour, const QString &text)
{
    m_log->append(name, colour, text);
}

void LobbyChat::addStatusLine(const QString &text)
{
    addChatLine(statusSender(), 0, text);
}

} // namespace client
