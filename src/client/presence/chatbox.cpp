#include "client/presence/chatbox.h"

#include "client/presence/chatwords.h"
#include "client/presence/wirenumber.h"
#include "client/session/clock.h"

#include <QDesktopServices>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocument>
#include <QUrl>

namespace client {

namespace {

// A colour number in the 0x00BBGGRR form; anything that is not one is black.
QColor colourFromNumber(const QString &text)
{
    const std::optional<double> value = readWholeNumber(text);
    if (!value || *value < 0 || *value > 0xFFFFFFFF)
        return QColor(Qt::black);
    const auto bgr = quint32(*value);
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

QTextCharFormat plainFormat(const QColor &colour, bool bold)
{
    QTextCharFormat format;
    format.setForeground(colour);
    format.setFontWeight(bold ? QFont::Bold : QFont::Normal);
    return format;
}

// Inserts `text` in `format`, with its web addresses as links.
void insertWithLinks(QTextCursor &cursor, const QString &text, const QTextCharFormat &format)
{
    qsizetype done = 0;
    for (const TextSpan &span : findWebAddresses(text)) {
        cursor.insertText(text.mid(done, span.start - done), format);
        const QString address = text.mid(span.start, span.length);
        QTextCharFormat link = format;
        link.setAnchor(true);
        link.setAnchorHref(address);
        link.setForeground(QColor(Qt::blue));
        link.setFontUnderline(true);
        cursor.insertText(address, link);
        done = span.start + span.length;
    }
    cursor.insertText(text.mid(done), format);
}

} // namespace

void ChatBox::openWithSystem(const QString &address)
{
    QDesktopServices::openUrl(QUrl::fromUserInput(address));
}

ChatBox::ChatBox(QTextBrowser *txtChat, const Clock &clock, LinkOpener opener, QObject *parent)
    : QObject(parent), m_txtChat(txtChat), m_clock(clock), m_openLink(std::move(opener))
{
    txtChat->setReadOnly(true);
    txtChat->setUndoRedoEnabled(false);
    // Addresses open through the word under the caret, never by the browser's own navigation.
    txtChat->setOpenLinks(false);
    txtChat->setOpenExternalLinks(false);
    txtChat->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    connect(txtChat, &QTextEdit::cursorPositionChanged, this, &ChatBox::onSelectionMoved);
    connect(txtChat, &QTextEdit::selectionChanged, this, &ChatBox::onSelectionMoved);
}

void ChatBox::addChatLine(const QString &name, const QString &colour, const QString &text)
{
    if (!m_txtChat)
        return;
    const QScopedValueRollback appending(m_appending, true);
    const QColor black(Qt::black);
    QTextCursor cursor(m_txtChat->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QStringLiteral("\r\n") + chatTimeText(m_clock.now().time()) +
                          QStringLiteral("  "),
                      plainFormat(black, false));
    insertWithLinks(cursor, name, plainFormat(black, true));
    cursor.insertText(QStringLiteral("  >   "), plainFormat(black, false));
    insertWithLinks(cursor, text + u' ', plainFormat(colourFromNumber(colour), false));

    // The newest line is shown, even when the user had scrolled up or selected something.
    m_txtChat->setTextCursor(cursor);
    m_txtChat->ensureCursorVisible();
    QScrollBar *bar = m_txtChat->verticalScrollBar();
    bar->setValue(bar->maximum()); // past the caret's line: the box's bottom margin too
    m_lastCheckedStart = -1;
}

void ChatBox::onSelectionMoved()
{
    if (m_appending || !m_txtChat)
        return;
    const int start = m_txtChat->textCursor().selectionStart();
    if (start == m_lastCheckedStart)
        return;
    m_lastCheckedStart = start;
    const QString word = wordAtSelection(m_txtChat->document()->toRawText(), start);
    if (isOpenableWord(word) && m_openLink)
        m_openLink(word);
}

} // namespace client
