#pragma once

#include "client/presence/chatlog.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>

class QTextBrowser;
class QTextCursor;

namespace client {

// The lobby chat box `txtChat`: a read-only rich-text view of the newest lines of the chat log,
// one line per line of the log. Every line is: a line break, the time of day and two spaces;
// the sender's name in bold; "  >   "; the text and one space in the line's colour. Web
// addresses show as links, and each new line scrolls into view.
//
// Lines appended in one turn of the event loop are drawn together in the following turns, as
// one edit and one scroll per turn of at most `kLinesPerTurn` lines, and the box keeps the
// newest `kMaxLines`: a burst of thousands of lines never holds the loop for long.
//
// When the user moves the caret or the selection (a click, the arrow keys), the word at the
// selection start is opened if it looks like a web address (see chatwords.h); lines being added
// never open anything.
class ChatBox : public QObject
{
    Q_OBJECT

public:
    static constexpr int kMaxLines = ChatLog::kMaxLines;
    // Drawn in one turn of the event loop at most; more wait for the next turn.
    static constexpr int kLinesPerTurn = 250;

    // Opens an address with the system's default handler; tests put their own.
    using LinkOpener = std::function<void(const QString &address)>;
    static void openWithSystem(const QString &address);

    // Shows the lines the log holds already, then each line appended to it.
    ChatBox(QTextBrowser *txtChat, const ChatLog &log, LinkOpener opener = openWithSystem,
            QObject *parent = nullptr);

private:
    void queueLine(const ChatLine &line);
    void flush();
    void dropOldestLines(QTextCursor &cursor);
    void onSelectionMoved();

    QPointer<QTextBrowser> m_txtChat;
    LinkOpener m_openLink;
    QList<ChatLine> m_pending; // appended, not drawn yet
    bool m_flushQueued = false;
    bool m_appending = false;
    int m_lastCheckedStart = -1; // dragging a selection does not open the same word again
};

} // namespace client
