#include "client/platform/eventsounds.h"

#include "client/platform/casepath.h"
#include "client/platform/soundplayer.h"

namespace client {

EventSounds::EventSounds(SoundPlayer &player, QObject *parent) : QObject(parent), m_player(player)
{
}

QString EventSounds::relativePath(Event event)
{
    switch (event) {
    case Event::Connecting:
        return QStringLiteral("\\data\\sound\\English\\re_srch1.wav");
    case Event::ConnectionDropped:
        return QStringLiteral("\\data\\sound\\English\\rr_pan4.wav");
    case Event::LoggedOut:
        return QStringLiteral("\\data\\sound\\English\\hmh_int1.wav");
    case Event::PrivateMessage:
    // The horn calls the user back for a free slot too.
    case Event::GameHasRoom:
        return QStringLiteral("\\data\\sound\\A_CRHRN1.WAV");
    case Event::StatsReset:
        return QStringLiteral("\\data\\sound\\English\\ref_clr1.wav");
    }
    return {};
}

QString EventSounds::filePath(Event event) const
{
    if (m_gameFolder.trimmed().isEmpty())
        return {};
    return resolveCaseInsensitive(m_gameFolder, relativePath(event));
}

void EventSounds::play(Event event)
{
    if (m_soundsOn)
        playAlways(event);
}

void EventSounds::playAlways(Event event)
{
    const QString file = filePath(event);
    if (!file.isEmpty())
        m_player.play(file);
}

} // namespace client
