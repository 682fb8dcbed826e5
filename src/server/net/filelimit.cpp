#include "server/net/filelimit.h"

#include <sys/resource.h>

namespace server {

long raiseOpenFileLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return -1;
    if (limit.rlim_cur < limit.rlim_max) {
        rlimit raised = limit;
        raised.rlim_cur = limit.rlim_max;
        if (setrlimit(RLIMIT_NOFILE, &raised) == 0)
            limit = raised;
    }
    return limit.rlim_cur == RLIM_INFINITY ? -1 : static_cast<long>(limit.rlim_cur);
}

} // namespace server
