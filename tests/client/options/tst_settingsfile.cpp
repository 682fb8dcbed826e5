#include "client/app/options/hotkeynames.h"
#include "client/app/options/options.h"
#include "client/app/options/settingsfile.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

// What a settings file yields: autostart, auto login, sound, reset, hot-key tag, hot-key
// text, Rogue Spear folder, Black Ops folder.
struct Loaded
{
    bool autoStart, autoLogIn, sound, reset;
    QString hotKeyTag, hotKeyText, pathRS, pathBlackOps;

    static Loaded of(const Options &o)
    {
        return {o.autoStart(), o.autoLogIn(),  o.sound(),  o.reset(),
                o.hotKeyTag(), o.hotKeyText(), o.pathRS(), o.pathBlackOps()};
    }
    bool operator==(const Loaded &) const = default;
};
Q_DECLARE_METATYPE(Loaded)

namespace QTest {
template <> char *toString(const Loaded &l)
{
    return qstrdup(QStringLiteral("{%1 %2 %3 %4 tag'%5' text'%6' rs'%7' bo'%8'}")
                       .arg(l.autoStart)
                       .arg(l.autoLogIn)
                       .arg(l.sound)
                       .arg(l.reset)
                       .arg(l.hotKeyTag, l.hotKeyText, l.pathRS, l.pathBlackOps)
                       .toUtf8()
                       .constData());
}
} // namespace QTest

class TestSettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<Loaded>("loaded");
        const Loaded defaults{false, false, false, false, {}, {}, {}, {}};

        QTest::newRow("sample file")
            << QByteArray("1\r\n0\r\n1\r\n1\r\n116\r\nC:\\Games\\RS\r\n\r\n")
            << Loaded{true, false, true, true, "116", "F5", "C:\\Games\\RS", ""};
        QTest::newRow("blanks around digits and folders")
            << QByteArray(" 1 \r\n 0 \r\n 1 \r\n 0 \r\n 65 \r\n  /games/rs  \r\n /games/bo \r\n")
            << Loaded{true, false, true, false, "65", "A", "/games/rs", "/games/bo"};
        QTest::newRow("line ends without carriage returns")
            << QByteArray("0\n1\n0\n1\n123\n/rs\n/bo")
            << Loaded{false, true, false, true, "123", "F12", "/rs", "/bo"};
        QTest::newRow("short file keeps the rest")
            << QByteArray("1\r\n1\r\n") << Loaded{true, true, false, false, {}, {}, {}, {}};
        QTest::newRow("unreadable lines skipped, reading goes on")
            << QByteArray("x\r\n1\r\n\r\n7\r\nF5\r\n/rs\r\n")
            << Loaded{false, true, false, false, "F5", "", "/rs", ""};
        QTest::newRow("key outside the name table")
            << QByteArray("0\r\n0\r\n0\r\n1\r\n16\r\n")
            << Loaded{false, false, false, true, "16", "", {}, {}};
        QTest::newRow("F9 and F10 boundary")
            << QByteArray("0\r\n0\r\n0\r\n1\r\n121\r\n")
            << Loaded{false, false, false, true, "121", "F10", {}, {}};
        QTest::newRow("empty file") << QByteArray() << defaults;
        QTest::newRow("Windows code page folder")
            << QByteArray("0\r\n0\r\n0\r\n0\r\n\r\nC:\\Spiele\\R\xf6gue\r\n")
            << Loaded{false, false, false, false, {}, {}, QString::fromUtf8("C:\\Spiele\\Rögue"),
                      {}};
        QTest::newRow("UTF-8 folder")
            << QByteArray("0\r\n0\r\n0\r\n0\r\n\r\n/home/j\xc3\xb6rg/rs\r\n")
            << Loaded{false, false, false, false, {}, {}, QString::fromUtf8("/home/jörg/rs"), {}};
    }
    void parse()
    {
        QFETCH(QByteArray, content);
        QFETCH(Loaded, loaded);
        Options options;
        SettingsFile::parse(content, options);
        QCOMPARE(Loaded::of(options), loaded);
    }

    void writesAllSevenLinesAndReadsThemBack()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(SettingsFile::fileName());
        Options options;
        QVERIFY(SettingsFile::write(path, options));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("0\r\n0\r\n0\r\n0\r\n\r\n\r\n\r\n"));
        file.close();

        options.setAutoLogIn(true);
        options.setReset(true);
        options.captureHotKey(116);
        options.setPathRS(QString::fromUtf8("/games/Rogue Spëar"));
        options.setPathBlackOps("/games/bo");
        QVERIFY(SettingsFile::write(path, options));
        Options reread;
        QVERIFY(SettingsFile::read(path, reread));
        QCOMPARE(Loaded::of(reread), Loaded::of(options));
    }

    void missingFileKeepsValues()
    {
        QTemporaryDir dir;
        Options options;
        options.setSound(true);
        QVERIFY(!SettingsFile::read(dir.filePath("none.txt"), options));
        QVERIFY(options.sound());
    }

    void randomBytesNeverCrash()
    {
        QRandomGenerator random(1234);
        for (int i = 0; i < 3000; ++i) {
            QByteArray bytes(random.bounded(200), Qt::Uninitialized);
            for (char &b : bytes)
                b = char(random.bounded(256));
            // Line ends and digits often enough to reach every line of the reader.
            for (int k = 0; k < bytes.size(); k += 1 + random.bounded(6))
                bytes[k] = "\n\r01 "[random.bounded(5)];
            Options options;
            SettingsFile::parse(bytes, options);
            QVERIFY(options.hotKeyText().isEmpty() ||
                    !HotKeys::displayName(options.hotKey().value_or(0)).isEmpty());
        }
    }

    void hotKeyNames_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("name");
        QTest::newRow("0") << 48 << "0";
        QTest::newRow("9") << 57 << "9";
        QTest::newRow("A") << 65 << "A";
        QTest::newRow("Z") << 90 << "Z";
        QTest::newRow("F1") << 112 << "F1";
        QTest::newRow("F9") << 120 << "F9";
        QTest::newRow("F10") << 121 << "F10";
        QTest::newRow("F11") << 122 << "F11";
        QTest::newRow("F12") << 123 << "F12";
        QTest::newRow("before the digits") << 47 << QString();
        QTest::newRow("after the digits") << 58 << QString();
        QTest::newRow("after Z") << 91 << QString();
        QTest::newRow("F13") << 124 << QString();
        QTest::newRow("Shift") << 16 << QString();
    }
    void hotKeyNames()
    {
        QFETCH(int, code);
        QFETCH(QString, name);
        QCOMPARE(HotKeys::displayName(code), name);
        QCOMPARE(HotKeys::displayName(code).isNull(), name.isNull());
    }

    void qtKeysToVirtualKeys_data()
    {
        QTest::addColumn<int>("qtKey");
        QTest::addColumn<bool>("keypad");
        QTest::addColumn<int>("code");
        QTest::newRow("Shift") << int(Qt::Key_Shift) << false << 16;
        QTest::newRow("digit") << int(Qt::Key_7) << false << 55;
        QTest::newRow("keypad digit") << int(Qt::Key_7) << true << 103;
        QTest::newRow("shifted digit") << int(Qt::Key_Exclam) << false << 49;
        QTest::newRow("letter") << int(Qt::Key_Q) << false << 81;
        QTest::newRow("F5") << int(Qt::Key_F5) << false << 116;
        QTest::newRow("F12") << int(Qt::Key_F12) << false << 123;
        QTest::newRow("plus") << int(Qt::Key_Plus) << false << 187;
        QTest::newRow("keypad plus") << int(Qt::Key_Plus) << true << 107;
        QTest::newRow("no code") << int(Qt::Key_VolumeUp) << false << 0;
    }
    void qtKeysToVirtualKeys()
    {
        QFETCH(int, qtKey);
        QFETCH(bool, keypad);
        QFETCH(int, code);
        QCOMPARE(HotKeys::virtualKeyFromQtKey(qtKey, keypad), code);
    }

    void capturedKeyWithoutNameKeepsTheText()
    {
        Options options;
        QSignalSpy changed(&options, &Options::hotKeyChanged);
        options.captureHotKey(116);
        QCOMPARE(options.hotKeyText(), "F5");
        options.captureHotKey(16);
        QCOMPARE(options.hotKeyTag(), "16");
        QCOMPARE(options.hotKeyText(), "F5");
        QCOMPARE(options.hotKey(), std::optional<int>(16));
        QCOMPARE(changed.count(), 2);

        options.setHotKeyTag("x");
        QCOMPARE(options.hotKey(), std::nullopt);
        QCOMPARE(options.hotKeyText(), QString());
    }
};

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
