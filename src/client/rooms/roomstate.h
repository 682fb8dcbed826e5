#pragma once

#include <QObject>
#include <QStandardItemModel>
#include <QStringList>

namespace client {

// The room the user is in, as the room window shows it: the room's key and address, the
// user's own ready state, the texts and buttons of the window, the members and the room chat.
// The room messages and the user's actions change it (RoomSession); the window only watches
// it, so a window loaded at any time shows the room as it stands.
class RoomState : public QObject
{
    Q_OBJECT

public:
    static constexpr int IconRole = Qt::UserRole + 1; // on the name column: the member's state

    explicit RoomState(QObject *parent = nullptr);

    QString hostName;          // the room's key; "" while the user is in no room
    bool hideShowRoom = false; // in a room: the window hides and shows with the main window
    int playerReadyStatus = 0; // the user's state as the server last told it: 2 ready
    QString ipToGame;          // the host's address; the members' games connect to it
    QString caption = QStringLiteral("Room:");  // `Label1`
    QString status = QStringLiteral("In chat"); // `lblStatus`
    bool hostControls = false;                  // `txtPassword` and `chkLock`
    bool startShown = false;                    // `picStartGame`
    bool joinShown = false;                     // `picJoinGame`

    // Announces a change of the fields above.
    void notify() { Q_EMIT changed(); }

    // `lstRoom`: the name, then three columns that stay empty; kept in name order. A name
    // may be listed twice; lookups take the first row.
    QStandardItemModel &members() { return m_members; }
    QStringList memberNames() const;
    void addMember(const QString &name, int icon);
    void removeMember(const QString &name);
    void setMemberIcon(const QString &name, int icon);
    int memberIcon(const QString &name) const; // -1 when not listed

    const QStringList &chatLines() const { return m_chat; }
    void addChatLine(const QString &line);

    // Empties the member list and the chat.
    void clearRoom();
    // Empties the room chat's input box (joining a room starts with an empty one).
    void clearChatInput() { Q_EMIT chatInputCleared(); }
    // Back to a window that was never opened: no room, nothing shown.
    void reset();

Q_SIGNALS:
    void changed();
    void chatLineAdded(const QString &line);
    void chatCleared();
    void chatInputCleared();

private:
    int findMember(const QString &name) const;

    QStandardItemModel m_members;
    QStringList m_chat;
};

// The picture of a member state (1 not ready, 2 ready); a null icon for any other.
QIcon memberStateIcon(int state);

} // namespace client
