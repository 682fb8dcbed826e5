#pragma once

#include <QString>

namespace client {

// Whether a game's main window exists, as FindWindow with a class and a title would say.
class GameWindowFinder
{
public:
    virtual ~GameWindowFinder() = default;

    // A top-level window whose title is `title` and whose class is `windowClass` or, as Wine
    // names it, the game's executable file name `executable`.
    virtual bool windowExists(const QString &windowClass, const QString &title,
                              const QString &executable) = 0;
};

} // namespace client
