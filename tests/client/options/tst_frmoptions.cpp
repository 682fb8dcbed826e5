#include "client/app/options/autostart.h"
#include "client/app/options/basregistry.h"
#include "client/app/options/frmoptions.h"
#include "client/app/options/hotkeyedit.h"
#include "client/app/options/options.h"
#include "client/app/options/optionsstore.h"
#include "client/app/options/settingsfile.h"
#include "client/app/picturebutton.h"
#include "client/game/defaultgamefolders.h"
#include "client/platform/registryautostart.h"
#include "client/platform/registrylinux.h"
#include "scripteddialogs.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

namespace {

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestFrmOptions : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Options> m_options;
    std::unique_ptr<ScriptedDialogs> m_dialogs;

    QString dataFolder() const { return m_dir->filePath("data"); }
    QString winePrefix() const { return m_dir->filePath("wine"); }
    OptionsStore store()
    {
        return OptionsStore(*m_options, dataFolder(),
                            DefaultGameFolders::forWinePrefix(winePrefix()), *m_dialogs);
    }
    QString autostartEntry() const
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
               "/autostart/quorvel.desktop";
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QDir().mkpath(dataFolder());
        m_options = std::make_unique<Options>();
        m_dialogs = std::make_unique<ScriptedDialogs>();
        QFile::remove(autostartEntry());
    }

    void controlsCarryNamesCaptionsAndTips_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("toolTip");
        QTest::newRow("autostart") << "chkAutoStart"
                                   << "Autostart"
                                   << "Start QuorVel when windows starts";
        QTest::newRow("auto login") << "chkAutoLogIn"
                                    << "Auto login"
                                    << "Log in to quorvel automatically";
        QTest::newRow("sounds") << "chkSound"
                                << "Play sounds"
                                << "Play sounds on diffrent events";
        QTest::newRow("reset key") << "chkReset"
                                   << "Ingame reset key     (0-9)     (A-Z)           (F1 - F12) "
                                   << "Ingame reset key";
        QTest::newRow("title") << "lblOptions"
                               << "Options"
                               << "";
        QTest::newRow("Rogue Spear label") << "lblPathToRoguespear"
                                           << "Path to: roguespear.exe"
                                           << "";
        QTest::newRow("Black Ops label") << "lblPathToR6BO"
                                         << "Path to: R6BO.exe"
                                         << "";
        QTest::newRow("delete RS") << "picDeletePathRS"
                                   << "Delete Path"
                                   << "";
        QTest::newRow("delete BO") << "picDeletePathBO"
                                   << "Delete Path"
                                   << "";
    }
    void controlsCarryNamesCaptionsAndTips()
    {
        QFETCH(QString, name);
        QFETCH(QString, caption);
        QFETCH(QString, toolTip);
        OptionsStore s = store();
        FrmOptions window(*m_options, s, *m_dialogs);
        QCOMPARE(window.objectName(), "frmOptions");
        QCOMPARE(window.windowTitle(), "Options");
        QVERIFY(window.windowFlags().testFlag(Qt::FramelessWindowHint));
        auto *control = window.findChild<QWidget *>(name);
        QVERIFY(control);
        const QString text = control->property("text").toString();
        QCOMPARE(text, caption);
        if (!toolTip.isEmpty())
            QCOMPARE(control->toolTip(), toolTip);
        for (const char *other : {"picClose", "txtHotKey", "txtPathRS", "txtPathBlackOps"})
            QVERIFY(window.findChild<QWidget *>(other));
    }

    void controlsEditTheOptionsBothWays()
    {
        OptionsStore s = store();
        m_options->setAutoLogIn(true);
        FrmOptions window(*m_options, s, *m_dialogs);
        QVERIFY(window.chkAutoLogIn->isChecked());
        QVERIFY(!window.txtHotKey->isEnabled());

        window.chkSound->click();
        QVERIFY(m_options->sound());
        m_options->setAutoLogIn(false);
        QVERIFY(!window.chkAutoLogIn->isChecked());

        QSignalSpy reset(m_options.get(), &Options::resetChanged);
        window.chkReset->click();
        QVERIFY(m_options->reset());
        QVERIFY(window.txtHotKey->isEnabled());
        m_options->setReset(false);
        QVERIFY(!window.txtHotKey->isEnabled());
        QCOMPARE(reset.count(), 2);

        m_options->setPathRS("/games/rs");
        QCOMPARE(window.txtPathRS->text(), "/games/rs");
        window.txtPathBlackOps->setFocus();
        QTest::keyClicks(window.txtPathBlackOps, "/bo");
        QCOMPARE(m_options->pathBlackOps(), "/bo");
    }

    void hotKeyField_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("text");
        QTest::newRow("F5") << QList<int>{Qt::Key_F5} << "116"
                            << "F5";
        QTest::newRow("F10") << QList<int>{Qt::Key_F10} << "121"
                             << "F10";
        QTest::newRow("F11") << QList<int>{Qt::Key_F11} << "122"
                             << "F11";
        QTest::newRow("F12") << QList<int>{Qt::Key_F12} << "123"
                             << "F12";
        QTest::newRow("letter") << QList<int>{Qt::Key_Q} << "81"
                                << "Q";
        QTest::newRow("digit") << QList<int>{Qt::Key_0} << "48"
                               << "0";
        QTest::newRow("Shift keeps the name") << QList<int>{Qt::Key_F5, Qt::Key_Shift} << "16"
                                              << "F5";
        QTest::newRow("key without a code ignored")
            << QList<int>{Qt::Key_A, Qt::Key_VolumeUp} << "65"
            << "A";
    }
    void hotKeyField()
    {
        QFETCH(QList<int>, keys);
        QFETCH(QString, tag);
        QFETCH(QString, text);
        OptionsStore s = store();
        m_options->setReset(true);
        FrmOptions window(*m_options, s, *m_dialogs);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.txtHotKey->setFocus();
        for (int key : keys)
            QTest::keyClick(window.txtHotKey, Qt::Key(key));
        QCOMPARE(m_options->hotKeyTag(), tag);
        QCOMPARE(window.txtHotKey->text(), text);
        QCOMPARE(window.txtHotKey->property("tag").toString(), tag);
    }

    void browseForGameFolders_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("folder");
        QTest::newRow("Windows path") << "txtPathRS"
                                      << "D:\\Games\\RS\\roguespear.exe"
                                      << "D:\\Games\\RS";
        QTest::newRow("native path") << "txtPathBlackOps"
                                     << "/home/u/games/bo/R6BO.exe"
                                     << "/home/u/games/bo";
        QTest::newRow("cancelled") << "txtPathRS"
                                   << ""
                                   << "/before";
    }
    void browseForGameFolders()
    {
        QFETCH(QString, field);
        QFETCH(QString, chosen);
        QFETCH(QString, folder);
        OptionsStore s = store();
        m_options->setPathRS("/before");
        m_options->setPathBlackOps("/before");
        FrmOptions window(*m_options, s, *m_dialogs);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        m_dialogs->files = {chosen};
        QTest::mouseClick(window.findChild<QLineEdit *>(field), Qt::LeftButton);
        QCOMPARE(m_dialogs->fileFilters.size(), 1);
        QVERIFY(m_dialogs->fileFilters.first().contains("*.exe"));
        const QString result =
            field == "txtPathRS" ? m_options->pathRS() : m_options->pathBlackOps();
        QCOMPARE(result, folder);
        QCOMPARE(window.findChild<QLineEdit *>(field)->text(), folder);
    }

    void clearGameFolders()
    {
        OptionsStore s = store();
        m_options->setPathRS("/rs");
        m_options->setPathBlackOps("/bo");
        FrmOptions window(*m_options, s, *m_dialogs);
        m_dialogs->answers = {Dialogs::Answer::No, Dialogs::Answer::Yes};
        window.picDeletePathRS->click();
        QCOMPARE(m_options->pathRS(), "/rs");
        window.picDeletePathBO->click();
        QCOMPARE(m_options->pathBlackOps(), "");
        QCOMPARE(window.txtPathBlackOps->text(), "");
        QCOMPARE(m_dialogs->shown.size(), 2);
        QCOMPARE(m_dialogs->shown[0].title, "Delete path");
        QCOMPARE(m_dialogs->shown[0].text, "Are you sure?");
        QCOMPARE(m_dialogs->shown[0].buttons, Dialogs::Buttons::YesNo);
    }

    void closingWritesAllSevenLines()
    {
        OptionsStore s = store();
        FrmOptions window(*m_options, s, *m_dialogs);
        window.show();
        QSignalSpy closed(&window, &FrmOptions::closed);
        window.picClose->click();
        QCOMPARE(closed.count(), 1);
        QVERIFY(window.isHidden());
        QCOMPARE(readFile(dataFolder() + "/settingRS.txt"),
                 QByteArray("0\r\n0\r\n0\r\n0\r\n\r\n\r\n\r\n"));

        window.chkReset->click();
        QTest::keyClick(window.txtHotKey, Qt::Key_F5);
        m_options->setPathRS("/games/rs");
        window.picClose->click();
        QCOMPARE(readFile(dataFolder() + "/settingRS.txt"),
                 QByteArray("0\r\n0\r\n0\r\n1\r\n116\r\n/games/rs\r\n\r\n"));
    }

    void loadProbesDefaultFolders_data()
    {
        QTest::addColumn<QByteArray>("settings"); // empty: no settings file
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("pathRS");
        QTest::addColumn<QString>("pathBlackOps");
        QTest::addColumn<bool>("warned");
        const QString rs = "drive_c/Program Files (x86)/Red Storm Entertainment/Rogue Spear";
        const QString bo32 = "drive_c/Program Files/Red Storm Entertainment/Rainbow Six Black Ops";
        QTest::newRow("nothing anywhere") << QByteArray() << QStringList{} << ""
                                          << "" << true;
        QTest::newRow("Rogue Spear at its default place")
            << QByteArray() << QStringList{rs + "/roguespear.exe"} << "/" + rs << "" << false;
        QTest::newRow("executable named in another case")
            << QByteArray() << QStringList{rs + "/RogueSpear.EXE"} << "/" + rs << "" << false;
        QTest::newRow("folder without the executable")
            << QByteArray() << QStringList{rs + "/readme.txt"} << ""
            << "" << true;
        QTest::newRow("32-bit prefix") << QByteArray() << QStringList{bo32 + "/R6BO.exe"} << ""
                                       << "/" + bo32 << false;
        QTest::newRow("configured folder never replaced")
            << QByteArray("0\r\n0\r\n0\r\n0\r\n\r\n/mine\r\n\r\n")
            << QStringList{rs + "/roguespear.exe"} << "/mine"
            << "" << false;
        QTest::newRow("configured folder not checked")
            << QByteArray("0\r\n0\r\n0\r\n0\r\n\r\n\r\n/gone\r\n") << QStringList{} << ""
            << "/gone" << false;
    }
    void loadProbesDefaultFolders()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QStringList, installed);
        QFETCH(QString, pathRS);
        QFETCH(QString, pathBlackOps);
        QFETCH(bool, warned);
        if (!settings.isEmpty())
            writeFile(dataFolder() + "/settingRS.txt", settings);
        for (const QString &file : installed)
            writeFile(winePrefix() + "/" + file, "MZ");
        const QString prefix = QDir::toNativeSeparators(winePrefix());
        const auto expected = [&prefix](const QString &path) {
            return path.startsWith(u'/') && path.contains("drive_c") ? prefix + path : path;
        };

        OptionsStore s = store();
        s.load();
        QCOMPARE(m_options->pathRS(), expected(pathRS));
        QCOMPARE(m_options->pathBlackOps(), expected(pathBlackOps));
        QCOMPARE(m_dialogs->shown.size(), warned ? 1 : 0);
        if (warned) {
            QCOMPARE(m_dialogs->shown[0].title, "QUORVEL");
            QCOMPARE(m_dialogs->shown[0].text,
                     "Could not find path to game, select at least one game in options");
            QCOMPARE(m_dialogs->shown[0].buttons, Dialogs::Buttons::Ok);
        }
    }

    void clearedDefaultFolderComesBackAtNextLoad()
    {
        writeFile(winePrefix() + "/drive_c/Program Files (x86)/Red Storm Entertainment/"
                                 "Rogue Spear/roguespear.exe",
                  "MZ");
        OptionsStore s = store();
        s.load();
        const QString defaultFolder = m_options->pathRS();
        QVERIFY(!defaultFolder.isEmpty());
        m_options->setPathRS(QString());
        QVERIFY(s.save());
        Options reloaded;
        OptionsStore(reloaded, dataFolder(), DefaultGameFolders::forWinePrefix(winePrefix()),
                     *m_dialogs)
            .load();
        QCOMPARE(reloaded.pathRS(), defaultFolder);
        QCOMPARE(m_dialogs->shown.size(), 0);
    }

    void autostartFollowsTheCheckBox()
    {
        LinuxRegistry registry(LinuxRegistry::defaultPaths(dataFolder()));
        BasRegistry helpers(registry);
        AutoStart autoStart(*m_options, helpers, AutoStart::currentProgram());
        QCOMPARE(AutoStart::currentProgram(), QCoreApplication::applicationFilePath());

        OptionsStore s = store();
        FrmOptions window(*m_options, s, *m_dialogs);
        window.chkAutoStart->click();
        QVERIFY(QFileInfo::exists(autostartEntry()));
        QCOMPARE(AutostartEntry::read(autostartEntry()),
                 std::optional<QString>(QCoreApplication::applicationFilePath()));
        window.chkAutoStart->click();
        QVERIFY(!QFileInfo::exists(autostartEntry()));
        QCOMPARE(helpers.lastRegResult(), Registry::kSuccess);
        window.chkAutoStart->click();
        QVERIFY(QFileInfo::exists(autostartEntry()));
    }

    void loadingATickedAutostartWritesTheEntry()
    {
        LinuxRegistry registry(LinuxRegistry::defaultPaths(dataFolder()));
        BasRegistry helpers(registry);
        AutoStart autoStart(*m_options, helpers, "/opt/quorvel/quorvel");
        writeFile(dataFolder() + "/settingRS.txt", "1\r\n0\r\n0\r\n0\r\n\r\n/rs\r\n\r\n");
        store().load();
        QVERIFY(m_options->autoStart());
        QCOMPARE(AutostartEntry::read(autostartEntry()),
                 std::optional<QString>("/opt/quorvel/quorvel"));
    }

    void startUpTicksAutostartFromTheRunValue_data()
    {
        QTest::addColumn<QString>("entry"); // empty: no entry
        QTest::addColumn<bool>("ticked");
        QTest::newRow("entry of an older install") << "/old/place/quorvel" << true;
        QTest::newRow("no entry") << "" << false;
    }
    void startUpTicksAutostartFromTheRunValue()
    {
        QFETCH(QString, entry);
        QFETCH(bool, ticked);
        if (!entry.isEmpty())
            QVERIFY(AutostartEntry::write(autostartEntry(), entry));
        LinuxRegistry registry(LinuxRegistry::defaultPaths(dataFolder()));
        BasRegistry helpers(registry);
        AutoStart autoStart(*m_options, helpers, "/new/place/quorvel");
        autoStart.applyRunValue();
        QCOMPARE(m_options->autoStart(), ticked);
        QCOMPARE(AutostartEntry::read(autostartEntry()),
                 ticked ? std::optional<QString>("/new/place/quorvel") : std::nullopt);
    }
};

QTEST_MAIN(TestFrmOptions)
#include "tst_frmoptions.moc"
