#include "client/rooms/frmroom.h"

#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"
#include "client/ui/showncolumns.h"

#include <QCheckBox>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTreeView>

namespace client {

namespace {
// What the password box holds until the host types another; sent as it is when the host locks
// without changing it.
const QString kPlaceholderPassword = QStringLiteral("lockword");
} // namespace

FrmRoom::FrmRoom(RoomState &room, RoomSession &session, QWidget *parent)
    : BorderlessWindow({.objectName = "frmRoom",
                        .title = QStringLiteral("Room"),
                        .size = kSize,
                        .titleLabelName = "Label1",
                        .closeButtonName = "Picture3",
                        .escapeCloses = false}, // leaving a room takes the button
                       parent),
      m_room(room), m_session(session)
{
    setAttribute(Qt::WA_DeleteOnClose, false);
    Label1 = titleLabel();
    Label1->setGeometry(10, 6, kSize.width() - 80, 20);
    closeButton()->setToolTip(tr("Leave the room"));

    Picture5 = addControl<PictureButton>("Picture5", {kSize.width() - 54, 4, 22, 22});
    Picture5->setPicture(Icons::button(QStringLiteral("hide")));
    Picture5->setToolTip(tr("Hide"));

    lblStatus = addLabel("lblStatus", {}, {10, 38, 180, 18});

    lstRoom = addControl<QTreeView>("lstRoom", {10, 60, 180, 236});
    lstRoom->setModel(new ShownColumns(room.members(), {0}, this));
    lstRoom->setRootIsDecorated(false);
    lstRoom->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstRoom->setSelectionMode(QAbstractItemView::SingleSelection);
    lstRoom->setIconSize({16, 16});
    lstRoom->setAccessibleName(tr("Players in the room"));
    lstRoom->viewport()->installEventFilter(this);

    Picture4 = addButton("Picture4", {}, {10, 302, 180, 28});

    txtRoomChat = addControl<QPlainTextEdit>("txtRoomChat", {200, 60, 385, 270});
    txtRoomChat->setReadOnly(true);
    txtRoomChat->setAccessibleName(tr("Room chat"));
    txtRoomChat->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtRoomChatSend = addControl<QLineEdit>("txtRoomChatSend", {200, 336, 349, 26});
    txtRoomChatSend->setAccessibleName(tr("Room chat message"));
    txtRoomChatSend->setMaxLength(75);
    Picture2 = addControl<PictureButton>("Picture2", {553, 336, 32, 26});
    Picture2->setPicture(Icons::button(QStringLiteral("send")));
    Picture2->setToolTip(tr("Send"));

    chkLock = addControl<QCheckBox>("chkLock", {10, 373, 250, 22});
    chkLock->setText(QStringLiteral("Lock the server whit a password"));
    txtPassword = addControl<QLineEdit>("txtPassword", {10, 336, 180, 26});
    txtPassword->setMaxLength(20);
    txtPassword->setToolTip(QStringLiteral("Lock password"));
    txtPassword->setAccessibleName(txtPassword->toolTip());
    txtPassword->setText(kPlaceholderPassword);

    picStartGame = addButton("picStartGame", tr("Start game"), {335, 370, 120, 28});
    picJoinGame = addButton("picJoinGame", tr("Join game"), {335, 370, 120, 28});
    picLeaveRoom = addButton("picLeaveRoom", tr("Leave room"), {465, 370, 120, 28});

    connect(Picture5, &QAbstractButton::clicked, this, &QWidget::hide);
    connect(Picture2, &QAbstractButton::clicked, this, &FrmRoom::sendChat);
    connect(txtRoomChatSend, &QLineEdit::returnPressed, this, &FrmRoom::sendChat);
    connect(Picture4, &QAbstractButton::clicked, this, &FrmRoom::toggleReady);
    connect(chkLock, &QAbstractButton::clicked, this,
            [this](bool checked) { m_session.setLocked(checked, txtPassword->text()); });
    connect(picStartGame, &QAbstractButton::clicked, &session, &RoomSession::startGame);
    connect(picJoinGame, &QAbstractButton::clicked, &session, &RoomSession::joinGame);
    connect(picLeaveRoom, &QAbstractButton::clicked, &session, &RoomSession::leave);

    connect(&room, &RoomState::changed, this, &FrmRoom::showState);
    connect(&room, &RoomState::chatCleared, txtRoomChat, &QPlainTextEdit::clear);
    connect(&room, &RoomState::chatInputCleared, txtRoomChatSend, &QLineEdit::clear);
    connect(&room, &RoomState::chatLineAdded, this, [this](const QString &line) {
        txtRoomChat->appendPlainText(line);
        txtRoomChat->verticalScrollBar()->setValue(txtRoomChat->verticalScrollBar()->maximum());
    });
    for (const QString &line : room.chatLines())
        txtRoomChat->appendPlainText(line);
    showState();
}

QPushButton *FrmRoom::addButton(const char *name, const QString &text, QRect geometry)
{
    auto *button = addControl<QPushButton>(name, geometry);
    button->setText(text);
    // Reached by Tab; a click leaves the keyboard in the room chat.
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

void FrmRoom::showState()
{
    Label1->setText(m_room.caption);
    setWindowTitle(m_room.caption.isEmpty() ? QStringLiteral("Room") : m_room.caption);
    lblStatus->setText(m_room.status);
    chkLock->setVisible(m_room.hostControls);
    txtPassword->setVisible(m_room.hostControls);
    picStartGame->setVisible(m_room.startShown);
    picJoinGame->setVisible(m_room.joinShown);
    Picture4->setText(m_readyTag == 1 ? tr("Ready") : tr("Not ready"));
}

void FrmRoom::sendChat()
{
    m_session.sendChat(txtRoomChatSend->text());
    txtRoomChatSend->clear();
}

void FrmRoom::toggleReady()
{
    m_readyTag = m_readyTag == 1 ? 2 : 1;
    m_session.askReady(m_readyTag);
    showState();
}

void FrmRoom::closeClicked()
{
    m_session.leave();
}

bool FrmRoom::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == lstRoom->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const QModelIndex current = lstRoom->currentIndex();
        if (current.isValid()) {
            const QString name = current.siblingAtColumn(0).data().toString();
            if (name != m_session.ownName())
                Q_EMIT privateMessageRequested(name);
        }
    }
    return BorderlessWindow::eventFilter(watched, event);
}

void FrmRoom::showEvent(QShowEvent *event)
{
    BorderlessWindow::showEvent(event);
    txtRoomChatSend->setFocus();
}

} // namespace client
