#include "client/game/gamerowmenu.h"

#include "client/game/fullgamewatch.h"
#include "client/platform/dialogs.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"

#include <QMenu>
#include <QTreeView>

namespace client {

GameRowMenu::GameRowMenu(QTreeView &view, const RoomListModel &rooms, FullGameWatch &watch,
                         const SessionState &session, Dialogs &dialogs, QObject *parent)
    : QObject(parent), m_view(view), m_rooms(rooms), m_gameWatch(watch), m_session(session),
      m_dialogs(dialogs), m_menu(std::make_unique<QMenu>())
{
    m_menu->setObjectName(QStringLiteral("mnuGameRow"));
    m_join = m_menu->addAction(QStringLiteral("Join Game"));
    m_watch = m_menu->addAction(QStringLiteral("Tell me when there is room"));
    m_stop = m_menu->addAction(QStringLiteral("Stop watching"));
    // The address is the one the menu was opened on: rows may move while it is open.
    connect(m_join, &QAction::triggered, this, [this] {
        m_gameWatch.stop(m_address);
        Q_EMIT joinRequested(m_address);
    });
    connect(m_watch, &QAction::triggered, this, [this] { m_gameWatch.watch(m_address); });
    connect(m_stop, &QAction::triggered, this, [this] { m_gameWatch.stop(m_address); });

    view.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&view, &QWidget::customContextMenuRequested, this, &GameRowMenu::popUp);
}

GameRowMenu::~GameRowMenu() = default;

bool GameRowMenu::prepare(int row)
{
    if (row < 0 || row >= m_rooms.rowCount() || m_rooms.icon(row) != RoomListModel::RunningGame)
        return false;
    m_address = m_rooms.tag(row);
    const bool watching = m_gameWatch.isWatching(m_address);
    m_join->setVisible(m_session.isOnline());
    m_watch->setVisible(!watching && m_rooms.isFull(row));
    m_watch->setEnabled(m_gameWatch.canWatch(m_address));
    m_stop->setVisible(watching);
    return m_join->isVisible() || m_watch->isVisible() || m_stop->isVisible();
}

bool GameRowMenu::answerDoubleClick(int row)
{
    if (row < 0 || row >= m_rooms.rowCount() || m_rooms.icon(row) != RoomListModel::RunningGame)
        return false;
    const QString address = m_rooms.tag(row);
    if (!m_gameWatch.canWatch(address)) {
        // Joining a watched game ends its watch.
        m_gameWatch.stop(address);
        return false;
    }
    const Dialogs::Answer answer = m_dialogs.messageBox(
        applicationTitle(),
        QStringLiteral("This game is full. Do you want to be told when there is room?"),
        Dialogs::Buttons::YesNo, Dialogs::Icon::Question);
    return answer == Dialogs::Answer::Yes && m_gameWatch.watch(address);
}

void GameRowMenu::popUp(const QPoint &position)
{
    const QModelIndex index = m_view.indexAt(position);
    if (!index.isValid() || !prepare(index.row()))
        return;
    m_menu->popup(m_view.viewport()->mapToGlobal(position));
}

} // namespace client
