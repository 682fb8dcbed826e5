#include "client/game/frmgameinfo.h"

#include "client/game/gameinfo.h"
#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"
#include "client/ui/windowframe.h"

#include <QHeaderView>
#include <QLabel>
#include <QStandardItemModel>
#include <QTreeView>

namespace client {

FrmGameInfo::FrmGameInfo(const GameInfo &info, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint), m_info(info)
{
    setObjectName(QStringLiteral("frmGameInfo"));
    setWindowTitle(QStringLiteral("Game Info"));
    resize(kSize);

    Label2 = new QLabel(QStringLiteral("Game Info"), this);
    Label2->setObjectName(QStringLiteral("Label2"));
    QFont bold = Label2->font();
    bold.setBold(true);
    Label2->setFont(bold);
    Label2->setGeometry(10, 6, kSize.width() - 50, 20);

    closeButton = new PictureButton(this);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    closeButton->setPicture(Icons::button(QStringLiteral("close")));
    closeButton->setGeometry(kSize.width() - 28, 4, 22, 22);
    connect(closeButton, &QAbstractButton::clicked, this, &QWidget::close);

    playerList = new QTreeView(this);
    playerList->setObjectName(QStringLiteral("playerList"));
    playerList->setModel(info.playersModel());
    playerList->setRootIsDecorated(false);
    playerList->setSelectionMode(QAbstractItemView::NoSelection);
    playerList->setFocusPolicy(Qt::NoFocus);
    playerList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    playerList->header()->setStretchLastSection(false);
    playerList->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    playerList->header()->resizeSection(1, 60);
    playerList->setGeometry(10, 36, kSize.width() - 20, 150);

    roomNameLabel = makeLabel("roomNameLabel", 194);
    mapLabel = makeLabel("mapLabel", 214);
    gameTypeLabel = makeLabel("gameTypeLabel", 234);
    playersLabel = makeLabel("playersLabel", 254);
    passwordLabel = makeLabel("passwordLabel", 274);
    lockedLabel = makeLabel("lockedLabel", 294);
    timeLimitLabel = makeLabel("timeLimitLabel", 314);

    connect(&info, &GameInfo::changed, this, &FrmGameInfo::refresh);
    refresh();
    DragHandle::install(this, {Label2});
}

QLabel *FrmGameInfo::makeLabel(const char *name, int y)
{
    auto *label = new QLabel(this);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText); // server names are not markup
    label->setGeometry(12, y, kSize.width() - 24, 18);
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

void FrmGameInfo::paintEvent(QPaintEvent *)
{
    paintWindowFrame(*this);
}

} // namespace client
