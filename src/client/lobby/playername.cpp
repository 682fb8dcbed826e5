#include "client/lobby/playername.h"

namespace client {

QString nameKey(const QString &name)
{
    // Compatibility folding before and after case folding, as the server does: case folding
    // can produce characters that have a compatibility form of their own.
    return name.normalized(QString::NormalizationForm_KC)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_KC);
}

} // namespace client
