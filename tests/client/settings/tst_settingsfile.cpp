#include "client/settings/hotkeynames.h"
#include "client/settings/options.h"
#include "client/settings/settingsfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

namespace {

// "autostart|auto login|sound|reset|hot-key tag|hot-key text|Rogue Spear|Black Ops"
QString summary(const Options &o)
{
    QStringList parts;
    for (bool flag : {o.autoStart(), o.autoLogIn(), o.sound(), o.reset()})
        parts << QString::number(flag);
    return (parts << o.hotKeyTag() << o.hotKeyText() << o.pathRS() << o.pathBlackOps()).join('|');
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
        const auto add = [](const char *name, QByteArray content, QString loaded) {
            QTest::newRow(name) << content << loaded;
        };
        add("blanks around digits and folders",
            " 1 \r\n 0 \r\n 1 \r\n 0 \r\n 122 \r\n  /games/rs  \r\n /games/bo \r\n",
            "1|0|1|0|122|F11|/games/rs|/games/bo");
        add("line ends without carriage returns", "0\n1\n0\n1\n123\n/rs\n/bo",
            "0|1|0|1|123|F12|/rs|/bo");
        add("short file keeps the rest", "1\r\n1\r\n", "1|1|0|0|116|F5||");
        // A tag that is no number is no hot key, and has no name.
        add("unreadable lines skipped, reading goes on", "x\r\n1\r\n\r\n7\r\nF5\r\n/rs\r\n",
            "0|1|0|0|F5||/rs|");
        add("Windows code page folder", "0\r\n0\r\n0\r\n0\r\n\r\nC:\\Spiele\\R\xf6gue\r\n",
            QString::fromUtf8("0|0|0|0|||C:\\Spiele\\Rögue|"));
        add("UTF-8 folder", "0\r\n0\r\n0\r\n0\r\n\r\n/home/j\xc3\xb6rg/rs\r\n",
            QString::fromUtf8("0|0|0|0|||/home/jörg/rs|"));
    }
    void parse()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, loaded);
        Options options;
        options.captureHotKey(116);
        SettingsFile::parse(content, options);
        QCOMPARE(summary(options), loaded);
    }

    // Code page 1252 is what the file is written in (the options window's test reads those
    // bytes), unless a folder needs more than 1252 holds: then UTF-8.
    void writesUtf8BeyondCodePage1252()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(SettingsFile::fileName());
        Options options;
        options.setSound(true);
        QVERIFY(!SettingsFile::read(path, options)); // no file yet: the values stay
        QVERIFY(options.sound());
        options.captureHotKey(122);
        options.setPathRS(QString::fromUtf8("/home/\u044e\u043b\u044f"));
        QVERIFY(SettingsFile::write(path, options));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(
            file.readAll(),
            QByteArray("0\r\n0\r\n1\r\n0\r\n122\r\n/home/\xd1\x8e\xd0\xbb\xd1\x8f\r\n\r\n1\r\n"));
    }

    // Names at the edges of the table; keys the options window's tests do not press.
    void hotKeyCodes()
    {
        const QList<std::pair<int, QString>> names{{47, {}},  {48, "0"},   {57, "9"},    {58, {}},
                                                   {64, {}},  {65, "A"},   {90, "Z"},    {91, {}},
                                                   {111, {}}, {112, "F1"}, {123, "F12"}, {124, {}}};
        for (const auto &[code, name] : names) {
            const QString shown = HotKeys::displayName(code);
            QVERIFY2(shown == name && shown.isNull() == name.isNull(),
                     qPrintable(QString::number(code) + " -> " + shown));
        }
        QCOMPARE(HotKeys::virtualKeyFromQtKey(Qt::Key_7, true), 103);
        QCOMPARE(HotKeys::virtualKeyFromQtKey(Qt::Key_Exclam, false), 49);
        QCOMPARE(HotKeys::virtualKeyFromQtKey(Qt::Key_Plus, false), 187);
        QCOMPARE(HotKeys::virtualKeyFromQtKey(Qt::Key_Plus, true), 107);
    }
};

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
