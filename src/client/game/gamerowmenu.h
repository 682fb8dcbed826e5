#pragma once

#include <QObject>
#include <QString>
#include <memory>

class QAction;
class QMenu;
class QTreeView;

namespace client {

class Dialogs;
class FullGameWatch;
class RoomListModel;
class SessionState;

// The menu a right-click on a running game's row of `ListView1` opens: "Join Game" while
// logged in, and "Tell me when there is room" on a full game the watch may take, or "Stop
// watching" on one it watches. It also answers a double-click on such a full game: the user
// is asked whether to be told when there is room instead of joining.
class GameRowMenu : public QObject
{
    Q_OBJECT

public:
    GameRowMenu(QTreeView &view, const RoomListModel &rooms, FullGameWatch &watch,
                const SessionState &session, Dialogs &dialogs, QObject *parent = nullptr);
    ~GameRowMenu() override;

    // Sets the entries up for `row`; false when there is nothing to show (a row of another kind).
    bool prepare(int row);
    QMenu &menu() const { return *m_menu; }
    QAction *joinEntry() const { return m_join; }
    QAction *watchEntry() const { return m_watch; }
    QAction *stopEntry() const { return m_stop; }

    // A double-click (or Enter) on `row` while the user may join: true when it is answered
    // here (the user chose to wait for room), false when the join goes ahead.
    bool answerDoubleClick(int row);

Q_SIGNALS:
    void joinRequested(const QString &address);

private:
    void popUp(const QPoint &position);

    QTreeView &m_view;
    const RoomListModel &m_rooms;
    FullGameWatch &m_gameWatch;
    const SessionState &m_session;
    Dialogs &m_dialogs;
    std::unique_ptr<QMenu> m_menu; // a widget, so not a child of this object
    QAction *m_join;
    QAction *m_watch;
    QAction *m_stop;
    QString m_address; // of the row the menu was set up for
};

} // namespace client
