#pragma once

#include <QColor>
#include <QList>
#include <QObject>
#include <QString>
#include <QTime>
#include <optional>

namespace client {

class Clock;

// One line of the lobby chat: when it was added, who it is from, and its text in its colour.
struct ChatLine
{
    QTime time;
    QString name;
    QColor colour;
    QString text;
};

// The lines of the lobby chat in the order they were added: "MD" lines from the server and the
// program's own status lines, the newest `kMaxLines` of them; views watch `lineAppended`.
// Holds no widget, so the handlers that feed it never touch one.
class ChatLog : public QObject
{
    Q_OBJECT

public:
    static constexpr int kMaxLines = 1000;

    explicit ChatLog(const Clock &clock, QObject *parent = nullptr);

    // Appends one line stamped with the current time. `colour` is 0x00BBGGRR (255 is red);
    // none is black.
    void append(const QString &name, std::optional<quint32> colour, const QString &text);
    // Appends a line as it stands, with its own time (a line kept from an earlier session).
    void append(const ChatLine &line);

    const QList<ChatLine> &lines() const { return m_lines; }

Q_SIGNALS:
    void lineAppended(const client::ChatLine &line);

private:
    const Clock &m_clock;
    QList<ChatLine> m_lines;
};

} // namespace client
