#include "client/platform/inotifyfolderwatcher.h"
#include "support/wait.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

namespace {

void writeFile(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("round\r\n");
}

} // namespace

class TestFolderWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Each step changes the tree; the paths announced are those expected, in order.
    void announcesUpdatedFiles_data()
    {
        QTest::addColumn<QStringList>("steps"); // "write:PATH", "mkdir:PATH", "move:FROM>TO"
        QTest::addColumn<QStringList>("announced");

        QTest::newRow("file in the folder") << QStringList{"write:a.log"} << QStringList{"a.log"};
        QTest::newRow("file below") << QStringList{"write:old/b.log"} << QStringList{"old/b.log"};
        QTest::newRow("folder made after the start")
            << QStringList{"mkdir:new/deeper", "write:new/deeper/c.log"}
            << QStringList{"new/deeper/c.log"};
        QTest::newRow("moved in from outside")
            << QStringList{"write:../outside.tmp", "move:../outside.tmp>d.log"}
            << QStringList{"d.log"};
        QTest::newRow("folder moved in with a file")
            << QStringList{"mkdir:../pack", "write:../pack/e.log", "move:../pack>pack",
                           "write:pack/f.log"}
            << QStringList{"pack/e.log", "pack/f.log"};
    }
    void announcesUpdatedFiles()
    {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, announced);

        QTemporaryDir root;
        const QDir game(root.filePath("game"));
        QVERIFY(QDir().mkpath(game.filePath("old")));
        InotifyFolderWatcher watcher;
        QSignalSpy spy(&watcher, &FolderWatcher::itemUpdated);
        QVERIFY(watcher.startNotify(game.path()));

        for (const QString &step : steps) {
            const QString what = step.section(u':', 1);
            if (step.startsWith("write:"))
                writeFile(game.filePath(what));
            else if (step.startsWith("mkdir:"))
                QVERIFY(QDir().mkpath(game.filePath(what)));
            else
                QVERIFY(QDir().rename(game.filePath(what.section(u'>', 0, 0)),
                                      game.filePath(what.section(u'>', 1))));
            QTest::qWait(20); // lets a new folder's watch be placed before the next step
        }
        QVERIFY(waitUntil([&] { return spy.size() >= announced.size(); }));
        QTest::qWait(50);
        QStringList paths;
        for (const QList<QVariant> &signal : spy)
            paths << QDir::cleanPath(signal.at(0).toString());
        QStringList expected;
        for (const QString &path : announced)
            expected << QDir::cleanPath(game.filePath(path));
        QCOMPARE(paths, expected);
    }

    void stopsAndRefusesMissingFolders()
    {
        QTemporaryDir root;
        InotifyFolderWatcher watcher;
        QSignalSpy spy(&watcher, &FolderWatcher::itemUpdated);
        QVERIFY(!watcher.startNotify(root.filePath("missing")));
        QVERIFY(!watcher.isWatching());

        QVERIFY(watcher.startNotify(root.path()));
        watcher.stopNotify();
        writeFile(root.filePath("late.log"));
        QTest::qWait(50);
        QCOMPARE(spy.size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestFolderWatcher)
#include "tst_folderwatcher.moc"
