#include "client/platform/inotifyfolderwatcher.h"
#include "support/wait.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

class TestFolderWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Files written anywhere in the tree, in folders made or moved in after the start too,
    // are announced with their full paths, in order; nothing after the stop.
    void announcesFilesOfTheWholeTree()
    {
        QTemporaryDir root;
        const QDir game(root.filePath("game"));
        QVERIFY(QDir().mkpath(game.filePath("old")) && QDir().mkpath(root.filePath("pack")));
        const auto write = [](const QString &path) {
            QFile file(path);
            return file.open(QIODevice::WriteOnly) && file.write("round\r\n") > 0;
        };
        InotifyFolderWatcher watcher;
        QSignalSpy spy(&watcher, &FolderWatcher::itemUpdated);
        QVERIFY(!watcher.startNotify(root.filePath("missing")));
        QVERIFY(watcher.startNotify(game.path()));

        // Once a.log is announced, the folders made before it are watched: events come in order.
        QVERIFY(QDir().mkpath(game.filePath("new/deeper")));
        QVERIFY(write(game.filePath("old/a.log")));
        QTRY_COMPARE(spy.size(), 1);
        QVERIFY(write(game.filePath("new/deeper/b.log")));
        QVERIFY(write(root.filePath("pack/c.log")));
        QVERIFY(QDir().rename(root.filePath("pack"), game.filePath("pack")));
        const QStringList expected{game.filePath("old/a.log"), game.filePath("new/deeper/b.log"),
                                   game.filePath("pack/c.log")};
        QVERIFY(waitUntil([&] { return spy.size() >= expected.size(); }));

        watcher.stopNotify();
        QVERIFY(write(game.filePath("late.log")));
        QTest::qWait(50);
        QStringList paths;
        for (const QList<QVariant> &signal : spy)
            paths << signal.at(0).toString();
        QCOMPARE(paths, expected);
    }
};

QTEST_GUILESS_MAIN(TestFolderWatcher)
#include "tst_folderwatcher.moc"
