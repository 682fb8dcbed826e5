#include "client/platform/casepath.h"

#include <QDir>
#include <QFileInfo>

namespace client {

QString resolveCaseInsensitive(const QString &folder, const QString &windowsPath)
{
    QString current = QDir::cleanPath(folder);
    const QStringList parts = QString(windowsPath)
                                  .replace(QLatin1Char('\\'), QLatin1Char('/'))
                                  .split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const QString exact = current + QLatin1Char('/') + part;
        if (QFileInfo::exists(exact)) {
            current = exact;
            continue;
        }
        QString match;
        const QStringList entries =
            QDir(current).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        for (const QString &entry : entries) {
            if (entry.compare(part, Qt::CaseInsensitive) == 0) {
                match = entry;
                break;
            }
        }
        current += QLatin1Char('/') + (match.isEmpty() ? part : match);
    }
    return QDir::toNativeSeparators(current);
}

} // namespace client
