#include "client/pager/pager.h"

#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/pager/avatarloader.h"
#include "client/pager/conversationarchive.h"
#include "client/platform/eventsounds.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "client/text/blanks.h"
#include "client/ui/icons.h"
#include "protocol/chat.h"

namespace client {

namespace {

const QString kYes = QStringLiteral("1");
const QString kNo = QStringLiteral("0");

// The title suffix of a status code; nullopt for a code that is not a player's.
std::optional<QString> stateSuffix(const QString &code)
{
    if (code == QLatin1String("1") || code == QLatin1String("2"))
        return QStringLiteral("  (Away)");
    if (code == QLatin1String("4") || code == QLatin1String("5"))
        return QStringLiteral("  (Playing)");
    if (code == QLatin1String("7") || code == QLatin1String("8"))
        return QStringLiteral("  (Online)");
    return std::nullopt;
}

QString historyLine(const QString &name, const QString &msg)
{
    return name + QStringLiteral(":  ") + msg + QStringLiteral("\r\n");
}

} // namespace

Pager::Pager(PlayerListModel &players, LobbyConnection &connection, SessionState &session,
             SendRateGuard guard, EventSounds &sounds, AvatarLoader &avatars,
             const IgnoreList &ignored, ConversationArchive &archive, QObject *parent)
    : QObject(parent), m_players(players), m_connection(connection), m_session(session),
      m_guard(guard), m_sounds(sounds), m_avatarLoader(avatars), m_ignored(ignored),
      m_archive(archive)
{
    connect(&avatars, &AvatarLoader::loaded, this, [this](qint64 index, const QImage &picture) {
        m_avatars.insert(index, picture);
        Q_EMIT avatarChanged(index);
    });
}

void Pager::registerHandler(LobbyDispatcher &dispatcher)
{
    dispatcher.on<protocol::PrivateMessageToClient>(
        [this](const protocol::PrivateMessageToClient &message) { onMessage(message); });
}

qint64 Pager::indexOf(int row) const
{
    return m_players.id(row).value_or(0);
}

void Pager::SendMessagee(const QString &namn)
{
    m_displaying = false;
    const int row = m_players.findEntry(namn);
    if (row < 0) {
        Q_EMIT displayChanged();
        return;
    }
    m_partnerName = namn;
    if (const auto suffix = stateSuffix(m_players.text(row, PlayerListModel::PlayerStatus))) {
        m_title = QStringLiteral("Page ") + namn + *suffix;
        Q_EMIT titleChanged(m_title);
    }
    if (m_players.text(row, PlayerListModel::Message) == kYes) {
        m_players.setText(row, PlayerListModel::Message, kNo);
        m_players.setIcon(row, m_players.savedIcon(row));
    }
    const qint64 index = indexOf(row);
    if (m_players.text(row, PlayerListModel::PictureLoaded) == kNo) {
        m_players.setText(row, PlayerListModel::PictureLoaded, kYes);
        m_avatarLoader.load(index, m_players.text(row, PlayerListModel::EpostHash));
    }
    touch(index, namn);
    m_current = index;
    m_displaying = true;
    Q_EMIT displayChanged();
}

void Pager::touch(qint64 index, const QString &namn)
{
    if (m_histories.contains(index))
        return;
    m_histories.insert(index, QString());
    QString earlier;
    for (const ChatLine &line : m_archive.earlierLines(namn))
        earlier += historyLine(line.name, line.text);
    if (!earlier.isEmpty())
        m_earlier.insert(index, earlier);
}

void Pager::onMessage(const protocol::PrivateMessageToClient &message)
{
    if (message.echo != true && m_ignored.contains(message.partner))
        return;
    if (message.echo == false && !m_shown)
        m_sounds.play(EventSounds::Event::PrivateMessage);
    addMessage(message.partner, message.text, message.echo);
}

void Pager::addMessage(const QString &namn, const QString &msg, std::optional<bool> echo)
{
    const int row = m_players.findEntry(namn);
    if (row < 0)
        return;
    const QString shownName = echo == true ? m_session.ownName : namn;
    const qint64 index = indexOf(row);
    touch(index, namn);
    const QString line = historyLine(shownName, msg);
    m_histories[index] += line;
    if (!m_ignored.contains(namn))
        m_archive.keep(namn, shownName, msg);
    Q_EMIT historyAppended(index, line);
    const bool onDisplay = m_displaying && index == m_current;
    if (!onDisplay && echo == false && m_players.text(row, PlayerListModel::Message) == kNo) {
        m_players.setText(row, PlayerListModel::Message, kYes);
        m_players.setIcon(row, Icons::UnreadMessage);
    }
}

void Pager::sendLine(const QString &line)
{
    m_connection.send(protocol::PrivateMessageToServer{m_partnerName, line});
}

void Pager::playerLeft(qint64 index)
{
    if (index == m_current)
        Q_EMIT hideRequested();
}

void Pager::showPartnerStats()
{
    Q_EMIT statsPageRequested(QString::number(m_current));
}

} // namespace client
