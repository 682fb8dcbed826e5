#include "client/options/hotkeynames.h"
#include "client/options/options.h"
#include "client/options/settingsfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

namespace {

// "autostart|auto login|sound|reset|hot-key tag|hot-key text|Rogue Spear|Black Ops"
QString summary(const Options &o)
{
    return QStringList{QString::number(o.autoStart()),
                       QString::number(o.autoLogIn()),
                       QString::number(o.sound()),
                       QString::number(o.reset()),
                       o.hotKeyTag(),
                       o.hotKeyText(),
                       o.pathRS(),
                       o.pathBlackOps()}
        .join('|');
}

} // namespace

class TestSettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("loaded");
        QTest::newRow("sample file")
            << QByteArray("1\r\n0\r\n1\r\n1\r\n116\r\nC:\\Games\\RS\r\n\r\n")
            << "1|0|1|1|116|F5|C:\\Games\\RS|";
        QTest::newRow("blanks around digits and folders")
            << QByteArray(" 1 \r\n 0 \r\n 1 \r\n 0 \r\n 122 \r\n  /games/rs  \r\n /games/bo \r\n")
            << "1|0|1|0|122|F11|/games/rs|/games/bo";
        QTest::newRow("line ends without carriage returns")
            << QByteArray("0\n1\n0\n1\n123\n/rs\n/bo") << "0|1|0|1|123|F12|/rs|/bo";
        QTest::newRow("short file keeps the rest") << QByteArray("1\r\n1\r\n") << "1|1|0|0||||";
        QTest::newRow("unreadable lines skipped, reading goes on")
            << QByteArray("x\r\n1\r\n\r\n7\r\nF5\r\n/rs\r\n") << "0|1|0|0|F5||/rs|";
        QTest::newRow("key outside the name table")
            << QByteArray("0\r\n0\r\n0\r\n1\r\n16\r\n") << "0|0|0|1|16|||";
        QTest::newRow("Windows code page folder")
            << QByteArray("0\r\n0\r\n0\r\n0\r\n\r\nC:\\Spiele\\R\xf6gue\r\n")
            << QString::fromUtf8("0|0|0|0|||C:\\Spiele\\Rögue|");
        QTest::newRow("UTF-8 folder")
            << QByteArray("0\r\n0\r\n0\r\n0\r\n\r\n/home/j\xc3\xb6rg/rs\r\n")
            << QString::fromUtf8("0|0|0|0|||/home/jörg/rs|");
    }
    void parse()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, loaded);
        Options options;
        SettingsFile::parse(content, options);
        QCOMPARE(summary(options), loaded);
    }

    // Written in code page 1252 as on Windows, unless a folder needs more than 1252 holds.
    void readsTheFileItWrote_data()
    {
        QTest::addColumn<QString>("pathRS");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("1252") << QString::fromUtf8("/games/Caf\u00e9")
                              << QByteArray("/games/Caf\xe9");
        QTest::newRow("beyond 1252") << QString::fromUtf8("/home/\u044e\u043b\u044f")
                                     << QByteArray("/home/\xd1\x8e\xd0\xbb\xd1\x8f");
    }
    void readsTheFileItWrote()
    {
        QFETCH(QString, pathRS);
        QFETCH(QByteArray, written);
        QTemporaryDir dir;
        const QString path = dir.filePath(SettingsFile::fileName());
        Options options;
        options.setSound(true);
        QVERIFY(!SettingsFile::read(path, options)); // no file yet: the values stay
        QVERIFY(options.sound());
        options.captureHotKey(122);
        options.setPathRS(pathRS);
        QVERIFY(SettingsFile::write(path, options));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), "0\r\n0\r\n1\r\n0\r\n122\r\n" + written + "\r\n\r\n");
        Options reread;
        QVERIFY(SettingsFile::read(path, reread));
        QCOMPARE(summary(reread), summary(options));
    }

    void hotKeyNamesAtTheEdgesOfTheTable()
    {
        const QList<std::pair<int, QString>> names{
            {47, {}},    {48, "0"},    {57, "9"},    {58, {}},     {64, {}},
            {65, "A"},   {90, "Z"},    {91, {}},     {111, {}},    {112, "F1"},
            {120, "F9"}, {121, "F10"}, {122, "F11"}, {123, "F12"}, {124, {}}};
        for (const auto &[code, name] : names) {
            const QString shown = HotKeys::displayName(code);
            QVERIFY2(shown == name && shown.isNull() == name.isNull(),
                     qPrintable(QString::number(code) + " -> " + shown));
        }
    }

    void qtKeysToVirtualKeys()
    {
        struct Case
        {
            int qtKey;
            bool keypad;
            int code;
        };
        const Case cases[] = {{Qt::Key_Shift, false, 16},  {Qt::Key_7, false, 55},
                              {Qt::Key_7, true, 103},      {Qt::Key_Exclam, false, 49},
                              {Qt::Key_Plus, false, 187},  {Qt::Key_Plus, true, 107},
                              {Qt::Key_VolumeUp, false, 0}};
        for (const Case &c : cases)
            QCOMPARE(HotKeys::virtualKeyFromQtKey(c.qtKey, c.keypad), c.code);
    }

    // A tag that is no number is no hot key at all, and has no name.
    void tagThatIsNoNumber()
    {
        Options options;
        options.captureHotKey(116);
        options.setHotKeyTag("x");
        QCOMPARE(options.hotKey(), std::nullopt);
        QCOMPARE(options.hotKeyText(), QString());
    }
};

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
