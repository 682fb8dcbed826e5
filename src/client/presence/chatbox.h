#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class QTextBrowser;

namespace client {

class Clock;

// The lobby chat box `txtChat`: a read-only rich-text view that only grows, one line per
// `addChatLine`. Every line is: a line break, the time of day and two spaces; the sender's name
// in bold; "  >   "; the text and one space in the line's colour. Web addresses show as links.
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

    ChatBox(QTextBrowser *txtChat, const Clock &clock, LinkOpener opener = openWithSystem,
            QObject *parent = nullptr);

    // Appends one line. `colour` is a number in the 0x00BBGGRR form as decimal text ("255" is
    // red); a text that is not a number shows black.
    void addChatLine(const QString &name, const QString &colour, const QString &text);

private:
    void onSelectionMoved();

    QPointer<QTextBrowser> m_txtChat;
    const Clock &m_clock;
    LinkOpener m_openLink;
    bool m_appending = false;
    int m_lastCheckedStart = -1; // dragging a selection does not open the same word again
};

} // namespace client
