#include "server/core/serverlog.h"

#include <QStringList>

namespace server {

Q_LOGGING_CATEGORY(lcLobby, "quorvel.lobby", QtWarningMsg)
Q_LOGGING_CATEGORY(lcLogin, "quorvel.login", QtWarningMsg)
Q_LOGGING_CATEGORY(lcStore, "quorvel.store", QtWarningMsg)

namespace {

QtMessageHandler g_writer = nullptr; // the handler that writes what escapingHandler passes on

void escapingHandler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    g_writer(type, context, escapedLogText(message));
}

bool isControl(char16_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f);
}

} // namespace

QString escapedLogText(QStringView text)
{
    QString out;
    out.reserve(std::min(text.size(), kMaxLogTextChars + 1));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        QString piece;
        if (isControl(c))
            piece = QStringLiteral("\\x%1").arg(uint(c), 2, 16, QLatin1Char('0'));
        else if (c == 0x2028 || c == 0x2029)
            piece = QStringLiteral("\\u%1").arg(uint(c), 4, 16);
        else if (QChar::isHighSurrogate(c) && i + 1 < text.size())
            piece = text.sliced(i++, 2).toString();
        else
            piece = QChar(c);
        if (out.size() + piece.size() > kMaxLogTextChars) {
            out += QChar(0x2026);
            break;
        }
        out += piece;
    }
    return out;
}

bool setUpServerLog(const QString &level)
{
    static const QStringList levels{QStringLiteral("debug"), QStringLiteral("info"),
                                    QStringLiteral("warning"), QStringLiteral("error")};
    const qsizetype lowest = levels.indexOf(level);
    if (lowest < 0)
        return false;
    qSetMessagePattern(
        QStringLiteral("%{time yyyy-MM-ddThh:mm:ss.zzz} %{if-debug}debug%{endif}%{if-info}info"
                       "%{endif}%{if-warning}warning%{endif}%{if-critical}error%{endif}"
                       "%{if-fatal}fatal%{endif} %{category} %{message}"));
    QStringList rules;
    for (qsizetype i = 0; i < levels.size() - 1; ++i) {
        // Qt calls the error level "critical".
        rules.append(
            QStringLiteral("quorvel.*.%1=%2")
                .arg(levels[i], i >= lowest ? QStringLiteral("true") : QStringLiteral("false")));
    }
    QLoggingCategory::setFilterRules(rules.join(QLatin1Char('\n')));
    if (!g_writer)
        g_writer = qInstallMessageHandler(escapingHandler);
    return true;
}

RefusalLog::RefusalLog(Category category, int intervalMs)
    : m_category(category), m_intervalMs(intervalMs)
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { summarise(); });
}

RefusalLog::~RefusalLog()
{
    summarise();
}

void RefusalLog::refused(const QString &address, const QString &cause)
{
    std::pair key{address, cause};
    if (!m_counts.contains(key) && m_counts.size() >= kMaxAddresses)
        key.first = QStringLiteral("(other addresses)");
    const auto found = m_counts.find(key);
    if (found != m_counts.end()) {
        ++found.value();
        return;
    }
    m_counts.insert(key, 0);
    qCWarning(m_category).noquote() << "addr=" + key.first << "refused:" << cause;
    if (!m_timer.isActive())
        m_timer.start(m_intervalMs);
}

void RefusalLog::summarise()
{
    // A key stays while its refusals go on, so that they keep being counted rather than
    // logged; one quiet interval drops it, and the next refusal is logged at once again.
    for (auto it = m_counts.begin(); it != m_counts.end();) {
        if (it.value() == 0) {
            it = m_counts.erase(it);
            continue;
        }
        qCWarning(m_category).noquote()
            << "addr=" + it.key().first << "refused" << it.value() << "more times in"
            << m_intervalMs / 1000.0 << "s:" << it.key().second;
        it.value() = 0;
        ++it;
    }
    if (!m_counts.isEmpty())
        m_timer.start(m_intervalMs);
}

} // namespace server
