#pragma once

#include <QWidget>

class QAbstractItemView;
class QAction;
class QMenu;

namespace client {

class Dialogs;
class IgnoreList;
class LobbyConnection;
class PlayerListModel;
class SessionState;

// The player menu `frmMenu`: a window that is never shown and only holds the pop-up menu
// `mnuChatPopup` of the player list. A left click on another player opens the conversation
// with him; a right click pops up the menu. Every entry acts on the entry selected in the list
// at the moment it is chosen. Adding or removing a buddy is done here ("BA", "BR", the entry's
// buddy flag, bold and code), and so is ignoring a player or no longer ignoring him (the ignore
// list, which nothing on the server knows of); the other entries ask for their action through
// the signals.
class FrmMenu : public QWidget
{
    Q_OBJECT

public:
    FrmMenu(PlayerListModel &players, QAbstractItemView &ListView2, LobbyConnection &connection,
            const SessionState &session, Dialogs &dialogs, IgnoreList &ignored,
            QWidget *parent = nullptr);

    // The mouse button was released over the player list, at `globalPos`.
    void listClicked(Qt::MouseButton button, QPoint globalPos);

    QMenu *mnuChatPopup;
    QAction *mnuPrivateMessage;
    QAction *mnuViewStats;
    QAction *mnuGameInfo;
    QAction *mnuJoinGame;
    QAction *mnuAddBuddie;
    QAction *mnuIgnore;       // shown on a player not ignored
    QAction *mnuStopIgnoring; // shown on an ignored one

Q_SIGNALS:
    void privateMessageRequested(const QString &name);
    void statsPageRequested(const QString &id);
    void gameInfoRequested(const QString &address);
    void joinGameRequested(const QString &address);

private:
    // The model row of the selected player entry; -1 for none or a group row.
    int selectedPlayer() const;
    void changeBuddy();

    PlayerListModel &m_players;
    QAbstractItemView &m_view;
    LobbyConnection &m_connection;
    const SessionState &m_session;
    Dialogs &m_dialogs;
    IgnoreList &m_ignored;
};

} // namespace client
