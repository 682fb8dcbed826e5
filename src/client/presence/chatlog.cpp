#include "client/presence/chatlog.h"

#include "client/presence/wirenumber.h"
#include "client/session/clock.h"

namespace client {

namespace {

QColor colourFromNumber(const QString &text)
{
    const std::optional<double> value = readWholeNumber(text);
    if (!value || *value < 0 || *value > 0xFFFFFFFF)
        return QColor(Qt::black);
    const auto bgr = quint32(*value);
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

} // namespace

ChatLog::ChatLog(const Clock &clock, QObject *parent) : QObject(parent), m_clock(clock) {}

void ChatLog::append(const QString &name, const QString &colour, const QString &text)
{
    m_lines.append({m_clock.now().time(), name, colourFromNumber(colour), text});
    Q_EMIT lineAppended(m_lines.last());
}

} // namespace client
