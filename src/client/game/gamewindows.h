#pragma once

#include <QString>

namespace client {

class GameWindowFinder;

// The two games' main windows, found by class and title (or, under Wine, by the executable
// the class is named after).
class GameWindows
{
public:
    explicit GameWindows(GameWindowFinder &finder) : m_finder(finder) {}

    bool rogueSpear() const;
    bool blackOps() const;

private:
    GameWindowFinder &m_finder;
};

} // namespace client
