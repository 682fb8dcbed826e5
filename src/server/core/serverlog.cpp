#include "server/core/serverlog.h"

#include <QStringList>

namespace server {

Q_LOGGING_CATEGORY(lcLobby, "quorvel.lobby", QtWarningMsg)
Q_LOGGING_CATEGORY(lcLogin, "quorvel.login", QtWarningMsg)
Q_LOGGING_CATEGORY(lcStore, "quorvel.store", QtWarningMsg)

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
    return true;
}

} // namespace server
