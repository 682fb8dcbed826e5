#include "client/options/frmoptions.h"
#include "client/options/hotkeyedit.h"
#include "client/platform/registryautostart.h"
#include "client/platform/registrylinux.h"
#include "client/settings/autostart.h"
#include "client/settings/basregistry.h"
#include "client/settings/options.h"
#include "client/settings/optionsstore.h"
#include "client/ui/picturebutton.h"
#include "support/clientfakes.h"
#include "support/files.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

namespace {

QString autostartEntryPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/autostart/quorvel.desktop";
}

// The options with their store and dialogs, in a data folder and Wine prefix of their own,
// and no autostart entry.
struct Rig
{
    Rig()
    {
        QDir().mkpath(dataFolder());
        QFile::remove(autostartEntryPath());
    }
    QString dataFolder() const { return dir.filePath("data"); }
    QString settingsPath() const { return dataFolder() + "/settingRS.txt"; }
    QString winePrefix() const { return dir.filePath("wine"); }
    FrmOptions &open()
    {
        window = std::make_unique<FrmOptions>(options, store, dialogs);
        window->show();
        (void)QTest::qWaitForWindowExposed(window.get());
        return *window;
    }

    QTemporaryDir dir;
    Options options;
    FakeDialogs dialogs;
    OptionsStore store{options, dataFolder(), DefaultGameFolders::forWinePrefix(winePrefix()),
                       dialogs};
    std::unique_ptr<FrmOptions> window;
};

} // namespace

class TestFrmOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The controls show the options and edit them in place; closing writes all seven lines.
    void editingThenClosing()
    {
        Rig rig;
        rig.options.setAutoLogIn(true);
        rig.options.setPathRS(QString::fromUtf8("/games/Rogue Spéar"));
        FrmOptions &w = rig.open();
        QVERIFY(w.chkAutoLogIn->isChecked());
        QCOMPARE(w.txtPathRS->text(), rig.options.pathRS());
        rig.options.setAutoLogIn(false);
        QVERIFY(!w.chkAutoLogIn->isChecked());
        w.chkSound->click();
        QVERIFY(!w.txtHotKey->isEnabled());
        w.chkReset->click();
        QVERIFY(w.txtHotKey->isEnabled());
        QTest::keyClicks(w.txtPathBlackOps, "/bo");

        w.chkBuddyNotify->click(); // on unless switched off
        QSignalSpy closed(&w, &FrmOptions::closed);
        w.picClose->click();
        QCOMPARE(closed.count(), 1);
        QVERIFY(w.isHidden());
        QFile file(rig.settingsPath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        // Code page 1252, as on Windows: "é" is one byte.
        QCOMPARE(file.readAll(), QByteArray("0\r\n0\r\n1\r\n1\r\n\r\n/games/Rogue Sp\xe9"
                                            "ar\r\n/bo\r\n0\r\n"));
    }

    // The key's place counts, not what the layout prints on it; other keys, and every key
    // without a keycode (offscreen), by what they mean. A key without a name keeps the name
    // shown; a key without a code is not taken. "Q" is the hot key before.
    void hotKeyByPhysicalKey_data()
    {
        QTest::addColumn<int>("qtKey");
        QTest::addColumn<int>("keycode");
        QTest::addColumn<QString>("shown"); // tag and text
        QTest::newRow("AZERTY top-row 1, prints &") << int(Qt::Key_Ampersand) << 10 << "49 1";
        QTest::newRow("AZERTY top-row 0, prints à") << int(Qt::Key_Agrave) << 19 << "48 0";
        QTest::newRow("QWERTZ Z, where US has Y") << int(Qt::Key_Z) << 29 << "89 Y";
        QTest::newRow("F12") << int(Qt::Key_F12) << 96 << "123 F12";
        QTest::newRow("Shift, by its meaning") << int(Qt::Key_Shift) << 50 << "16 Q";
        QTest::newRow("no keycode") << int(Qt::Key_7) << 0 << "55 7";
        QTest::newRow("no code at all") << int(Qt::Key_VolumeUp) << 0 << "81 Q";
    }
    void hotKeyByPhysicalKey()
    {
        QFETCH(int, qtKey);
        QFETCH(int, keycode);
        QFETCH(QString, shown);
        Rig rig;
        rig.options.setReset(true);
        rig.options.captureHotKey(81);
        FrmOptions &w = rig.open();
        QKeyEvent press(QEvent::KeyPress, qtKey, Qt::NoModifier, quint32(keycode), 0, 0);
        QCoreApplication::sendEvent(w.txtHotKey, &press);
        QCOMPARE(w.txtHotKey->property("tag").toString() + ' ' + w.txtHotKey->text(), shown);
    }

    // Clicking into a folder field browses for the game's executable; "Delete Path" asks first.
    void gameFolderControls_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("answer");      // the file chosen, or Yes / No
        QTest::addColumn<QStringList>("outcome"); // the two folders, then the question asked
        const QString browse = "file: Programs (*.exe *.EXE)", sure = "Are you sure? [Yes/No]";
        const auto add = [](const char *name, QString control, QString answer,
                            QStringList outcome) {
            QTest::newRow(name) << control << answer << outcome;
        };
        add("browse, Windows path", "txtPathRS", "D:\\RS\\RS.exe", {"D:\\RS", "/bo", browse});
        add("browse, native path", "txtPathBlackOps", "/u/bo/R6BO.exe", {"/rs", "/u/bo", browse});
        add("browse cancelled", "txtPathRS", "", {"/rs", "/bo", browse});
        add("delete answered No", "picDeletePathRS", "No", {"/rs", "/bo", sure});
        add("delete answered Yes", "picDeletePathBO", "Yes", {"/rs", "", sure});
    }
    void gameFolderControls()
    {
        QFETCH(QString, control);
        QFETCH(QString, answer);
        QFETCH(QStringList, outcome);
        Rig rig;
        rig.options.setPathRS("/rs");
        rig.options.setPathBlackOps("/bo");
        FrmOptions &w = rig.open();
        rig.dialogs.files = {answer};
        rig.dialogs.answers = {answer == "Yes" ? Dialogs::Answer::Yes : Dialogs::Answer::No};
        QTest::mouseClick(w.findChild<QWidget *>(control), Qt::LeftButton);
        QCOMPARE(QStringList({rig.options.pathRS(), rig.options.pathBlackOps()}) +
                     rig.dialogs.asked,
                 outcome);
        QCOMPARE((QStringList{w.txtPathRS->text(), w.txtPathBlackOps->text()}), outcome.first(2));
    }

    // Empty game folders are looked for in the Wine prefix; with none at all the user is told.
    void loadProbesDefaultFolders_data()
    {
        QTest::addColumn<QByteArray>("settings"); // empty: no settings file
        QTest::addColumn<QString>("installed");
        QTest::addColumn<QStringList>("outcome"); // the two folders, then what the user is told
        const QString rs = "/drive_c/Program Files (x86)/Red Storm Entertainment/Rogue Spear";
        const QString bo32 = "/drive_c/Program Files/Red Storm Entertainment/Rainbow Six Black Ops";
        const QString warned = "Could not find path to game, select at least one game in options";
        const auto add = [](const char *name, QByteArray settings, QString installed,
                            QStringList outcome) {
            QTest::newRow(name) << settings << installed << outcome;
        };
        add("nothing anywhere", {}, "", {"", "", warned});
        add("Rogue Spear at its default place", {}, rs + "/roguespear.exe", {rs, ""});
        add("folder without the executable", {}, rs + "/readme.txt", {"", "", warned});
        add("32-bit prefix, executable named in another case", {}, bo32 + "/r6bo.EXE", {"", bo32});
        // Neither probed nor checked: a configured folder that is gone is no reason to warn.
        add("configured folders kept", "0\r\n0\r\n0\r\n0\r\n\r\n/mine\r\n/gone\r\n",
            rs + "/roguespear.exe", {"/mine", "/gone"});
    }
    void loadProbesDefaultFolders()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QString, installed);
        QFETCH(QStringList, outcome);
        Rig rig;
        if (!settings.isEmpty())
            QVERIFY(writeFile(rig.settingsPath(), settings));
        if (!installed.isEmpty())
            QVERIFY(writeFile(rig.winePrefix() + installed, "MZ"));
        rig.store.load();
        QStringList found{rig.options.pathRS(), rig.options.pathBlackOps()};
        found.replaceInStrings(QDir::toNativeSeparators(rig.winePrefix()), "");
        QCOMPARE(found + rig.dialogs.asked, outcome);
    }

    // Start-up loads the settings, then ticks Autostart when the Run value is set; the entry
    // then names the running program, and follows the check box from there.
    void autostartEntry_data()
    {
        QTest::addColumn<QByteArray>("settings"); // empty: no settings file
        QTest::addColumn<QString>("entry");       // found at start-up; empty: none
        QTest::addColumn<bool>("ticked");
        QTest::newRow("ticked in the settings file")
            << QByteArray("1\r\n0\r\n0\r\n0\r\n\r\n/rs\r\n\r\n") << "" << true;
        QTest::newRow("entry of an older install") << QByteArray() << "/old/place/quorvel" << true;
        QTest::newRow("neither") << QByteArray() << "" << false;
    }
    void autostartEntry()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QString, entry);
        QFETCH(bool, ticked);
        Rig rig;
        if (!settings.isEmpty())
            QVERIFY(writeFile(rig.settingsPath(), settings));
        if (!entry.isEmpty())
            QVERIFY(AutostartEntry::write(autostartEntryPath(), entry));
        LinuxRegistry registry(LinuxRegistry::defaultPaths(rig.dataFolder()));
        BasRegistry helpers(registry);
        AutoStart autoStart(rig.options, helpers, AutoStart::currentProgram());
        rig.store.load();
        autoStart.applyRunValue();
        const std::optional<QString> running = QCoreApplication::applicationFilePath();
        QCOMPARE(rig.options.autoStart(), ticked);
        QCOMPARE(AutostartEntry::read(autostartEntryPath()), ticked ? running : std::nullopt);
        FrmOptions &w = rig.open();
        w.chkAutoStart->click();
        QCOMPARE(AutostartEntry::read(autostartEntryPath()), ticked ? std::nullopt : running);
    }
};

QTEST_MAIN(TestFrmOptions)
#include "tst_frmoptions.moc"
