#pragma once

#include <QWidget>

class QLabel;
class QTreeView;

namespace client {

class GameInfo;
class PictureButton;

// The game-info window: the details and players of the game server queried last. A
// borderless window, dragged by its background and its title `Label2`; it only shows what
// `GameInfo` holds and follows its changes.
class FrmGameInfo : public QWidget
{
    Q_OBJECT

public:
    static constexpr QSize kSize{300, 340};

    explicit FrmGameInfo(const GameInfo &info, QWidget *parent = nullptr);

    QLabel *Label2; // title "Game Info"
    PictureButton *closeButton;
    QTreeView *playerList; // "Player", "Ping"
    QLabel *roomNameLabel;
    QLabel *mapLabel;
    QLabel *gameTypeLabel;
    QLabel *playersLabel;
    QLabel *passwordLabel;
    QLabel *lockedLabel;
    QLabel *timeLimitLabel;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void refresh();
    QLabel *makeLabel(const char *name, int y);

    const GameInfo &m_info;
};

} // namespace client
