#include "client/presence/frmmenu.h"

#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/playername.h"
#include "client/platform/dialogs.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "protocol/presence.h"

#include <QAbstractItemView>
#include <QAbstractProxyModel>
#include <QMenu>

namespace client {

namespace {

// A buddy's code is one above the same player's code as a non-buddy: 1/2 away, 4/5 in a
// game, 7/8 in the lobby. Other codes stay.
QString buddyCode(const QString &code, bool buddy)
{
    static const QStringList plain = {QStringLiteral("1"), QStringLiteral("4"),
                                      QStringLiteral("7")};
    static const QStringList buddies = {QStringLiteral("2"), QStringLiteral("5"),
                                        QStringLiteral("8")};
    const QStringList &from = buddy ? plain : buddies;
    const QStringList &to = buddy ? buddies : plain;
    const qsizetype at = from.indexOf(code);
    return at < 0 ? code : to[at];
}

} // namespace

FrmMenu::FrmMenu(PlayerListModel &players, QAbstractItemView &ListView2,
                 LobbyConnection &connection, const SessionState &session, Dialogs &dialogs,
                 IgnoreList &ignored, QWidget *parent)
    : QWidget(parent), m_players(players), m_view(ListView2), m_connection(connection),
      m_session(session), m_dialogs(dialogs), m_ignored(ignored)
{
    setObjectName(QStringLiteral("frmMenu"));
    mnuChatPopup = new QMenu(QStringLiteral("ChatList"), this);
    mnuChatPopup->setAccessibleName(QStringLiteral("Player"));
    mnuChatPopup->setObjectName(QStringLiteral("mnuChatPopup"));
    const auto addEntry = [this](const char *name, const QString &caption) {
        QAction *action = mnuChatPopup->addAction(caption);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    mnuPrivateMessage = addEntry("mnuPrivateMessage", QStringLiteral("Private Message"));
    mnuViewStats = addEntry("mnuViewStats", QStringLiteral("View stats"));
    mnuGameInfo = addEntry("mnuGameInfo", QStringLiteral("Game Info"));
    mnuJoinGame = addEntry("mnuJoinGame", QStringLiteral("Join Game"));
    mnuAddBuddie = addEntry("mnuAddBuddie", QStringLiteral("Add buddie"));
    mnuIgnore = addEntry("mnuIgnore", QStringLiteral("Ignore"));
    mnuStopIgnoring = addEntry("mnuStopIgnoring", QStringLiteral("Stop ignoring"));

    // Each entry reads the selected entry when it runs: messages may have changed or removed it
    // since the menu popped up.
    const auto onSelected = [this](QAction *action, auto act) {
        connect(action, &QAction::triggered, this, [this, act] {
            const int row = selectedPlayer();
            if (row >= 0)
                act(row);
        });
    };
    onSelected(mnuPrivateMessage, [this](int row) {
        Q_EMIT privateMessageRequested(m_players.text(row, PlayerListModel::Name));
    });
    onSelected(mnuViewStats, [this](int row) {
        Q_EMIT statsPageRequested(QString::number(m_players.id(row).value_or(0)));
    });
    onSelected(mnuGameInfo, [this](int row) {
        Q_EMIT gameInfoRequested(m_players.text(row, PlayerListModel::IpToGame));
    });
    onSelected(mnuJoinGame, [this](int row) {
        Q_EMIT joinGameRequested(m_players.text(row, PlayerListModel::IpToGame));
    });
    connect(mnuAddBuddie, &QAction::triggered, this, &FrmMenu::changeBuddy);
    const auto ignoring = [this](bool ignore) {
        return [this, ignore](int row) {
            const QString name = m_players.text(row, PlayerListModel::Name);
            if (nameKey(name) != nameKey(m_session.ownName))
                m_ignored.setIgnored(name, ignore);
        };
    };
    onSelected(mnuIgnore, ignoring(true));
    onSelected(mnuStopIgnoring, ignoring(false));
}

int FrmMenu::selectedPlayer() const
{
    const QModelIndexList selected =
        m_view.selectionModel() ? m_view.selectionModel()->selectedRows() : QModelIndexList();
    if (selected.isEmpty())
        return -1;
    // The list may be shown through filter or sort proxies.
    QModelIndex index = selected.first();
    while (const auto *proxy = qobject_cast<const QAbstractProxyModel *>(index.model()))
        index = proxy->mapToSource(index);
    if (index.model() != &m_players)
        return -1;
    const int row = index.row();
    return PlayerListModel::isGroupRowCode(m_players.text(row, PlayerListModel::PlayerStatus))
               ? -1
               : row;
}

void FrmMenu::listClicked(Qt::MouseButton button, QPoint globalPos)
{
    const int row = selectedPlayer();
    if (row < 0)
        return;
    const QString name = m_players.text(row, PlayerListModel::Name);
    if (name == m_session.ownName)
        return;
    if (button != Qt::RightButton) {
        Q_EMIT privateMessageRequested(name);
        return;
    }
    mnuPrivateMessage->setText(QStringLiteral("Send PM"));
    mnuAddBuddie->setText(m_players.isBuddy(row) ? QStringLiteral("Remove buddie")
                                                 : QStringLiteral("Add buddie"));
    const QString code = m_players.text(row, PlayerListModel::PlayerStatus);
    const bool inGame = (code == QLatin1String("4") || code == QLatin1String("5")) &&
                        !m_players.text(row, PlayerListModel::IpToGame).isEmpty();
    mnuGameInfo->setEnabled(inGame);
    const bool ignored = m_ignored.contains(name);
    mnuIgnore->setVisible(!ignored);
    mnuStopIgnoring->setVisible(ignored);
    mnuJoinGame->setEnabled(inGame);
    mnuChatPopup->popup(globalPos);
}

void FrmMenu::changeBuddy()
{
    int row = selectedPlayer();
    if (row < 0)
        return;
    const QString name = m_players.text(row, PlayerListModel::Name);
    const bool add = !m_players.isBuddy(row);
    const QString text = add ? QStringLiteral("Do you want to add '%1' to your buddylist?")
                             : QStringLiteral("Do you want remove add '%1' from your buddylist?");
    if (m_dialogs.messageBox(QStringLiteral("Add buddy"), text.arg(name), Dialogs::Buttons::YesNo,
                             Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    // The answer came from a modal box: the list may have changed while it was open.
    row = selectedPlayer();
    if (row < 0 || m_players.text(row, PlayerListModel::Name) != name)
        return;
    const qint64 id = m_players.id(row).value_or(0);
    if (add)
        m_connection.send(protocol::BuddyAdd{id});
    else
        m_connection.send(protocol::BuddyRemove{id});
    m_players.setBuddy(row, add);
    m_players.setBold(row, add);
    // The new code moves the entry to its place among the buddies or the others.
    m_players.setText(row, PlayerListModel::PlayerStatus,
                      buddyCode(m_players.text(row, PlayerListModel::PlayerStatus), add));
}

} // namespace client
