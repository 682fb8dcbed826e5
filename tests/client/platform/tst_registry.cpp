#include "client/app/options/basregistry.h"
#include "client/platform/registryautostart.h"
#include "client/platform/registrylinux.h"
#include "client/platform/registrywine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using Root = Registry::Root;

namespace {

const QString kGameKey = QStringLiteral("SOFTWARE\\Red Storm Entertainment\\Rogue Spear");
const QString kRunKey = QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\Run");

// A system.reg as Wine writes it, with the games' keys among others.
const QByteArray kSystemReg =
    "WINE REGISTRY Version 2\n"
    ";; All keys relative to \\\\Machine\n"
    "\n"
    "#arch=win64\n"
    "\n"
    "[Software\\\\Microsoft\\\\Windows] 1700000000\n"
    "#time=1da0000000000\n"
    "\"MultiplayerPlayerName\"=\"Wrong key\"\n"
    "\n"
    "[Software\\\\Red Storm Entertainment\\\\Rogue Spear] 1700000001\n"
    "#time=1da0000000001\n"
    "\"MultiplayerPlayerName\"=\"Bob \\\"the\\\" Builder\"\n"
    "\"Escapes\"=\"back\\\\slash tab\\t\\x00e9t\\xe9\\377\"\n"
    "\"Truncated\"=\"before\\0after\"\n"
    "\"Number\"=dword:0000002a\n"
    "\"Expand\"=str(2):\"%SystemRoot%\"\n"
    "\"Binary\"=hex:01,02,03,\\\n"
    "  04,05\n"
    "\"Last\"=\"after a long value\"\n"
    "@=\"default value\"\n"
    "\n"
    "[Software\\\\Wow6432Node\\\\Red Storm Entertainment\\\\Black Ops] 1700000002\n"
    "\"MultiplayerPlayerName\"=\"Alice\"\n";

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wineValues_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("found");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<uint>("number");
        const int string = int(RegistryValue::Type::String);
        const int number = int(RegistryValue::Type::Number);
        const int other = int(RegistryValue::Type::Other);
        QTest::newRow("string with quotes")
            << kGameKey << "MultiplayerPlayerName" << true << string << "Bob \"the\" Builder" << 0u;
        QTest::newRow("names without regard to case")
            << kGameKey.toUpper() << "multiplayerplayername" << true << string
            << "Bob \"the\" Builder" << 0u;
        QTest::newRow("escapes") << kGameKey << "Escapes" << true << string
                                 << QString::fromUtf8("back\\slash tab\t\u00e9t\u00e9\u00ff") << 0u;
        QTest::newRow("NUL kept") << kGameKey << "Truncated" << true << string
                                  << QString::fromUtf8("before") + QChar(0) + "after" << 0u;
        QTest::newRow("number") << kGameKey << "Number" << true << number << "" << 42u;
        QTest::newRow("expandable string is another type")
            << kGameKey << "Expand" << true << other << "" << 0u;
        QTest::newRow("binary") << kGameKey << "Binary" << true << other << "" << 0u;
        QTest::newRow("value after continuation lines")
            << kGameKey << "Last" << true << string << "after a long value" << 0u;
        QTest::newRow("default value") << kGameKey << "" << true << string << "default value" << 0u;
        QTest::newRow("missing value") << kGameKey << "Nope" << false << other << "" << 0u;
        QTest::newRow("missing key") << "Software\\Nothing"
                                     << "MultiplayerPlayerName" << false << other << "" << 0u;
        QTest::newRow("prefix of a key is not the key")
            << "Software\\Red Storm Entertainment"
            << "MultiplayerPlayerName" << false << other << "" << 0u;
    }
    void wineValues()
    {
        QFETCH(QString, key);
        QFETCH(QString, name);
        QFETCH(bool, found);
        QFETCH(int, type);
        QFETCH(QString, text);
        QFETCH(uint, number);
        const auto value = WineRegistry::findValue(kSystemReg, key, name);
        QCOMPARE(value.has_value(), found);
        if (!found)
            return;
        QCOMPARE(int(value->type), type);
        QCOMPARE(value->text, text);
        QCOMPARE(value->number, number);
    }

    void wineFileOfGarbage()
    {
        QByteArray garbage;
        for (int i = 0; i < 4096; ++i)
            garbage.append(char((i * 7919) % 256));
        garbage += "\n[Software\\\\Red Storm Entertainment\\\\Rogue Spear\n\"x\"=\"\\";
        QVERIFY(!WineRegistry::findValue(garbage, kGameKey, u"x"));
        QVERIFY(!WineRegistry::findValue(QByteArray(), kGameKey, u"x"));
    }

    // The games' player names, read the way the result-log upload reads them.
    void playerNameFromWinePrefix()
    {
        QTemporaryDir dir;
        QFile reg(dir.filePath("system.reg"));
        QVERIFY(reg.open(QIODevice::WriteOnly));
        reg.write(kSystemReg);
        reg.close();
        LinuxRegistry registry({dir.filePath("autostart"), reg.fileName(), dir.filePath("r.ini")});
        BasRegistry helpers(registry);

        QCOMPARE(helpers.readValue(Root::LocalMachine, kGameKey, "MultiplayerPlayerName"),
                 QVariant("Bob \"the\" Builder"));
        QCOMPARE(helpers.lastRegResult(), Registry::kSuccess);
        // 32-bit programs in a 64-bit prefix keep theirs under Wow6432Node.
        QCOMPARE(helpers.readValue(Root::LocalMachine,
                                   "SOFTWARE\\Red Storm Entertainment\\Black Ops",
                                   "MultiplayerPlayerName"),
                 QVariant("Alice"));
        QCOMPARE(helpers.readValue(Root::LocalMachine, kGameKey, "Truncated"), QVariant("before"));
        QCOMPARE(helpers.readValue(Root::LocalMachine, kGameKey, "Number"), QVariant(42u));
        QCOMPARE(helpers.readValue(Root::LocalMachine, kGameKey, "Binary"), QVariant(""));
        QCOMPARE(helpers.lastRegResult(), Registry::kSuccess);
        QCOMPARE(helpers.readValue(Root::LocalMachine, kGameKey, "Missing"), QVariant(""));
        QCOMPARE(helpers.lastRegResult(), Registry::kNotFound);
    }

    void noWinePrefix()
    {
        QTemporaryDir dir;
        LinuxRegistry registry(
            {dir.filePath("autostart"), dir.filePath("no/system.reg"), dir.filePath("r.ini")});
        BasRegistry helpers(registry);
        QCOMPARE(helpers.readValue(Root::LocalMachine, kGameKey, "MultiplayerPlayerName"),
                 QVariant(""));
        QCOMPARE(helpers.lastRegResult(), Registry::kNotFound);
    }

    void otherValuesInTheIniFile_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QVariant>("read");
        QTest::newRow("text trimmed") << "  some text  " << QVariant("some text");
        QTest::newRow("number") << "42" << QVariant(42u);
        QTest::newRow("number with blanks") << " 7 " << QVariant(7u);
        QTest::newRow("negative number") << "-1" << QVariant(4294967295u);
        QTest::newRow("too large for 32 bits") << "99999999999" << QVariant("99999999999");
        QTest::newRow("path") << "C:\\Games\\RS" << QVariant("C:\\Games\\RS");
        QTest::newRow("empty") << "" << QVariant("");
    }
    void otherValuesInTheIniFile()
    {
        QFETCH(QString, written);
        QFETCH(QVariant, read);
        QTemporaryDir dir;
        const LinuxRegistry::Paths paths{dir.filePath("autostart"), dir.filePath("system.reg"),
                                         dir.filePath("data/registry.ini")};
        {
            LinuxRegistry registry(paths);
            BasRegistry helpers(registry);
            helpers.writeValue(Root::CurrentUser, "Software\\Quorvel\\Test", "Value", written);
            QCOMPARE(helpers.lastRegResult(), Registry::kSuccess);
        }
        LinuxRegistry registry(paths); // a new session reads what the last one wrote
        BasRegistry helpers(registry);
        QCOMPARE(helpers.readValue(Root::CurrentUser, "software\\QUORVEL\\test", "value"), read);
        QCOMPARE(helpers.readValue(Root::LocalMachine, "Software\\Quorvel\\Test", "Value"),
                 QVariant(""));
        QCOMPARE(helpers.lastRegResult(), Registry::kNotFound);
        QVERIFY(!QFileInfo::exists(paths.autostartFolder));
    }

    void runValueIsAnAutostartEntry()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath("autostart");
        LinuxRegistry registry({folder, dir.filePath("system.reg"), dir.filePath("r.ini")});
        BasRegistry helpers(registry);
        const QString entry = folder + "/quorvel.desktop";

        QCOMPARE(helpers.readValue(Root::CurrentUser, kRunKey, "quorvel"), QVariant(""));
        QCOMPARE(helpers.lastRegResult(), Registry::kNotFound);

        const QString program = dir.filePath("my apps/quorvel");
        helpers.writeValue(Root::CurrentUser, kRunKey, "quorvel", program);
        QCOMPARE(helpers.lastRegResult(), Registry::kSuccess);
        QVERIFY(QFileInfo::exists(entry));
        QCOMPARE(helpers.readValue(Root::CurrentUser, kRunKey.toLower(), "Quorvel"),
                 QVariant(program));

        helpers.writeValue(Root::CurrentUser, kRunKey, "quorvel", QString());
        QVERIFY(!QFileInfo::exists(entry));
        QCOMPARE(helpers.readValue(Root::CurrentUser, kRunKey, "quorvel"), QVariant(""));
        QVERIFY(!QFileInfo::exists(dir.filePath("r.ini")));
    }

    void autostartEntryArguments_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("plain") << "/usr/bin/quorvel";
        QTest::newRow("blank") << "/home/a b/quorvel";
        QTest::newRow("percent") << "/opt/100%/quorvel";
        QTest::newRow("quotes and dollar") << "/opt/\"q\" $HOME/quorvel";
        QTest::newRow("backslash") << "/opt/back\\slash/quorvel";
    }
    void autostartEntryArguments()
    {
        QFETCH(QString, program);
        QTemporaryDir dir;
        const QString entry = dir.filePath("x.desktop");
        QVERIFY(AutostartEntry::write(entry, program));
        QCOMPARE(AutostartEntry::read(entry), std::optional<QString>(program));
    }

    void disabledEntryIsEmpty_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("value");
        QTest::newRow("enabled") << QByteArray("[Desktop Entry]\nExec=/bin/q --x\n") << "/bin/q";
        QTest::newRow("hidden") << QByteArray("[Desktop Entry]\nExec=/bin/q\nHidden=true\n") << "";
        QTest::newRow("disabled for GNOME")
            << QByteArray("[Desktop Entry]\nExec=/bin/q\nX-GNOME-Autostart-enabled=false\n") << "";
        QTest::newRow("other group ignored")
            << QByteArray("[Desktop Entry]\nExec=/bin/q\n[Desktop Action x]\nHidden=true\n")
            << "/bin/q";
        QTest::newRow("no Exec") << QByteArray("[Desktop Entry]\nName=q\n") << "";
        QTest::newRow("garbage") << QByteArray("\x01\x02[\n=\n") << "";
    }
    void disabledEntryIsEmpty()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, value);
        QTemporaryDir dir;
        QFile file(dir.filePath("q.desktop"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        QCOMPARE(AutostartEntry::read(file.fileName()), std::optional<QString>(value));
    }

    // The desktop session's own launcher starts what the entry names.
    void entryStartsTheProgram()
    {
        const QString gio = QStandardPaths::findExecutable("gio");
        if (gio.isEmpty())
            QSKIP("gio (the desktop launcher) is not installed");
        QTemporaryDir dir;
        QVERIFY(QDir().mkpath(dir.filePath("my apps")));
        const QString program = dir.filePath("my apps/quorvel");
        const QString marker = dir.filePath("started");
        QFile script(program);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\ntouch '" + marker.toUtf8() + "'\n");
        script.close();
        script.setPermissions(script.permissions() | QFile::ExeOwner);

        LinuxRegistry registry({dir.filePath("autostart"), {}, dir.filePath("r.ini")});
        BasRegistry(registry).writeValue(Root::CurrentUser, kRunKey, "quorvel", program);
        QProcess launch;
        launch.start(gio, {"launch", dir.filePath("autostart/quorvel.desktop")});
        QVERIFY(launch.waitForFinished(10000));
        QCOMPARE(launch.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(marker), 10000);
    }
};

QTEST_GUILESS_MAIN(TestRegistry)
#include "tst_registry.moc"
