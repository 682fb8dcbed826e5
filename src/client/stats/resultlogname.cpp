#include "client/stats/resultlogname.h"

namespace client {

bool isResultLogName(const QString &fileName)
{
    static const QLatin1String prefix("RSResults");
    static const QLatin1String suffix(".log");
    return fileName.size() >= prefix.size() + 1 + suffix.size() && fileName.startsWith(prefix) &&
           fileName.endsWith(suffix) && fileName.at(prefix.size()) >= u'0' &&
           fileName.at(prefix.size()) <= u'9';
}

} // namespace client
