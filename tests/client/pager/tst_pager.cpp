// When a private message makes a sound and when it marks its sender unread: it depends on
// whose conversation is on display and whether the window is on the screen.
#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/pager/avatarloader.h"
#include "client/pager/conversationarchive.h"
#include "client/pager/pager.h"
#include "client/platform/eventsounds.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "client/ui/icons.h"
#include "protocol/chat.h"
#include "support/clientfakes.h"
#include "support/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

class TestPager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundAndUnreadMark_data()
    {
        QTest::addColumn<bool>("shown");   // the window is on the screen
        QTest::addColumn<QString>("from"); // the conversation on display is bob's
        QTest::addColumn<QString>("echo");
        QTest::addColumn<bool>("sound");
        QTest::addColumn<bool>("unread");
        QTest::addColumn<QString>("line"); // what the sender's history gets

        // Whether the window is on the screen decides the sound, whether the sender's
        // conversation is on display decides the mark.
        QTest::newRow("on display, hidden") << false << "bob"
                                            << "0" << true << false << "bob:  hi";
        QTest::newRow("other, shown") << true << "ann"
                                      << "0" << false << true << "ann:  hi";
        QTest::newRow("own copy") << false << "ann"
                                  << "1" << false << false << "me:  hi";
        QTest::newRow("neither own nor theirs") << false << "ann"
                                                << "2" << false << false << "ann:  hi";
        QTest::newRow("not listed: sound only") << false << "zed"
                                                << "0" << true << false << "";
        // Ignored under another case: nothing at all.
        QTest::newRow("ignored") << false << "cy"
                                 << "0" << false << false << "";
    }

    void soundAndUnreadMark()
    {
        QFETCH(bool, shown);
        QFETCH(QString, from);
        QFETCH(QString, echo);
        QFETCH(bool, sound);
        QFETCH(bool, unread);
        QFETCH(QString, line);

        QTemporaryDir game;
        QVERIFY(writeFile(game.filePath("data/sound/A_CRHRN1.WAV")));
        RecordingPlayer player;
        EventSounds sounds(player);
        sounds.setSoundsOn(true);
        sounds.setGameFolder(game.path());
        PlayerListModel players;
        for (const auto &[name, id] :
             {std::pair{"ann", 11}, std::pair{"bob", 12}, std::pair{"cy", 13}}) {
            PlayerListModel::Entry entry;
            entry.texts[PlayerListModel::Name] = name;
            entry.id = id;
            entry.texts[PlayerListModel::Message] = QStringLiteral("0");
            players.addEntry(entry);
        }
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        SessionState session;
        session.ownName = QStringLiteral("me");
        ManualClock clock;
        AvatarLoader avatars{QUrl()};
        IgnoreList ignored{QString()};
        ignored.setIgnored(QStringLiteral("CY"), true);
        ConversationArchive archive{QString(), clock};
        Pager pager(players, connection, session, SendRateGuard(session, clock), sounds, avatars,
                    ignored, archive);
        pager.registerHandler(dispatcher);
        pager.SendMessagee(QStringLiteral("bob"));
        pager.setShown(shown);

        // The echo field as written, whatever it is.
        const QByteArray message = protocol::PrivateMessageToClient{from, "hi", {}}.encode();
        dispatcher.receive(message.chopped(1) + echo.toLatin1() + '\x0F');

        QCOMPARE(player.played.size(), sound ? 1 : 0);
        const int row = players.findEntry(from);
        QCOMPARE(players.icon(row) == Icons::UnreadMessage, unread);
        QCOMPARE(pager.history(players.id(row).value_or(0)), line.isEmpty() ? "" : line + "\r\n");
    }

    // A conversation's folder is one per player, right inside the archive's folder, whatever
    // the name holds.
    void conversationFolders_data()
    {
        QTest::addColumn<QString>("partner");
        QTest::addColumn<QString>("same");  // the same player spelled otherwise
        QTest::addColumn<QString>("other"); // another player
        const QString euros(200, QChar(0x20AC));
        QTest::newRow("case") << "Anna"
                              << "ANNA"
                              << "Anne";
        QTest::newRow("path") << "../a\\b"
                              << "../A\\B"
                              << "..%2Fa%5Cb";
        QTest::newRow("too long") << euros << euros << euros.chopped(1) + "x";
    }

    void conversationFolders()
    {
        QFETCH(QString, partner);
        QFETCH(QString, same);
        QFETCH(QString, other);
        const QString folder = ConversationArchive::folderName(partner);
        QVERIFY(folder.size() <= 120 && ConversationArchive::folderName(other) != folder);
        QTemporaryDir home;
        ManualClock clock;
        ConversationArchive archive(home.path(), clock);
        archive.keep(partner, "me", "hi");
        QTRY_COMPARE(ConversationArchive(home.path(), clock).earlierLines(same).size(), 1);
        QCOMPARE(QDir(home.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 QStringList{folder});
    }
};

QTEST_MAIN(TestPager)
#include "tst_pager.moc"
