// ctest: xvfb
// ctest: timeout=900
// The Windows build of the game stand-in under real Wine, as the players' games run: in a
// fresh prefix of its own, installed below drive_c in a folder whose name has spaces and
// capitals. What it says and writes must match the native stand-in, which the client's own
// tests already read.

#include "support/serverprocess.h"
#include "support/statusquery.h"
#include "support/wait.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kWinGame =
    QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/wingame/RogueSpear.exe");
// Hosting on a port of its own, so that the test can run beside others that use the game's.
const QStringList kHost{"-server", "0", "-bind", "127.0.0.1"};

// One RogueSpear.exe under wine; killed when it goes if it has not ended.
class WineGame
{
public:
    WineGame(const QString &exe, const QStringList &arguments)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QStringLiteral("wine"), QStringList{exe} + arguments);
    }
    ~WineGame()
    {
        m_process.kill();
        m_process.waitForFinished(10000);
    }
    // The first whole line of its output that starts with `start`, waiting up to a minute (a
    // cold Wine is slow); empty when none came.
    QByteArray lineStarting(const QByteArray &start)
    {
        QByteArray found;
        waitUntil(
            [&] {
                m_out += m_process.readAllStandardOutput();
                QList<QByteArray> lines = m_out.split('\n');
                lines.removeLast(); // not ended yet
                for (const QByteArray &line : lines) {
                    if (line.startsWith(start)) {
                        found = line;
                        return true;
                    }
                }
                return m_process.state() == QProcess::NotRunning;
            },
            60000);
        return found;
    }
    bool said(const QByteArray &line) { return lineStarting(line) == line; }
    // The port it hosts on, from its "status ADDRESS PORT"; 0 when it does not host.
    quint16 hostPort() { return lineStarting("status 127.0.0.1 ").split(' ').value(2).toUShort(); }
    QProcess &process() { return m_process; }
    QByteArray output() const { return m_out; }

private:
    QProcess m_process;
    QByteArray m_out;
};

// Runs a Wine tool in the prefix to its end; its exit code, -1 when it did not end in time.
int runWine(const QString &program, const QStringList &arguments, int timeoutMs = 120000)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs))
        return -1;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

// The lines of a log with the date, which differs from run to run, taken out.
QList<QByteArray> withoutDate(const QByteArray &log)
{
    QList<QByteArray> lines = log.split('\n');
    if (lines.size() > 1)
        lines.removeAt(1);
    return lines;
}

} // namespace

class TestWinGame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!QFile::exists(kWinGame))
            QSKIP("RogueSpear.exe is not built: x86_64-w64-mingw32-g++ was not found");
        if (QStandardPaths::findExecutable(QStringLiteral("wine")).isEmpty() ||
            QStandardPaths::findExecutable(QStringLiteral("wineserver")).isEmpty())
            QSKIP("wine is not installed (scripts/setup.sh installs it)");
        QVERIFY(m_temp.isValid());
        qputenv("WINEPREFIX", QFile::encodeName(m_temp.filePath(QStringLiteral("prefix"))));
        qputenv("WINEDEBUG", "-all");
        // Without Mono and Gecko, which a new prefix would otherwise offer to install.
        qputenv("WINEDLLOVERRIDES", "mscoree,mshtml=");
        // Qt hands arguments over in UTF-8; Wine reads them in the locale's character set.
        qputenv("LC_ALL", "C.UTF-8");

        QElapsedTimer made;
        made.start();
        m_prepared = true;
        QCOMPARE(runWine(QStringLiteral("wineboot"), {QStringLiteral("-i")}, 300000), 0);
        qInfo("Wine prefix made in %.1f s", double(made.elapsed()) / 1000);

        m_folder = m_temp.filePath(QStringLiteral("prefix/drive_c/Red Storm Games/Rogue Spear"));
        QVERIFY(QDir().mkpath(m_folder));
        m_exe = m_folder + QStringLiteral("/RogueSpear.exe");
        QVERIFY(QFile::copy(kWinGame, m_exe));
    }
    void cleanupTestCase()
    {
        // Ends whatever still runs in the prefix, and its wineserver.
        if (m_prepared)
            runWine(QStringLiteral("wineserver"), {QStringLiteral("-k")});
    }

    // For the same options both stand-ins send the same reply, byte for byte (text in code
    // page 1252).
    void statusReplyMatchesNative_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("players, time limit")
            << QStringList{"-hostname", "Zoë's game", "-map",     "Peaks",   "-gametype",
                           "Survival",  "-player",    "Zoë:1:40", "-player", "Al:2:55"};
        QTest::newRow("password, locked, no time limit")
            << QStringList{"-password", "-locked", "-no-timelimit", "-maxplayers", "8"};
    }
    void statusReplyMatchesNative()
    {
        QFETCH(QStringList, options);
        ServerProcess native;
        QVERIFY(native.start(kFakeGame, kHost + options));
        QByteArray expected = askStatus(native.port(), {"\\status\\"});
        QVERIFY(expected.startsWith("\\gamename\\roguespear\\"));

        WineGame game(m_exe, kHost + options);
        const quint16 port = game.hostPort();
        QVERIFY2(port != 0, game.output().constData());
        expected.replace("\\hostport\\" + QByteArray::number(native.port()) + "\\",
                         "\\hostport\\" + QByteArray::number(port) + "\\");
        // Other datagrams get no answer; the first answer is the status query's.
        QCOMPARE(askStatus(port, {"\\info\\", "\\status\\"}), expected);
    }

    // A client connects to a host: each side says so once the connection is up.
    void clientJoinsHost()
    {
        WineGame host(m_exe, kHost);
        const QByteArray port = QByteArray::number(host.hostPort());
        QVERIFY2(port != "0", host.output().constData());
        WineGame member(m_exe, {"-client", "127.0.0.1", QString::fromLatin1(port)});
        QVERIFY2(member.said("joined 127.0.0.1 " + port), member.output().constData());
        QVERIFY2(host.said("player joined from 127.0.0.1"), host.output().constData());
    }

    // After each round the log appears in the game's folder, the same as the native one's
    // but for the date.
    void writesResultsLogLikeNative()
    {
        const QStringList arguments{"-round",  "1",        "-gametype", "Team Survival",
                                    "-player", "Zoë:1:40", "-player",   "Al:2:55"};
        QTemporaryDir nativeFolder;
        QVERIFY(QFile::copy(kFakeGame, nativeFolder.filePath("roguespear.exe")));
        ServerProcess native;
        QVERIFY(native.start(nativeFolder.filePath("roguespear.exe"),
                             QStringList{"-server", "0", "-bind", "127.0.0.1"} + arguments));
        WineGame game(m_exe, kHost + arguments);
        QVERIFY2(game.hostPort() != 0, game.output().constData());

        QFile nativeLog(nativeFolder.filePath("RSResults1.log"));
        QFile log(m_folder + "/RSResults1.log");
        QVERIFY(waitUntil([&] { return log.exists() && nativeLog.exists(); }, 30000));
        QVERIFY(log.open(QIODevice::ReadOnly) && nativeLog.open(QIODevice::ReadOnly));
        const QByteArray content = log.readAll();
        QCOMPARE(withoutDate(content), withoutDate(nativeLog.readAll()));
        static const QRegularExpression date(
            QStringLiteral("^'Date' '\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d'\r$"));
        QVERIFY2(date.match(QString::fromLatin1(content.split('\n').value(1))).hasMatch(),
                 content.constData());
    }

    // The name lands in the prefix's system.reg where the client looks: under the game's key,
    // or under Wow6432Node where a 32-bit game's lands. The game ends on WM_CLOSE.
    void keepsPlayerName_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("64-bit") << QStringList{"-name", "Zoë"}
                                << QByteArray(
                                       "[Software\\\\Red Storm Entertainment\\\\Rogue Spear]")
                                << QByteArray("\"MultiplayerPlayerName\"=\"Zo\\xeb\"");
        QTest::newRow("32-bit")
            << QStringList{"-name", "Al", "-wow64"}
            << QByteArray("[Software\\\\Wow6432Node\\\\Red Storm Entertainment\\\\Rogue Spear]")
            << QByteArray("\"MultiplayerPlayerName\"=\"Al\"");
    }
    void keepsPlayerName()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, value);
        {
            WineGame game(m_exe, kHost + options);
            QVERIFY2(game.hostPort() != 0, game.output().constData());
            QCOMPARE(runWine("wine", {"taskkill", "/im", "RogueSpear.exe"}), 0);
            QVERIFY(game.process().waitForFinished(60000));
            QCOMPARE(game.process().exitStatus(), QProcess::NormalExit);
            QCOMPARE(game.process().exitCode(), 0);
        }
        // The registry reaches the file once the prefix's wineserver has ended.
        QCOMPARE(runWine("wineserver", {"-w"}), 0);
        QFile registry(m_temp.filePath("prefix/system.reg"));
        QVERIFY(registry.open(QIODevice::ReadOnly));
        const QByteArray text = registry.readAll();
        const qsizetype section = text.indexOf("\n" + key + " ");
        QVERIFY2(section >= 0, key.constData());
        const QByteArray values =
            text.mid(section, text.indexOf("\n\n", section + 1) + 1 - section);
        QVERIFY2(values.contains("\n" + value + "\n"), values.constData());
    }

private:
    QTemporaryDir m_temp;
    bool m_prepared = false;
    QString m_folder; // the game's, below drive_c
    QString m_exe;
};

QTEST_GUILESS_MAIN(TestWinGame)
#include "tst_wingame.moc"
