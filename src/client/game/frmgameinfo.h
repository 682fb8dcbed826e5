#pragma once

#include "client/ui/borderlesswindow.h"

class QLabel;
class QTreeView;

namespace client {

class GameInfo;

// The game-info window: the details and players of the game server queried last, dragged by its
// background and its title `Label2`. It only shows what `GameInfo` holds and follows its changes.
class FrmGameInfo : public BorderlessWindow
{
    Q_OBJECT

public:
    static constexpr QSize kSize{300, 340};

    explicit FrmGameInfo(const GameInfo &info, QWidget *parent = nullptr);

    QLabel *Label2 = titleLabel(); // title "Game Info"
    QTreeView *playerList;         // "Player", "Ping"
    QLabel *roomNameLabel;
    QLabel *mapLabel;
    QLabel *gameTypeLabel;
    QLabel *playersLabel;
    QLabel *passwordLabel;
    QLabel *lockedLabel;
    QLabel *timeLimitLabel;

private:
    void refresh();
    QLabel *makeLabel(const char *name, int y);

    const GameInfo &m_info;
};

} // namespace client
