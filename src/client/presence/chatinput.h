#pragma once

#include "client/presence/sendrateguard.h"

#include <QObject>
#include <QPointer>

class QAbstractButton;
class QLineEdit;

namespace client {

class LobbyConnection;

// The chat input `txtChatSend` and its send button `Picture3`. The box starts with a hint and
// the button disabled; the first focus on the box removes the hint and enables the button, once.
// Enter in the box or the button sends the line, trimmed of spaces, as "MD" — unless it is
// blank or the shared send-rate guard refuses it, in which case nothing changes at all. An
// accepted line is cleared from the box even when it could not be sent (not connected).
class ChatInput : public QObject
{
    Q_OBJECT

public:
    static QString hintText();
    static QString toolTipText();

    ChatInput(QLineEdit *txtChatSend, QAbstractButton *sendButton, LobbyConnection &connection,
              SendRateGuard guard, QObject *parent = nullptr);

    void send();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QLineEdit> m_input;
    QPointer<QAbstractButton> m_sendButton;
    LobbyConnection &m_connection;
    SendRateGuard m_guard;
};

} // namespace client
