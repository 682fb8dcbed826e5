#pragma once

#include "client/presence/sendrateguard.h"

#include <QObject>
#include <QPointer>
#include <functional>

class QAbstractButton;
class QLineEdit;
class QTimer;

namespace client {

class LobbyConnection;

// A chat input box and its send button: the lobby chat's `txtChatSend` and `Picture3`, the
// pager's `txtSkicka` and `Picture3`. With a hint, the box starts with it and the button
// disabled; the first focus on the box removes the hint and enables the button, once.
// Enter in the box or the button hands the line, trimmed of spaces, to the sender (the lobby
// chat's sends it as "MD") — unless it is blank or the shared send-rate guard refuses it, in
// which case the line stays in the box and the button shows the seconds left to wait,
// disabled, until the guard would let it pass. An accepted line is cleared from the box even
// when it could not be sent (not connected).
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

    // Sends an accepted line.
    using Sender = std::function<void(const QString &line)>;
    enum class Hint { Shown, None };

    ChatInput(QLineEdit *input, QAbstractButton *sendButton, SendRateGuard guard, Sender sender,
              Hint hint, QObject *parent = nullptr);
    // The lobby chat's: with the hint, lines sent as "MD".
    static ChatInput *forLobby(QLineEdit *txtChatSend, QAbstractButton *sendButton,
                               LobbyConnection &connection, SendRateGuard guard, QObject *parent);

    void send();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void markUncarried();
    void showWait();
    void endWait();

    QPointer<QLineEdit> m_input;
    QPointer<QAbstractButton> m_sendButton;
    SendRateGuard m_guard;
    Sender m_sender;
    QTimer *m_waitTimer;
    QString m_sendToolTip;
    bool m_hintShown;
    const QObject *m_watched; // the box, for telling its events apart
};

} // namespace client
