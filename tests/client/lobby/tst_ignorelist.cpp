// The ignore list across a reload of its file: a player is one player however the lobby lets his
// name be spelled, and any name it lets through comes back whole.
#include "client/lobby/ignorelist.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

class TestIgnoreList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keptAcrossAReload_data()
    {
        QTest::addColumn<QString>("name");  // as ignored
        QTest::addColumn<QString>("other"); // the same player spelled otherwise

        QTest::newRow("case") << "Anna"
                              << "aNNA";
        QTest::newRow("full width") << QString::fromUtf8("ＡＮＮＡ") << "anna";
        QTest::newRow("code page 1252")
            << QString::fromUtf8("Jürgen€ß") << QString::fromUtf8("JÜRGEN€ẞ");
        // What the file itself uses to keep a name on one line.
        QTest::newRow("line break and escape") << "a\nb%0A\r"
                                               << "A\nB%0a\r";
    }

    void keptAcrossAReload()
    {
        QFETCH(QString, name);
        QFETCH(QString, other);
        QTemporaryDir home;
        const QString path = home.filePath("data/ignored.txt");
        {
            IgnoreList list(path);
            QSignalSpy changed(&list, &IgnoreList::changed);
            list.setIgnored(name, true);
            list.setIgnored(other, true);
            list.setIgnored("someone else", false);
            QCOMPARE(changed.count(), 1);
        }
        IgnoreList reloaded(path);
        QCOMPARE(reloaded.names(), QStringList{name});
        QVERIFY(reloaded.contains(other));
        QVERIFY(!reloaded.contains(name + "x"));
        QCOMPARE(QFileInfo(path).permissions() &
                     ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser),
                 QFile::Permissions());

        reloaded.setIgnored(other, false);
        QVERIFY(!IgnoreList(path).contains(name));
    }
};

QTEST_MAIN(TestIgnoreList)
#include "tst_ignorelist.moc"
