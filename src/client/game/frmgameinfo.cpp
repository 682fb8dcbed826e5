#include "client/game/frmgameinfo.h"

#include "client/game/gameinfo.h"

#include <QHeaderView>
#include <QLabel>
#include <QStandardItemModel>
#include <QTreeView>

namespace client {

FrmGameInfo::FrmGameInfo(const GameInfo &info, QWidget *parent)
    : BorderlessWindow(
          {.objectName = "frmGameInfo", .title = QStringLiteral("Game Info"), .size = kSize},
          parent),
      m_info(info)
{
    playerList = addControl<QTreeView>("playerList", {10, 36, kSize.width() - 20, 150});
    playerList->setModel(info.playersModel());
    playerList->setRootIsDecorated(false);
    playerList->setSelectionMode(QAbstractItemView::NoSelection);
    playerList->setFocusPolicy(Qt::NoFocus);
    playerList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    playerList->header()->setStretchLastSection(false);
    playerList->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    playerList->header()->resizeSection(1, 60);

    roomNameLabel = makeLabel("roomNameLabel", 194);
    mapLabel = makeLabel("mapLabel", 214);
    gameTypeLabel = makeLabel("gameTypeLabel", 234);
    playersLabel = makeLabel("playersLabel", 254);
    passwordLabel = makeLabel("passwordLabel", 274);
    lockedLabel = makeLabel("lockedLabel", 294);
    timeLimitLabel = makeLabel("timeLimitLabel", 314);

    connect(&info, &GameInfo::changed, this, &FrmGameInfo::refresh);
    refresh();
}

QLabel *FrmGameInfo::makeLabel(const char *name, int y)
{
    auto *label = addLabel(name, QString(), {12, y, kSize.width() - 24, 18});
    label->setTextFormat(Qt::PlainText); // server names are not markup
    return label;
}

void FrmGameInfo::refresh()
{
    const GameInfoLabels labels = m_info.labels();
    roomNameLabel->setText(labels.roomName);
    roomNameLabel->setToolTip(labels.roomNameTip);
    mapLabel->setText(labels.map);
    mapLabel->setToolTip(labels.mapTip);
    gameTypeLabel->setText(labels.gameType);
    playersLabel->setText(labels.players);
    passwordLabel->setText(labels.password);
    lockedLabel->setText(labels.locked);
    timeLimitLabel->setText(labels.timeLimit);
}

} // namespace client
