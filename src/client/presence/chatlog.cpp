#include "client/presence/chatlog.h"

#include "client/session/clock.h"

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
    m_lines.append({m_clock.now().time(), name, colourFromNumber(colour), text});
    Q_EMIT lineAppended(m_lines.last());
}

} // namespace client
