#include "client/game/gamewindows.h"

#include "client/platform/gamewindowfinder.h"

namespace client {

bool GameWindows::rogueSpear() const
{
    return m_finder.windowExists(QStringLiteral("Rogue Spear"), QStringLiteral("Rogue Spear"),
                                 QStringLiteral("roguespear.exe"));
}

bool GameWindows::blackOps() const
{
    return m_finder.windowExists(QStringLiteral("Black Ops"), QStringLiteral("Black Ops"),
                                 QStringLiteral("R6BO.exe"));
}

} // namespace client
