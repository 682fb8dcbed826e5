#pragma once

#include "client/presence/sendrateguard.h"

#include <QObject>
#include <QPointer>

class QAbstractButton;
class QLineEdit;
class QTimer;

namespace client {

class LobbyConnection;

// The chat input `txtChatSend` and its send button `Picture3`. The box starts with a hint and
// the button disabled; the first focus on the box removes the hint and enables the button, once.
// Enter in the box or the button sends the line, trimmed of spaces, as "MD" — unless it is
// blank or the shared send-rate guard refuses it, in which case the line stays in the box and
// the button shows the seconds left to wait, disabled, until the guard would let it pass. An
// accepted line is cleared from the box even when it could not be sent (not connected).
//
// Characters that code page 1252 cannot carry are marked while typed: the box is tinted and
// its tool tip names them, as they will arrive as "?".
class ChatInput : public QObject
{
    Q_OBJECT

public:
    static QString hintText();
    static QString toolTipText();
    // The tool tip while the box holds `characters` that will arrive as "?".
    static QString uncarriedToolTip(const QString &characters);
    static constexpr int kWaitPollMs = 250;

    ChatInput(QLineEdit *txtChatSend, QAbstractButton *sendButton, LobbyConnection &connection,
              SendRateGuard guard, QObject *parent = nullptr);

    void send();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void markUncarried();
    void showWait();
    void endWait();

    QPointer<QLineEdit> m_input;
    QPointer<QAbstractButton> m_sendButton;
    LobbyConnection &m_connection;
    SendRateGuard m_guard;
    QTimer *m_waitTimer;
    QString m_sendToolTip;
    bool m_hintShown = true;
};

} // namespace client
