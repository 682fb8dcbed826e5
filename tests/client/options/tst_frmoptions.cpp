#include "client/options/autostart.h"
#include "client/options/basregistry.h"
#include "client/options/frmoptions.h"
#include "client/options/hotkeyedit.h"
#include "client/options/options.h"
#include "client/options/optionsstore.h"
#include "client/platform/registryautostart.h"
#include "client/platform/registrylinux.h"
#include "client/ui/picturebutton.h"
#include "support/clientfakes.h"
#include "support/files.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

class TestFrmOptions : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Options> m_options;
    std::unique_ptr<FakeDialogs> m_dialogs;
    std::unique_ptr<OptionsStore> m_store;
    std::unique_ptr<FrmOptions> m_window;

    QString dataFolder() const { return m_dir->filePath("data"); }
    QString settingsPath() const { return dataFolder() + "/settingRS.txt"; }
    QString winePrefix() const { return m_dir->filePath("wine"); }
    static QString autostartEntryPath()
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
               "/autostart/quorvel.desktop";
    }
    OptionsStore &store()
    {
        m_store = std::make_unique<OptionsStore>(
            *m_options, dataFolder(), DefaultGameFolders::forWinePrefix(winePrefix()), *m_dialogs);
        return *m_store;
    }
    FrmOptions &openWindow()
    {
        m_window = std::make_unique<FrmOptions>(*m_options, store(), *m_dialogs);
        m_window->show();
        (void)QTest::qWaitForWindowExposed(m_window.get());
        return *m_window;
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QDir().mkpath(dataFolder());
        m_options = std::make_unique<Options>();
        m_dialogs = std::make_unique<FakeDialogs>();
        QFile::remove(autostartEntryPath());
    }
    void cleanup()
    {
        m_window.reset();
        m_store.reset();
    }

    // The controls show the options and edit them in place; closing writes all seven lines.
    void editingThenClosing()
    {
        m_options->setAutoLogIn(true);
        m_options->setPathRS(QString::fromUtf8("/games/Rogue Spéar"));
        FrmOptions &w = openWindow();
        QVERIFY(w.chkAutoLogIn->isChecked());
        QCOMPARE(w.txtPathRS->text(), m_options->pathRS());
        QVERIFY(!w.txtHotKey->isEnabled());
        m_options->setAutoLogIn(false);
        QVERIFY(!w.chkAutoLogIn->isChecked());
        w.chkSound->click();
        QVERIFY(m_options->sound());
        m_options->setReset(true);
        QVERIFY(w.txtHotKey->isEnabled());
        w.chkReset->click();
        QVERIFY(!m_options->reset());
        QVERIFY(!w.txtHotKey->isEnabled());
        w.chkReset->click();

        // Shift, and a key without a code, keep the name shown.
        const QList<std::tuple<Qt::Key, QString, QString>> presses{{Qt::Key_F10, "121", "F10"},
                                                                   {Qt::Key_Q, "81", "Q"},
                                                                   {Qt::Key_Shift, "16", "Q"},
                                                                   {Qt::Key_VolumeUp, "16", "Q"}};
        for (const auto &[key, tag, text] : presses) {
            QTest::keyClick(w.txtHotKey, key);
            QCOMPARE(m_options->hotKeyTag(), tag);
            QCOMPARE(w.txtHotKey->text(), text);
            QCOMPARE(w.txtHotKey->property("tag").toString(), tag);
        }
        QTest::keyClicks(w.txtPathBlackOps, "/bo");
        QCOMPARE(m_options->pathBlackOps(), "/bo");

        QSignalSpy closed(&w, &FrmOptions::closed);
        w.picClose->click();
        QCOMPARE(closed.count(), 1);
        QVERIFY(w.isHidden());
        QFile file(settingsPath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        // Code page 1252, as on Windows: "é" is one byte.
        QCOMPARE(file.readAll(), QByteArray("0\r\n0\r\n1\r\n1\r\n16\r\n/games/Rogue Sp\xe9"
                                            "ar\r\n/bo\r\n"));
    }

    // The key's place counts, not what the layout prints on it; without a keycode (offscreen),
    // what the key means.
    void hotKeyByPhysicalKey_data()
    {
        QTest::addColumn<int>("qtKey");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<int>("keycode");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("text");
        QTest::newRow("AZERTY top-row 1, prints &") << int(Qt::Key_Ampersand) << false << 10 << "49"
                                                    << "1";
        QTest::newRow("AZERTY top-row 1 with Shift") << int(Qt::Key_1) << true << 10 << "49"
                                                     << "1";
        QTest::newRow("AZERTY top-row 0, prints à") << int(Qt::Key_Agrave) << false << 19 << "48"
                                                    << "0";
        QTest::newRow("QWERTZ Z, where US has Y") << int(Qt::Key_Z) << false << 29 << "89"
                                                  << "Y";
        QTest::newRow("F12") << int(Qt::Key_F12) << false << 96 << "123"
                             << "F12";
        QTest::newRow("Shift, by its meaning") << int(Qt::Key_Shift) << true << 50 << "16"
                                               << "";
        QTest::newRow("no keycode") << int(Qt::Key_7) << false << 0 << "55"
                                    << "7";
    }
    void hotKeyByPhysicalKey()
    {
        QFETCH(int, qtKey);
        QFETCH(bool, shift);
        QFETCH(int, keycode);
        QFETCH(QString, tag);
        QFETCH(QString, text);
        m_options->setReset(true);
        FrmOptions &w = openWindow();
        QKeyEvent press(QEvent::KeyPress, qtKey, shift ? Qt::ShiftModifier : Qt::NoModifier,
                        quint32(keycode), 0, 0);
        QCoreApplication::sendEvent(w.txtHotKey, &press);
        QCOMPARE(m_options->hotKeyTag(), tag);
        QCOMPARE(w.txtHotKey->text(), text);
    }

    // Clicking into a folder field browses for the game's executable; "Delete Path" asks first.
    void gameFolderControls_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("answer"); // the file chosen, or Yes / No
        QTest::addColumn<QString>("pathRS");
        QTest::addColumn<QString>("pathBlackOps");
        const auto add = [](const char *name, QString control, QString answer, QString rs,
                            QString bo) { QTest::newRow(name) << control << answer << rs << bo; };
        add("browse, Windows path", "txtPathRS", "D:\\Games\\RS\\roguespear.exe", "D:\\Games\\RS",
            "/bo");
        add("browse, native path", "txtPathBlackOps", "/home/u/bo/R6BO.exe", "/rs", "/home/u/bo");
        add("browse cancelled", "txtPathRS", "", "/rs", "/bo");
        add("delete answered No", "picDeletePathRS", "No", "/rs", "/bo");
        add("delete answered Yes", "picDeletePathBO", "Yes", "/rs", "");
    }
    void gameFolderControls()
    {
        QFETCH(QString, control);
        QFETCH(QString, answer);
        QFETCH(QString, pathRS);
        QFETCH(QString, pathBlackOps);
        m_options->setPathRS("/rs");
        m_options->setPathBlackOps("/bo");
        FrmOptions &w = openWindow();
        m_dialogs->files = {answer};
        m_dialogs->answers = {answer == "Yes" ? Dialogs::Answer::Yes : Dialogs::Answer::No};
        QTest::mouseClick(w.findChild<QWidget *>(control), Qt::LeftButton);
        QCOMPARE(m_dialogs->asked.size(), 1);
        QVERIFY(m_dialogs->asked[0].contains(control.startsWith("txt") ? "*.exe" : "[Yes/No]"));
        QCOMPARE(m_options->pathRS(), pathRS);
        QCOMPARE(m_options->pathBlackOps(), pathBlackOps);
        QCOMPARE(w.txtPathRS->text(), pathRS);
        QCOMPARE(w.txtPathBlackOps->text(), pathBlackOps);
    }

    void loadProbesDefaultFolders_data()
    {
        QTest::addColumn<QByteArray>("settings"); // empty: no settings file
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("pathRS");
        QTest::addColumn<QString>("pathBlackOps");
        QTest::addColumn<bool>("warned");
        const auto add = [](const char *name, QByteArray settings, QStringList installed,
                            QString rs, QString bo, bool warned = false) {
            QTest::newRow(name) << settings << installed << rs << bo << warned;
        };
        const QString rs = "/drive_c/Program Files (x86)/Red Storm Entertainment/Rogue Spear";
        const QString bo32 = "/drive_c/Program Files/Red Storm Entertainment/Rainbow Six Black Ops";
        add("nothing anywhere", {}, {}, "", "", true);
        add("Rogue Spear at its default place", {}, {rs + "/roguespear.exe"}, rs, "");
        add("executable named in another case", {}, {rs + "/RogueSpear.EXE"}, rs, "");
        add("folder without the executable", {}, {rs + "/readme.txt"}, "", "", true);
        add("32-bit prefix", {}, {bo32 + "/R6BO.exe"}, "", bo32);
        add("configured folder never replaced", "0\r\n0\r\n0\r\n0\r\n\r\n/mine\r\n\r\n",
            {rs + "/roguespear.exe"}, "/mine", "");
        add("configured folder not checked", "0\r\n0\r\n0\r\n0\r\n\r\n\r\n/gone\r\n", {}, "",
            "/gone");
        add("cleared folder probed again", "0\r\n0\r\n0\r\n0\r\n\r\n\r\n\r\n",
            {rs + "/roguespear.exe"}, rs, "");
    }
    void loadProbesDefaultFolders()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QStringList, installed);
        QFETCH(QString, pathRS);
        QFETCH(QString, pathBlackOps);
        QFETCH(bool, warned);
        if (!settings.isEmpty())
            QVERIFY(writeFile(settingsPath(), settings));
        for (const QString &file : installed)
            QVERIFY(writeFile(winePrefix() + file, "MZ"));
        const auto inPrefix = [this](const QString &path) {
            return path.contains("drive_c") ? QDir::toNativeSeparators(winePrefix()) + path : path;
        };
        store().load();
        QCOMPARE(m_options->pathRS(), inPrefix(pathRS));
        QCOMPARE(m_options->pathBlackOps(), inPrefix(pathBlackOps));
        QCOMPARE(m_dialogs->asked,
                 warned ? QStringList{"Could not find path to game, select at least one game in "
                                      "options"}
                        : QStringList{});
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
        if (!settings.isEmpty())
            QVERIFY(writeFile(settingsPath(), settings));
        if (!entry.isEmpty())
            QVERIFY(AutostartEntry::write(autostartEntryPath(), entry));
        LinuxRegistry registry(LinuxRegistry::defaultPaths(dataFolder()));
        BasRegistry helpers(registry);
        AutoStart autoStart(*m_options, helpers, AutoStart::currentProgram());
        store().load();
        autoStart.applyRunValue();
        const std::optional<QString> running = QCoreApplication::applicationFilePath();
        QCOMPARE(m_options->autoStart(), ticked);
        QCOMPARE(AutostartEntry::read(autostartEntryPath()), ticked ? running : std::nullopt);
        FrmOptions &w = openWindow();
        w.chkAutoStart->click();
        QCOMPARE(AutostartEntry::read(autostartEntryPath()), ticked ? std::nullopt : running);
        w.chkAutoStart->click();
        QCOMPARE(AutostartEntry::read(autostartEntryPath()), ticked ? running : std::nullopt);
    }
};

QTEST_MAIN(TestFrmOptions)
#include "tst_frmoptions.moc"
