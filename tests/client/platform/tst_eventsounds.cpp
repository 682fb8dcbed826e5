#include "client/desktop/effectsoundplayer.h"
#include "client/platform/casepath.h"
#include "client/platform/eventsounds.h"
#include "support/clientfakes.h"
#include "support/files.h"

#include <QTemporaryDir>
#include <QTest>

using namespace client;

using Event = EventSounds::Event;

class TestEventSounds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Each part of a Windows path is found on disk in whatever case it was installed; a part
    // that is not there stays as written.
    void resolvesGamePathsIgnoringCase()
    {
        QTemporaryDir game;
        QVERIFY(writeFile(game.filePath("DATA/Sound/a_crhrn1.wav")));
        QCOMPARE(resolveCaseInsensitive(game.path(), "\\data\\sound\\A_CRHRN1.WAV"),
                 game.filePath("DATA/Sound/a_crhrn1.wav"));
        QCOMPARE(resolveCaseInsensitive(game.path(), "\\data\\sound\\English\\re_srch1.wav"),
                 game.filePath("DATA/Sound/English/re_srch1.wav"));
    }

    // Sounds play from the game folder while they are on; the statistics-reset sound plays
    // whatever the option says; without a game folder there is silence.
    void playsOnlyWhenSoundsAreOn()
    {
        QTemporaryDir game;
        RecordingPlayer player;
        EventSounds sounds(player);
        sounds.setGameFolder(game.path());

        sounds.play(Event::ConnectionDropped);
        sounds.playAlways(Event::StatsReset);
        sounds.setSoundsOn(true);
        sounds.play(Event::ConnectionDropped);
        sounds.setGameFolder("  ");
        sounds.play(Event::Connecting);
        QCOMPARE(player.played, (QStringList{game.filePath("data/sound/English/ref_clr1.wav"),
                                             game.filePath("data/sound/English/rr_pan4.wav")}));
    }

    void missingFilePlaysNothingForReal()
    {
        // The real player: a missing file must be silence, not an error or a default sound.
        EffectSoundPlayer player;
        player.play(QStringLiteral("/nonexistent/re_srch1.wav"));
        QVERIFY(player.children().isEmpty());
    }
};

QTEST_MAIN(TestEventSounds)
#include "tst_eventsounds.moc"
