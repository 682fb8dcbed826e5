#include "client/presence/chatinput.h"

#include "client/lobby/lobbyconnection.h"
#include "client/session/blanks.h"
#include "protocol/chat.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>

namespace client {

QString ChatInput::hintText()
{
    return QStringLiteral("Type message here and press ENTER");
}

QString ChatInput::toolTipText()
{
    return QStringLiteral("Enter message and press ENTER");
}

ChatInput::ChatInput(QLineEdit *txtChatSend, QAbstractButton *sendButton,
                     LobbyConnection &connection, SendRateGuard guard, QObject *parent)
    : QObject(parent), m_input(txtChatSend), m_sendButton(sendButton), m_connection(connection),
      m_guard(guard)
{
    txtChatSend->setText(hintText());
    txtChatSend->setToolTip(toolTipText());
    sendButton->setEnabled(false);
    txtChatSend->installEventFilter(this);
    connect(sendButton, &QAbstractButton::clicked, this, &ChatInput::send);
}

void ChatInput::send()
{
    if (!m_input)
        return;
    const QString line = trimBlanks(m_input->text()).toString();
    if (line.isEmpty() || !m_guard.tryPass())
        return;
    m_connection.send(protocol::ChatLineToServer{line});
    m_input->clear();
}

bool ChatInput::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_input)
        return false;
    if (event->type() == QEvent::FocusIn && m_sendButton && !m_sendButton->isEnabled()) {
        m_sendButton->setEnabled(true);
        m_input->clear();
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            send();
            return true;
        }
    }
    return false;
}

} // namespace client
