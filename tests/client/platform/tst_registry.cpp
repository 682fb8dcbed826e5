#include "client/platform/registryautostart.h"
#include "client/platform/registrylinux.h"
#include "client/platform/registrywine.h"
#include "client/settings/basregistry.h"
#include "support/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

using Root = Registry::Root;

namespace {

const QString kGameKey = QStringLiteral("SOFTWARE\\Red Storm Entertainment\\Rogue Spear");
const QString kRunKey = QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\Run");

// A system.reg as Wine writes it, with the games' keys, and a key line cut short.
const QByteArray kSystemReg =
    "WINE REGISTRY Version 2\n"
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
    "[Software\\\\Wow6432Node\\\\Red Storm Entertainment\\\\Black Ops] 1700000002\n"
    "\"MultiplayerPlayerName\"=\"Alice\"\n"
    "[Software\\\\Broken\n"
    "\"x\"=\"y\"\n";

// A registry over files in a folder of its own.
struct Rig
{
    QTemporaryDir dir;
    LinuxRegistry::Paths paths{dir.filePath("autostart"), dir.filePath("system.reg"),
                               dir.filePath("data/registry.ini")};
    LinuxRegistry registry{paths};
    BasRegistry helpers{registry};
};

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Values of the games' keys read from the Wine prefix, the way the result-log upload reads
    // the player names; a value not found is shown here as an invalid QVariant.
    void wineValues_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("value");
        const auto add = [](const char *row, QString name, QVariant value, QString key = kGameKey) {
            QTest::newRow(row) << key << name << value;
        };
        add("names without regard to case", "multiplayerplayername", QString("Bob \"the\" Builder"),
            kGameKey.toUpper());
        // 32-bit programs in a 64-bit prefix keep theirs under Wow6432Node.
        add("32-bit program", "MultiplayerPlayerName", QString("Alice"),
            "SOFTWARE\\Red Storm Entertainment\\Black Ops");
        add("escapes", "Escapes", QString::fromUtf8("back\\slash tab\t\u00e9t\u00e9\u00ff"));
        add("text ends at NUL", "Truncated", QString("before"));
        add("number", "Number", 42u);
        add("expandable string is another type", "Expand", QString(""));
        add("value after continuation lines", "Last", QString("after a long value"));
        add("default value", "", QString("default value"));
        add("missing value", "Nope", QVariant());
        add("prefix of a key is not the key", "MultiplayerPlayerName", QVariant(),
            "Software\\Red Storm Entertainment");
        add("key line without its bracket", "x", QVariant(), "Software\\Broken");
    }
    void wineValues()
    {
        QFETCH(QString, key);
        QFETCH(QString, name);
        QFETCH(QVariant, value);
        Rig rig;
        QVERIFY(writeFile(rig.paths.wineSystemReg, kSystemReg));
        const QVariant read = rig.helpers.readValue(Root::LocalMachine, key, name);
        QCOMPARE(rig.helpers.lastRegResult() == Registry::kNotFound ? QVariant() : read, value);
    }

    void otherValuesInTheIniFile()
    {
        Rig rig;
        const QList<std::pair<QString, QVariant>> values{
            {"  C:\\Games\\RS  ", "C:\\Games\\RS"}, // text trimmed
            {" 7 ", 7u},
            {"-1", 4294967295u},
            {"99999999999", "99999999999"}}; // too large for 32 bits: text
        for (int i = 0; i < values.size(); ++i)
            rig.helpers.writeValue(Root::CurrentUser, "Software\\Quorvel\\Test",
                                   QString("Value%1").arg(i), values[i].first);
        LinuxRegistry registry(rig.paths); // a new session reads what the last one wrote
        BasRegistry helpers(registry);
        for (int i = 0; i < values.size(); ++i)
            QCOMPARE(helpers.readValue(Root::CurrentUser, "software\\QUORVEL\\test",
                                       QString("value%1").arg(i)),
                     values[i].second);
        // Not in the INI file, nor in a Wine prefix that is not there.
        QCOMPARE(helpers.readValue(Root::LocalMachine, "Software\\Quorvel\\Test", "Value0"),
                 QVariant(""));
        QCOMPARE(helpers.lastRegResult(), Registry::kNotFound);
        QVERIFY(!QFileInfo::exists(rig.paths.autostartFolder));
    }

    // The entry names the program so that the desktop session's own launcher starts it, even
    // from a folder whose name needs quoting.
    void runValueIsAnAutostartEntry()
    {
        Rig rig;
        const QString entry = rig.paths.autostartFolder + "/quorvel.desktop";
        const QString folder = rig.dir.filePath("my apps/\"q\" $HOME back\\slash");
        const QString program = folder + "/quorvel";
        const QString marker = rig.dir.filePath("started");
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(writeFile(program, "#!/bin/sh\ntouch '" + marker.toUtf8() + "'\n"));
        QFile(program).setPermissions(QFile(program).permissions() | QFile::ExeOwner);

        rig.helpers.writeValue(Root::CurrentUser, kRunKey, "quorvel", program);
        QCOMPARE(rig.helpers.readValue(Root::CurrentUser, kRunKey.toLower(), "Quorvel"),
                 QVariant(program));
        if (const QString gio = QStandardPaths::findExecutable("gio"); !gio.isEmpty()) {
            QProcess launch;
            launch.start(gio, {"launch", entry});
            QVERIFY(launch.waitForFinished(10000));
            QCOMPARE(launch.exitCode(), 0);
            QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(marker), 10000);
        }

        // A percent sign is doubled in the entry; GLib refuses to launch such an entry, so this
        // one is only read back.
        QVERIFY(AutostartEntry::write(entry, "/opt/100%/quorvel"));
        QCOMPARE(AutostartEntry::read(entry), std::optional<QString>("/opt/100%/quorvel"));

        rig.helpers.writeValue(Root::CurrentUser, kRunKey, "quorvel", QString());
        QVERIFY(!QFileInfo::exists(entry));
        QCOMPARE(rig.helpers.readValue(Root::CurrentUser, kRunKey, "quorvel"), QVariant(""));
    }

    void disabledEntryIsEmpty_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("value");
        QTest::newRow("enabled, other group ignored")
            << QByteArray("[Desktop Entry]\nExec=/bin/q --x\n[Desktop Action x]\nHidden=true\n")
            << "/bin/q";
        QTest::newRow("hidden") << QByteArray("[Desktop Entry]\nExec=/bin/q\nHidden=true\n") << "";
        QTest::newRow("disabled for GNOME")
            << QByteArray("[Desktop Entry]\nExec=/bin/q\nX-GNOME-Autostart-enabled=false\n") << "";
    }
    void disabledEntryIsEmpty()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, value);
        QTemporaryDir dir;
        QVERIFY(writeFile(dir.filePath("q.desktop"), content));
        QCOMPARE(AutostartEntry::read(dir.filePath("q.desktop")), std::optional<QString>(value));
    }
};

QTEST_GUILESS_MAIN(TestRegistry)
#include "tst_registry.moc"
