#include "client/session/eventsounds.h"
#include "client/platform/casepath.h"
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
    void resolvesGamePathsIgnoringCase_data()
    {
        QTest::addColumn<QString>("onDisk");      // below the game folder
        QTest::addColumn<QString>("windowsPath"); // as the program names it
        QTest::newRow("upper-case install") << "DATA/Sound/ENGLISH/RE_SRCH1.WAV"
                                            << "\\data\\sound\\English\\re_srch1.wav";
        QTest::newRow("lower-case install") << "data/sound/a_crhrn1.wav"
                                            << "\\data\\sound\\A_CRHRN1.WAV";
    }
    void resolvesGamePathsIgnoringCase()
    {
        QFETCH(QString, onDisk);
        QFETCH(QString, windowsPath);
        QTemporaryDir game;
        QVERIFY(writeFile(game.filePath(onDisk)));
        QCOMPARE(resolveCaseInsensitive(game.path(), windowsPath), game.filePath(onDisk));
    }

    void missingPartsStayAsWritten()
    {
        QTemporaryDir game;
        QCOMPARE(resolveCaseInsensitive(game.path(), QStringLiteral("\\data\\x.wav")),
                 game.path() + QStringLiteral("/data/x.wav"));
    }

    void playsOnlyWhenSoundsAreOn()
    {
        QTemporaryDir game;
        QVERIFY(writeFile(game.filePath(QStringLiteral("data/sound/English/rr_pan4.wav"))));
        RecordingPlayer player;
        bool soundsOn = false;
        EventSounds sounds(
            player, [&] { return soundsOn; }, [&] { return game.path(); });

        sounds.play(Event::ConnectionDropped);
        QVERIFY(player.played.isEmpty());
        // The statistics-reset sound plays whatever the option says.
        sounds.playAlways(Event::StatsReset);
        QCOMPARE(player.played.size(), 1);

        soundsOn = true;
        sounds.play(Event::ConnectionDropped);
        QCOMPARE(player.played.last(),
                 game.filePath(QStringLiteral("data/sound/English/rr_pan4.wav")));
    }

    void noGameFolderIsSilence()
    {
        RecordingPlayer player;
        EventSounds sounds(
            player, [] { return true; }, [] { return QStringLiteral("  "); });
        sounds.play(Event::Connecting);
        QVERIFY(player.played.isEmpty());
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
