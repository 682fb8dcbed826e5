#include "server/store/playernames.h"

#include "server/store/serviceaccount.h"

namespace server {

QString nameKey(const QString &name)
{
    // Compatibility folding before and after case folding: case folding can produce
    // characters that have a compatibility form of their own.
    return name.normalized(QString::NormalizationForm_KC)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_KC);
}

QString nameProblem(const QString &name)
{
    if (name.isEmpty())
        return QStringLiteral("the name is empty");
    if (name.size() > kMaxNameLength)
        return QStringLiteral("the name is longer than %1 characters").arg(kMaxNameLength);
    for (const QChar c : name) {
        if (!c.isLetterOrNumber() && !QStringView(kNameMarks).contains(c))
            return QStringLiteral("the name may hold only letters, digits and %1")
                .arg(QString::fromUtf16(kNameMarks));
    }
    if (nameKey(name) == nameKey(kServiceAccountName))
        return QStringLiteral("the name is reserved");
    return {};
}

} // namespace server
