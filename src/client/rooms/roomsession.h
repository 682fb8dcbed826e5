#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

namespace protocol {
struct MemberJoined;
struct MemberLeft;
struct RoomChat;
struct MemberReadyToClient;
struct RoomStatusToClient;
struct RoomRefused;
} // namespace protocol

namespace client {

class Dialogs;
class IgnoreList;
class LobbyConnection;
class LobbyDispatcher;
class RoomListModel;
class RoomState;
class SessionState;

// Being in a room: creating one as its host, joining a listed one (asking for the password of
// a locked one), and everything that happens inside it until the user leaves. Handles the
// room window's messages ("ÖT", "ÖB", "ÖM", "ÖR", "ÖS"), the refused join ("ÖW") and the
// refused room with its reason ("ÖN"), and sends the user's own ("AR", "ÖJ", "ÖM", "ÖR",
// "ÖS", "LR", "RR", "ÖL"). Every change lands in the RoomState the room window watches.
//
// The room window and the create-room button belong to the main window's side: this object
// asks for them through signals. So does starting the game, which the launcher does.
// Messages about the members and the chat are ignored while the user is in no room. Chat lines
// of ignored players are dropped.
class RoomSession : public QObject
{
    Q_OBJECT

public:
    // The user's own login name.
    using OwnName = std::function<QString()>;

    // Registers its handlers on `dispatcher`, until this object is destroyed.
    RoomSession(RoomState &room, RoomListModel &rooms, LobbyDispatcher &dispatcher,
                LobbyConnection &connection, SessionState &session, Dialogs &dialogs,
                const IgnoreList &ignored, OwnName ownName, QObject *parent = nullptr);
    ~RoomSession() override;

    QString ownName() const { return m_ownName(); }
    // Whether the user may create a room or join one: logged in and in no room, which is
    // also when the create-room button shows.
    bool canCreateOrJoin() const { return m_canCreateOrJoin; }

    // "Make room": opens the room with the user as its host, announced with the name as typed.
    void createRoom(const QString &roomName);
    // A double-click on row `row` of the room list: joins the room, or starts the game as a
    // client of a running game. The caller lets it through only while `canCreateOrJoin`.
    void joinRow(int row);

    // The room chat's send: a non-empty line goes out as typed. False when there was nothing
    // to send.
    bool sendChat(const QString &text);
    // The ready toggle: asks the server for a state (1 or 2).
    void askReady(int state);
    // The host's lock: locks with `password` when `locked`, opens the room otherwise.
    void setLocked(bool locked, const QString &password);
    // The host's Start: asks for the game server unless the room is in game already. The room
    // turns "In game" once the game runs, not on the click.
    void startGame();
    // The member's Join: starts the game as a client of the host.
    void joinGame();
    // Leaves the room (`picLeaveRoom_Click`): the host closes it, a member leaves it. Runs
    // whole even when nothing can be sent.
    void leave();
    // The room named `host` is closing: when it is the user's room, leave it.
    void roomClosing(const QString &host);

Q_SIGNALS:
    // The server refused something with a reason: a room, or, while logging in, the login.
    void refused(const QString &reason);
    void roomWindowShowRequested();
    // The room was left: the room window unloads.
    void roomWindowUnloadRequested();
    void createRoomButtonShown(bool shown);
    // Start the game as the server of the user's room.
    void gameServerStartRequested();
    // Start the game as a client of `address`.
    void gameClientStartRequested(const QString &address);
    // The host started the game while the user was ready: start it as a client of `address`
    // unless it runs already.
    void gameClientAutoStartRequested(const QString &address);

private:
    void onMemberJoined(const protocol::MemberJoined &message);
    void onMemberLeft(const protocol::MemberLeft &message);
    void onRoomChat(const protocol::RoomChat &message);
    void onMemberReady(const protocol::MemberReadyToClient &message);
    void onRoomStatus(const protocol::RoomStatusToClient &message);
    void onWrongPassword();
    void onRoomRefused(const protocol::RoomRefused &message);
    bool isHost() const;
    void sendRoomStatus();

    RoomState &m_room;
    RoomListModel &m_rooms;
    QPointer<LobbyDispatcher> m_dispatcher;
    LobbyConnection &m_connection;
    SessionState &m_session;
    Dialogs &m_dialogs;
    const IgnoreList &m_ignored;
    OwnName m_ownName;
    bool m_canCreateOrJoin = false;
};

} // namespace client
