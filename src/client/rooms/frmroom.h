#pragma once

#include "client/ui/borderlesswindow.h"

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTreeView;

namespace client {

class RoomSession;
class RoomState;

// The room window: the members with their ready states, the room chat, the host's lock and
// Start, the member's Join, leaving and hiding. It shows the RoomState and hands the user's
// actions to the RoomSession; it keeps only the state the user last asked for on the ready
// toggle.
class FrmRoom : public BorderlessWindow
{
    Q_OBJECT

public:
    static constexpr QSize kSize{595, 408};

    FrmRoom(RoomState &room, RoomSession &session, QWidget *parent = nullptr);

    QLabel *Label1;              // "Room: NAME     Host: HOST"
    QLabel *lblStatus;           // "In chat" or "In game"
    QTreeView *lstRoom;          // the members, by name, the ready state as the icon
    QPlainTextEdit *txtRoomChat; // chat history
    QLineEdit *txtRoomChatSend;  // chat input
    PictureButton *Picture2;     // send the chat line
    QPushButton *Picture4;       // ready toggle
    QCheckBox *chkLock;          // host only
    QLineEdit *txtPassword;      // host only: the lock password
    QPushButton *picStartGame;   // host, while ready
    QPushButton *picJoinGame;    // member, while ready and the room is in game
    QPushButton *picLeaveRoom;   // leaves the room
    PictureButton *Picture5;     // hides the window, staying in the room

    // The state the ready toggle last asked for, 1 or 2; 1 whenever the window loads.
    int readyTag() const { return m_readyTag; }

Q_SIGNALS:
    // A member other than the user was picked in the member list: talk to him in private.
    void privateMessageRequested(const QString &name);

protected:
    // `Picture3`, the close button, leaves the room.
    void closeClicked() override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override; // the room chat takes the keyboard

private:
    void showState();
    void sendChat();
    void toggleReady();
    QPushButton *addButton(const char *name, const QString &text, QRect geometry);

    RoomState &m_room;
    RoomSession &m_session;
    int m_readyTag = 1;
};

} // namespace client
