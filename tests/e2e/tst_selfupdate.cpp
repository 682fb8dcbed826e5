// A client the lobby finds too old updates itself from the lobby's web server, against the
// real server and with real programs: the installed client runs its updater copy, which
// replaces it with the published newer build and ends; the client then starts that, which
// logs in. Downloads that fail, are not signed or are not signed with the key the client was built
// with leave the installed client in place and running.
// ctest: timeout=180
#include "client/app/clientapplication.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "client/update/selfupdate.h"
#include "support/lobbyclient.h"

#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <csignal>
#include <filesystem>

using namespace client;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A data folder that logs in automatically as `name` to `servers`.
void writeUser(const QString &dataFolder, const QString &name, const ServerAddresses &servers)
{
    writeAutoLogin(dataFolder, name, false);
    servers.save(dataFolder);
}

// The processes running `program`.
QList<pid_t> programsOf(const QString &program)
{
    QList<pid_t> pids;
    for (const QFileInfo &entry : QDir("/proc").entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isPid = false;
        const int pid = entry.fileName().toInt(&isPid);
        if (isPid && QFileInfo(entry.filePath() + "/exe").symLinkTarget() == program)
            pids << pid_t(pid);
    }
    return pids;
}

// Ends the programs started from `program` (the new version runs detached from the test).
void endProgramsOf(const QString &program)
{
    for (const pid_t pid : programsOf(program))
        ::kill(pid, SIGTERM);
}

// The secret of the key the client of this build trusts.
const QString kDevelopmentKey =
    QStringLiteral(QUORVEL_SOURCE_DIR "/tests/development-update-key.secret");

// An admin command of the server program: its standard output, empty when it failed.
QByteArray serverCommand(const QStringList &arguments)
{
    QProcess process;
    process.start(kLobbyServer, arguments);
    const bool ok = process.waitForFinished(30000) &&
                    process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return ok ? process.readAllStandardOutput() : QByteArray();
}

// A lobby that accepts only "V 6.1" and publishes what `publish` holds, and a client installed
// into a writable folder of its own, logging in automatically as "ann".
struct Lobby
{
    QTemporaryDir dir;
    ServerProcess server;
    QString published = dir.filePath("published/quor_vel.exe");
    QString installed = dir.filePath("installed/quorvel");

    // Publishes `program`, signed with the key in `keyFile` unless that is empty.
    bool publish(const QByteArray &program, const QString &keyFile = kDevelopmentKey)
    {
        return writeFile(published, program) &&
               (keyFile.isEmpty() || !serverCommand({"sign-update", keyFile, published}).isEmpty());
    }

    bool start()
    {
        QDir().mkpath(dir.filePath("installed"));
        QDir().mkpath(dir.filePath("published"));
        return QFile::copy(kClient, installed) &&
               startOpenLobby(server, dir, {"--versions", "V 6.1", "--publish", published});
    }
    ServerAddresses servers() const
    {
        return {.lobby = {"127.0.0.1", server.port()},
                .web = HostPort{"127.0.0.1", server.webPort()},
                .avatars = {}};
    }
};

} // namespace

class TestSelfUpdate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void updatesToThePublishedVersion()
    {
        Lobby lobby;
        QVERIFY(lobby.start());
        QVERIFY(lobby.publish(contents(kNewerClient)));
        const QByteArray oldProgram = contents(lobby.installed);

        AppHarness ann(lobby.servers(), {lobby.installed, false, {"--unattended"}});
        const auto endNewVersion = qScopeGuard([&] { endProgramsOf(lobby.installed); });
        // The updater and the new version are programs of their own, with the user's data
        // folder of the environment.
        qputenv("XDG_DATA_HOME", ann.home.filePath("xdg").toUtf8());
        writeUser(ann.dataFolder(), "ann", lobby.servers());
        writeUser(ann.home.filePath("xdg/Quorvel"), "ann", lobby.servers());
        QSignalSpy ended(&ann.app, &ClientApplication::shutDownFinished);
        QVERIFY(ann.app.start());
        QTRY_COMPARE_WITH_TIMEOUT(ended.size(), 1, 10000);
        QCOMPARE(ann.dialogs.asked, (QStringList{"Have to update Quorvel", "Update completed"}));
        QVERIFY(!ann.tray.shown);
        const QString web = lobby.servers().web->toString();
        QCOMPARE(ann.games.runs,
                 (QList<QStringList>{{lobby.installed, "update-copy", "--web", web}}));
        QCOMPARE(ann.games.commandLines, (QList<QStringList>{{lobby.installed, "--unattended"}}));

        // The new version logs in where the old one was refused.
        QCoreApplication::setApplicationVersion("6.1");
        AppHarness watcher(lobby.servers());
        writeUser(watcher.dataFolder(), "watcher", lobby.servers());
        QVERIFY(watcher.app.start());
        const bool annLoggedIn =
            QTest::qWaitFor([&] { return watcher.app.players().findEntry("ann") >= 0; }, 30000);
        QCoreApplication::setApplicationVersion(QString());
        QVERIFY(annLoggedIn);
        QCOMPARE(contents(lobby.installed), contents(kNewerClient));
        QCOMPARE(contents(lobby.dir.filePath("installed/old.tmp")), oldProgram);
        QVERIFY(!QFile::exists(lobby.dir.filePath("installed/quor_vel.tmp")));
    }

    void elevatedCopyOnlyInstalls_data()
    {
        QTest::addColumn<bool>("published");
        QTest::newRow("installed") << true;
        QTest::newRow("nothing published") << false;
    }

    // Where the folder needs administrator rights, the elevated copy installs and ends, whether
    // it succeeds or not; only the user's own client starts the new version (env stands in for
    // pkexec, with the same rights).
    void elevatedCopyOnlyInstalls()
    {
        QFETCH(bool, published);
        Lobby lobby;
        QVERIFY(lobby.start());
        if (published)
            QVERIFY(lobby.publish(contents(kNewerClient)));
        const auto endNewVersion = qScopeGuard([&] { endProgramsOf(lobby.installed); });
        qputenv("XDG_DATA_HOME", lobby.dir.filePath("xdg").toUtf8());
        writeUser(lobby.dir.filePath("xdg/Quorvel"), "ann", lobby.servers());

        SessionState session;
        session.webHost = "127.0.0.1";
        session.webPort = lobby.server.webPort();
        FakeDialogs dialogs;
        QWidget window;
        GameStarter processes;
        const QString env = QStandardPaths::findExecutable("env");
        SelfUpdate update(UpdateFiles{lobby.installed}, Elevation{true, env}, session, dialogs,
                          window, processes, {"--unattended"});
        QSignalSpy ended(&update, &SelfUpdate::endRequested);
        update.updateRequired();
        QTRY_COMPARE_WITH_TIMEOUT(dialogs.asked.size(), 2, 30000);

        const QString web = lobby.servers().web->toString();
        QCOMPARE(processes.runs,
                 (QList<QStringList>{{env, lobby.installed, "update-copy", "--web", web}}));
        if (published) {
            QCOMPARE(dialogs.asked[1], "Update completed");
            QCOMPARE(ended.size(), 1);
            QCOMPARE(processes.commandLines,
                     (QList<QStringList>{{lobby.installed, "--unattended"}}));
            QCOMPARE(contents(lobby.installed), contents(kNewerClient));
            QCOMPARE(programsOf(lobby.installed).size(), 1);
        } else {
            QCOMPARE(dialogs.asked[1], "Something went wrong try later");
            QCOMPARE(ended.size(), 0);
            QVERIFY(processes.commandLines.isEmpty());
            QVERIFY(programsOf(lobby.installed).isEmpty());
        }
    }

    void failedUpdateKeepsThisVersion_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<QString>("signer");         // its key file; empty: not signed
        QTest::addColumn<QByteArray>("replacement"); // published after signing; empty: none
        QTest::addColumn<QString>("told");
        const QByteArray newer = contents(kNewerClient);
        QByteArray corrupted = newer;
        corrupted[corrupted.size() / 2] = char(corrupted[corrupted.size() / 2] ^ 0x55);
        const QString forged = "its signature does not verify";

        QTest::newRow("nothing published")
            << QByteArray() << QString() << QByteArray() << "Something went wrong try later";
        QTest::newRow("unsigned") << newer << QString() << QByteArray()
                                  << "the download is not signed";
        // The server computes the checksum of what it publishes: it always matches.
        QTest::newRow("signed with another key") << newer << "another" << QByteArray() << forged;
        QTest::newRow("replaced after signing") << newer << kDevelopmentKey << corrupted << forged;
        QTest::newRow("not a program")
            << QByteArray("#!/nonexistent\n") << kDevelopmentKey << QByteArray()
            << "the downloaded program does not run here";
    }

    // The copy started with "update" tells why, keeps the installed program, goes on as this
    // version, and when the lobby refuses it again says so instead of updating once more.
    void failedUpdateKeepsThisVersion()
    {
        QFETCH(QByteArray, program);
        QFETCH(QString, signer);
        QFETCH(QByteArray, replacement);
        QFETCH(QString, told);
        Lobby lobby;
        QVERIFY(lobby.start());
        if (signer == "another") {
            // A key of the operator's kind, made as the operator makes one, not the client's.
            signer = lobby.dir.filePath("another.key");
            QCOMPARE(serverCommand({"make-update-key", signer}).trimmed().size(), 64);
            namespace fs = std::filesystem;
            QCOMPARE(fs::status(signer.toStdString()).permissions(),
                     fs::perms::owner_read | fs::perms::owner_write);
            QVERIFY(serverCommand({"make-update-key", signer}).isEmpty()); // never replaced
        }
        if (!program.isEmpty())
            QVERIFY(lobby.publish(program, signer));
        if (!replacement.isEmpty())
            QVERIFY(writeFile(lobby.published, replacement));
        const QByteArray oldProgram = contents(lobby.installed);

        AppHarness ann(lobby.servers(), {lobby.installed, true, {}});
        writeUser(ann.dataFolder(), "ann", lobby.servers());
        QSignalSpy ended(&ann.app, &ClientApplication::shutDownFinished);
        QVERIFY(ann.app.start());
        QCOMPARE(ann.dialogs.asked.value(0).contains(told), true);
        QTRY_COMPARE_WITH_TIMEOUT(ann.dialogs.asked.size(), 2, 10000);
        QVERIFY(ann.dialogs.asked[1].contains("cannot update itself: the update failed"));
        QVERIFY(ann.app.session().loggedOFF);
        QCOMPARE(ended.size(), 0);
        QCOMPARE(contents(lobby.installed), oldProgram);
        QCOMPARE(QDir(lobby.dir.filePath("installed")).entryList(QDir::Files),
                 QStringList{"quorvel"});
    }
};

QTEST_MAIN(TestSelfUpdate)
#include "tst_selfupdate.moc"
