#include "client/presence/chatlog.h"

#include "client/platform/clock.h"

namespace client {

namespace {

QColor colourFromNumber(std::optional<quint32> colour)
{
    if (!colour)
        return QColor(Qt::black);
    const quint32 bgr = *colour;
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

} // namespace

ChatLog::ChatLog(const Clock &clock, QObject *parent) : QObject(parent), m_clock(clock) {}

void ChatLog::append(const QString &name, std::optional<quint32> colour, const QString &text)
{
    append(ChatLine{m_clock.now().time(), name, colourFromNumber(colour), text});
}

void ChatLog::append(const ChatLine &line)
{
    if (m_lines.size() >= kMaxLines)
        m_lines.removeFirst();
    m_lines.append(line);
    Q_EMIT lineAppended(m_lines.last());
}

} // namespace client
