// How the game is started where players keep it: a Windows install under a Wine prefix, its
// file named in any case, and a Wine that may not be able to run it at all.
#include "client/game/gamelauncher.h"
#include "client/platform/wineregistryquery.h"
#include "client/settings/options.h"
#include "support/clientfakes.h"
#include "support/files.h"
#include "support/gamefakes.h"
#include "support/wait.h"

#include <QTemporaryDir>
#include <QTest>

using namespace client;

namespace {

// The launcher over the real process start, with `wine` as the Wine command.
struct Rig
{
    explicit Rig(const QString &wine) : games(wine) {}

    Options options;
    FakeDialogs dialogs;
    GameStarter games;
    GameLauncher launcher{options, games, dialogs};
};

} // namespace

class TestWineLaunch : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temp;
    QString m_record;   // where the recording script writes
    QString m_recorder; // writes its prefix, working folder and arguments, one per line
    int m_scripts = 0;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_temp.isValid());
        // The prefix comes from where the game is installed, or else the client's default.
        qunsetenv("WINEPREFIX");
        m_record = m_temp.filePath("record");
        m_recorder = m_temp.filePath("recorder");
        QVERIFY(writeScript(m_recorder, "printf '%s\\n' \"$WINEPREFIX\" \"$PWD\" \"$*\" > '" +
                                            m_record.toUtf8() + "'"));
    }

    // Wherever the game is, under whatever case its file has, it starts in its own folder; a
    // Windows program through Wine in the prefix it is installed in, named as Windows names it.
    void startsAsAWindowsShortcutWould_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("native");
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("program");
        const QString t = m_temp.path();
        QTest::newRow("native stand-in, mixed case")
            << "Games/Rogue Spear/RogueSpear.exe" << true << ""
            << "";
        QTest::newRow("installed in a prefix")
            << "pfx/drive_c/Red Storm/Rogue Spear/ROGUESPEAR.EXE" << false << t + "/pfx"
            << "C:\\Red Storm\\Rogue Spear\\ROGUESPEAR.EXE";
        QTest::newRow("outside any prefix")
            << "Other/roguespear.exe" << false << t + "/default"
            << "Z:" + QString(t).replace('/', '\\') + "\\Other\\roguespear.exe";
    }
    void startsAsAWindowsShortcutWould()
    {
        QFETCH(QString, file);
        QFETCH(bool, native);
        QFETCH(QString, prefix);
        QFETCH(QString, program);
        const QString path = m_temp.filePath(file);
        QVERIFY(native ? QDir().mkpath(QFileInfo(path).path()) && QFile::copy(m_recorder, path)
                       : writeFile(path, "MZ\x90"));
        QFile::remove(m_record);

        FakeDialogs dialogs;
        Options options;
        // The client's default prefix, for a game that is in none.
        DetachedProcessStarter processes(m_recorder, m_temp.filePath("default"));
        GameLauncher launcher(options, processes, dialogs);
        options.setPathRS(QFileInfo(path).path());
        QVERIFY(launcher.launchGameClient("10.0.0.5"));
        QVERIFY(waitUntil([&] { return QFileInfo(m_record).size() > 0; }));

        QFile record(m_record);
        QVERIFY(record.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(record.readAll()).split('\n');
        QCOMPARE(lines.value(0), prefix);
        QCOMPARE(lines.value(1), QFileInfo(path).path());
        QCOMPARE(lines.value(2), (native ? QString() : program + ' ') + "-client 10.0.0.5 2346");
    }

    // A start that Wine cannot carry out is told with what Wine said (its last lines) and,
    // where the cause is known, what to install.
    void failedStartIsTold_data()
    {
        QTest::addColumn<QByteArray>("wine"); // the Wine stand-in's commands; "" for none
        QTest::addColumn<QStringList>("told");
        QTest::addColumn<QStringList>("notTold");
        QTest::newRow("no 32-bit Wine")
            << QByteArray("for i in 1 2 3 4 5 6 7 8 9 10; do echo noise$i >&2; done\n"
                          "echo 'it looks like wine32 is missing, you should install it.' >&2\n"
                          "echo 'wine: Bad EXE format for C:\\\\RS\\\\roguespear.exe.' >&2\n"
                          "exit 1")
            << QStringList{"wine32 is missing", "Bad EXE format", "noise10", "apt install wine32"}
            << QStringList{"noise2"};
        QTest::newRow("no Wine at all")
            << QByteArray() << QStringList{"could not be run", "apt install wine wine32"}
            << QStringList{};
        QTest::newRow("ends without a word")
            << QByteArray("exit 3") << QStringList{"ended at once"} << QStringList{"apt"};
    }
    void failedStartIsTold()
    {
        QFETCH(QByteArray, wine);
        QFETCH(QStringList, told);
        QFETCH(QStringList, notTold);
        const QString script = m_temp.filePath("wine" + QString::number(++m_scripts));
        QVERIFY(wine.isEmpty() || writeScript(script, wine));
        const QString folder = m_temp.filePath("drive_c/RS");
        QVERIFY(writeFile(folder + "/roguespear.exe", "MZ\x90"));

        Rig r(wine.isEmpty() ? m_temp.filePath("no-such/wine") : script);
        r.options.setPathRS(folder);
        r.launcher.launchGameServer(); // false at once when Wine is not there at all
        QVERIFY(waitUntil([&] { return !r.dialogs.asked.isEmpty(); }));
        const QString message = r.dialogs.asked.join('\n');
        for (const QString &part : told)
            QVERIFY2(message.contains(part), qPrintable(message));
        for (const QString &part : notTold)
            QVERIFY2(!message.contains(part), qPrintable(message));
    }

    // The value in the file "wine reg export" writes: UTF-16 with a byte-order mark, the key
    // named in full, text escaped as in system.reg.
    void readsTheValueWineExports_data()
    {
        QTest::addColumn<QString>("exported");
        QTest::addColumn<QString>("value");
        const QString head = "\uFEFFWindows Registry Editor Version 5.00\r\n\r\n"
                             "[HKEY_LOCAL_MACHINE\\Software\\Red Storm]\r\n";
        QTest::newRow("any character, escapes")
            << head + "\"MultiplayerPlayerName\"=\"Zo\u00eb \\\"\u6f22\\\" \\\\x\"\r\n\r\n"
            << "Zo\u00eb \"\u6f22\" \\x";
        QTest::newRow("other case, other values")
            << head + "\"Other\"=\"x\"\r\n\"multiplayerplayername\"=\"Al\"\r\n"
            << "Al";
        QTest::newRow("a number") << head + "\"MultiplayerPlayerName\"=dword:00000001\r\n"
                                  << "";
        QTest::newRow("another key")
            << QString(head).replace("Red Storm", "Other") + "\"MultiplayerPlayerName\"=\"Al\"\r\n"
            << "";
        QTest::newRow("nothing written") << QString() << "";
    }
    void readsTheValueWineExports()
    {
        QFETCH(QString, exported);
        const QByteArray utf16(reinterpret_cast<const char *>(exported.utf16()),
                               exported.size() * 2);
        QTEST(
            WineRegistryQuery::valueIn(utf16, "HKLM\\Software\\Red Storm", "MultiplayerPlayerName"),
            "value");
    }
};

QTEST_MAIN(TestWineLaunch)
#include "tst_winelaunch.moc"
