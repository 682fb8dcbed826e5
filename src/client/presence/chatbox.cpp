#include "client/presence/chatbox.h"

#include "client/presence/chatlog.h"
#include "client/presence/chatwords.h"

#include <QDesktopServices>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocument>
#include <QUrl>

namespace client {

namespace {

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

ChatBox::ChatBox(QTextBrowser *txtChat, const ChatLog &log, LinkOpener opener, QObject *parent)
    : QObject(parent), m_txtChat(txtChat), m_openLink(std::move(opener))
{
    txtChat->setReadOnly(true);
    txtChat->setUndoRedoEnabled(false);
    // Addresses open through the word under the caret, never by the browser's own navigation.
    txtChat->setOpenLinks(false);
    txtChat->setOpenExternalLinks(false);
    txtChat->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    connect(txtChat, &QTextEdit::cursorPositionChanged, this, &ChatBox::onSelectionMoved);
    connect(txtChat, &QTextEdit::selectionChanged, this, &ChatBox::onSelectionMoved);
    for (const ChatLine &line : log.lines())
        queueLine(line);
    connect(&log, &ChatLog::lineAppended, this, &ChatBox::queueLine);
}

void ChatBox::queueLine(const ChatLine &line)
{
    m_pending.append(line);
    // Lines that would be pushed out of the box by the same batch are never drawn.
    if (m_pending.size() > kMaxLines)
        m_pending.removeFirst();
    if (m_flushQueued)
        return;
    m_flushQueued = true;
    QMetaObject::invokeMethod(this, &ChatBox::flush, Qt::QueuedConnection);
}

void ChatBox::flush()
{
    m_flushQueued = false;
    if (!m_txtChat || m_pending.isEmpty())
        return;
    const QScopedValueRollback appending(m_appending, true);
    const QColor black(Qt::black);
    QTextDocument *document = m_txtChat->document();
    QTextCursor cursor(document);
    cursor.beginEditBlock();
    cursor.movePosition(QTextCursor::End);
    const qsizetype count = std::min<qsizetype>(m_pending.size(), kLinesPerTurn);
    for (qsizetype i = 0; i < count; ++i) {
        const ChatLine &line = m_pending.at(i);
        cursor.insertText(QStringLiteral("\r\n") + chatTimeText(line.time) + QStringLiteral("  "),
                          plainFormat(black, false));
        insertWithLinks(cursor, line.name, plainFormat(black, true));
        cursor.insertText(QStringLiteral("  >   "), plainFormat(black, false));
        insertWithLinks(cursor, line.text + u' ', plainFormat(line.colour, false));
    }
    m_pending.remove(0, count);
    dropOldestLines(cursor);
    cursor.endEditBlock();
    if (!m_pending.isEmpty()) {
        m_flushQueued = true;
        QMetaObject::invokeMethod(this, &ChatBox::flush, Qt::QueuedConnection);
    }

    // The newest line is shown, even when the user had scrolled up or selected something.
    cursor.movePosition(QTextCursor::End);
    m_txtChat->setTextCursor(cursor);
    m_txtChat->ensureCursorVisible();
    QScrollBar *bar = m_txtChat->verticalScrollBar();
    bar->setValue(bar->maximum()); // past the caret's line: the box's bottom margin too
    m_lastCheckedStart = -1;
}

void ChatBox::dropOldestLines(QTextCursor &cursor)
{
    // Block 0 is the empty line the box starts with; each chat line is one block after it.
    QTextDocument *document = cursor.document();
    const int excess = document->blockCount() - 1 - kMaxLines;
    if (excess <= 0)
        return;
    cursor.setPosition(0);
    cursor.setPosition(document->findBlockByNumber(excess).position() +
                           document->findBlockByNumber(excess).length() - 1,
                       QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
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
        m_openLink(addressInWord(word));
}

} // namespace client
