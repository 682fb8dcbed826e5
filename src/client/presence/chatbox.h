#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class QTextBrowser;

namespace client {

class ChatLog;
struct ChatLine;

// The lobby chat box `txtChat`: a read-only rich-text view of the chat log, one line per line of
// the log, growing as the log does. Every line is: a line break, the time of day and two spaces;
// the sender's name in bold; "  >   "; the text and one space in the line's colour. Web
// addresses show as links, and each new line scrolls into view.
//
// When the user moves the caret or the selection (a click, the arrow keys), the word at the
// selection start is opened if it looks like a web address (see chatwords.h); lines being added
// never open anything.
class ChatBox : public QObject
{
    Q_OBJECT

public:
    // Opens an address with the system's default handler; tests put their own.
    using LinkOpener = std::function<void(const QString &address)>;
    static void openWithSystem(const QString &address);

    // Shows the lines the log holds already, then each line appended to it.
    ChatBox(QTextBrowser *txtChat, const ChatLog &log, LinkOpener opener = openWithSystem,
            QObject *parent = nullptr);

private:
    void showLine(const ChatLine &line);
    void onSelectionMoved();

    QPointer<QTextBrowser> m_txtChat;
    LinkOpener m_openLink;
    bool m_appending = false;
    int m_lastCheckedStart = -1; // dragging a selection does not open the same word again
};

} // namespace client
