#include "client/rooms/roomstate.h"

#include <QIcon>

// Outside the namespace: the resource's registration function is global.
static void registerRoomIcons()
{
    Q_INIT_RESOURCE(roomicons);
}

namespace client {

namespace {
const QStringList kMemberHeaders = {QStringLiteral("Namn"), QStringLiteral("wskID"),
                                    QStringLiteral("time"), QStringLiteral("ready")};
}

QIcon memberStateIcon(int state)
{
    // The client is a static library: its resources must be registered by hand.
    static const bool registered = [] {
        registerRoomIcons();
        return true;
    }();
    Q_UNUSED(registered);
    if (state != 1 && state != 2)
        return {};
    return QIcon(QStringLiteral(":/roomicons/%1.svg").arg(state));
}

RoomState::RoomState(QObject *parent) : QObject(parent)
{
    m_members.setHorizontalHeaderLabels(kMemberHeaders);
}

QStringList RoomState::memberNames() const
{
    QStringList names;
    for (int row = 0; row < m_members.rowCount(); ++row)
        names << m_members.item(row)->text();
    return names;
}

int RoomState::findMember(const QString &name) const
{
    for (int row = 0; row < m_members.rowCount(); ++row) {
        if (m_members.item(row)->text() == name)
            return row;
    }
    return -1;
}

void RoomState::addMember(const QString &name, int icon)
{
    // Sorted as text without regard to case; a new name goes after its equals.
    int row = 0;
    while (row < m_members.rowCount() &&
           m_members.item(row)->text().compare(name, Qt::CaseInsensitive) <= 0)
        ++row;
    QList<QStandardItem *> items;
    for (int column = 0; column < kMemberHeaders.size(); ++column) {
        auto *item = new QStandardItem;
        item->setEditable(false);
        items << item;
    }
    items[0]->setText(name);
    m_members.insertRow(row, items);
    setMemberIcon(name, icon);
}

void RoomState::removeMember(const QString &name)
{
    const int row = findMember(name);
    if (row >= 0)
        m_members.removeRow(row);
}

void RoomState::setMemberIcon(const QString &name, int icon)
{
    const int row = findMember(name);
    if (row < 0)
        return;
    QStandardItem *item = m_members.item(row);
    item->setData(icon, IconRole);
    item->setIcon(memberStateIcon(icon));
    // What a screen reader says of the row: the name and the state the picture shows.
    const QString state = icon == 2   ? QStringLiteral(", ready")
                          : icon == 1 ? QStringLiteral(", not ready")
                                      : QString();
    item->setData(name + state, Qt::AccessibleTextRole);
}

int RoomState::memberIcon(const QString &name) const
{
    const int row = findMember(name);
    return row < 0 ? -1 : m_members.item(row)->data(IconRole).toInt();
}

void RoomState::addChatLine(const QString &line)
{
    m_chat << line;
    Q_EMIT chatLineAdded(line);
}

void RoomState::clearRoom()
{
    m_members.removeRows(0, m_members.rowCount());
    m_chat.clear();
    Q_EMIT chatCleared();
}

void RoomState::reset()
{
    clearRoom();
    hostName.clear();
    hideShowRoom = false;
    playerReadyStatus = 0;
    caption = QStringLiteral("Room:");
    status = QStringLiteral("In chat");
    hostControls = startShown = joinShown = false;
    notify();
}

} // namespace client
