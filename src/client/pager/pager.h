#pragma once

#include "client/presence/sendrateguard.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <optional>

namespace protocol {
struct PrivateMessageToClient;
}

namespace client {

class AvatarLoader;
class ConversationArchive;
class EventSounds;
class IgnoreList;
class LobbyConnection;
class LobbyDispatcher;
class PlayerListModel;
class SessionState;

// The private conversations (`roomPrivateMsg` and the state behind `frmPager`): one history per
// partner, keyed by the partner's player id, and the one conversation on display. Messages
// ("PM") come in both ways; the client's own message appears in the history only when the
// server's copy comes back. A message for a conversation not on display marks the partner's
// entry in the player list as unread (icon 1) until that conversation is opened. Histories
// last until the program ends; the window only shows them. Each line is also kept in the
// archive, and the first time a conversation is touched in a run, the lines the archive kept
// of it from earlier runs come with it as its earlier part. An ignored partner's messages are
// dropped without a sound, and nothing of a conversation with him is kept.
class Pager : public QObject
{
    Q_OBJECT

public:
    Pager(PlayerListModel &players, LobbyConnection &connection, SessionState &session,
          SendRateGuard guard, EventSounds &sounds, AvatarLoader &avatars,
          const IgnoreList &ignored, ConversationArchive &archive, QObject *parent = nullptr);

    // Shows incoming "PM" messages.
    void registerHandler(LobbyDispatcher &dispatcher);

    // Makes the conversation with `namn` the one on display, fetching the partner's avatar the
    // first time for his entry. A name not in the player list shows nothing. The caller shows
    // the window afterwards.
    void SendMessagee(const QString &namn);
    // A received message in the conversation with `namn`; `echo` is the server's copy of an own
    // message. Dropped when `namn` is not in the player list, or is ignored and `echo` is not
    // true.
    void addMessage(const QString &namn, const QString &msg, std::optional<bool> echo);
    // Sends `line` to the partner on display. The input box has trimmed it and passed it
    // through the send-rate guard the lobby chat shares (guard()).
    void sendLine(const QString &line);
    SendRateGuard guard() const { return m_guard; }

    // The player id of the conversation on display (0 before any), and whether its history is
    // on display at all (a conversation with an unknown name hides the last one).
    qint64 current() const { return m_current; }
    bool isDisplaying() const { return m_displaying; }
    QString partnerName() const { return m_partnerName; }
    QString title() const { return m_title; }
    QString history(qint64 index) const { return m_histories.value(index); }
    // The lines kept of the conversation from earlier runs, in the history's form; "" for none.
    QString earlier(qint64 index) const { return m_earlier.value(index); }
    QImage avatar(qint64 index) const { return m_avatars.value(index); }

    // The window tells whether it is on the screen (a message then makes no sound).
    void setShown(bool shown) { m_shown = shown; }
    // The player with id `index` left the lobby: the window hides if it shows him.
    void playerLeft(qint64 index);
    // The partner's statistics page.
    void showPartnerStats();

Q_SIGNALS:
    void titleChanged(const QString &title);
    // The conversation on display changed (or was hidden: `isDisplaying`).
    void displayChanged();
    void historyAppended(qint64 index, const QString &line);
    void avatarChanged(qint64 index);
    void hideRequested();
    void statsPageRequested(const QString &id);

private:
    void onMessage(const protocol::PrivateMessageToClient &message);
    qint64 indexOf(int row) const;
    // Makes the history of `index` (partner `namn`) exist, with its earlier part.
    void touch(qint64 index, const QString &namn);

    PlayerListModel &m_players;
    LobbyConnection &m_connection;
    SessionState &m_session;
    SendRateGuard m_guard;
    EventSounds &m_sounds;
    AvatarLoader &m_avatarLoader;
    const IgnoreList &m_ignored;
    ConversationArchive &m_archive;
    QHash<qint64, QString> m_histories;
    QHash<qint64, QString> m_earlier;
    QHash<qint64, QImage> m_avatars;
    qint64 m_current = 0;
    bool m_displaying = false;
    bool m_shown = false;
    QString m_partnerName;
    QString m_title = QStringLiteral("Pager");
};

} // namespace client
