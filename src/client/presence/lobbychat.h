#pragma once

#include "client/presence/chatbox.h"

#include <QObject>
#include <optional>

class QAbstractButton;
class QLineEdit;
class QTextBrowser;

namespace client {

class ChatInput;
class ChatLog;
class Clock;
class IgnoreList;
class LobbyConnection;
class LobbyDispatcher;
class SessionState;

// The lobby chat of the main window. Lines from the server ("MD") and the program's own status
// lines all go through `addChatLine` into the chat log; the chat box `txtChat` is a view that
// watches the log. The input `txtChatSend` and the send button `Picture3` send "MD". The
// widgets belong to the window. Lines of ignored players are dropped as they arrive.
class LobbyChat : public QObject
{
    Q_OBJECT

public:
    // The sender name of the program's own status lines.
    static QString statusSender() { return QStringLiteral("QUORVEL"); }

    LobbyChat(QTextBrowser *txtChat, QLineEdit *txtChatSend, QAbstractButton *Picture3,
              LobbyConnection &connection, SessionState &session, const Clock &clock,
              const IgnoreList &ignored, QObject *parent = nullptr,
              ChatBox::LinkOpener opener = ChatBox::openWithSystem);

    // Shows incoming "MD" lines.
    void registerHandler(LobbyDispatcher &dispatcher);

    // Appends one line; `colour` is 0x00BBGGRR, none is black.
    void addChatLine(const QString &name, std::optional<quint32> colour, const QString &text);
    // A status line of the program: "QUORVEL" in black.
    void addStatusLine(const QString &text);

    const ChatLog &log() const { return *m_log; }
    ChatLog &log() { return *m_log; }
    ChatInput &input() const { return *m_input; }

private:
    ChatLog *m_log;
    ChatInput *m_input;
    const IgnoreList &m_ignored;
};

} // namespace client
