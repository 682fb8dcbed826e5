#pragma once

#include "protocol/stats.h"

#include <QByteArray>
#include <QHash>
#include <QString>

namespace server {

class RoomRegistry;
class Session;

// Tells a room how a round its members played went. When the counted round of a player in a
// room of two or more is stored, every member gets one room chat line from the lobby's
// service name: the game type, the map, the three with the most kills and the address of the
// uploader's statistics page, which lists the round with all its players (the pages have no
// page per round). Every player of a round uploads it; the room hears it once.
class RoundAnnouncer
{
public:
    static constexpr int kBestShown = 3;

    // `webAddress`: where players reach the pages ("http://lobby.example.org"); empty: the
    // address each uploader's connection reached, on the pages' port.
    RoundAnnouncer(const RoomRegistry &rooms, QString webAddress = {});
    // The port of the pages, once they listen; 0 (no pages): lines carry no address.
    void setWebPort(quint16 port) { m_webPort = port; }

    void announce(const Session &uploader, const protocol::StatsUpload &round);

    // The line's text after the speaker's name.
    static QString summary(const protocol::StatsUpload &round, const QString &pageAddress);

private:
    QString pageAddress(const Session &uploader) const;

    const RoomRegistry &m_rooms;
    QString m_webAddress;
    quint16 m_webPort = 0;
    QHash<QString, QByteArray> m_lastTold; // host of a room -> the last round it heard
};

} // namespace server
