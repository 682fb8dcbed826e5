#include "client/platform/wineregistryquery.h"

#include "client/platform/registrywine.h"
#include "client/platform/winepath.h"

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QStringDecoder>
#include <QTemporaryFile>

namespace client {

namespace {

// A key export is a few lines; anything larger is not what was asked for.
constexpr qint64 kMaxExportBytes = 64 * 1024;

} // namespace

WineRegistryQuery::WineRegistryQuery(QString wineCommand, QString prefix, QStringList keys,
                                     QString name, QObject *parent)
    : QObject(parent), m_wineCommand(std::move(wineCommand)), m_prefix(std::move(prefix)),
      m_keys(std::move(keys)), m_name(std::move(name))
{
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(kTimeout);
    connect(&m_timeout, &QTimer::timeout, this, [this] {
        if (m_process)
            m_process->kill(); // ends in `finished`, unanswered
    });
}

WineRegistryQuery::~WineRegistryQuery()
{
    // A question cut short by the program's end leaves no file behind.
    if (!m_exportFile.isEmpty())
        QFile::remove(m_exportFile);
}

void WineRegistryQuery::start()
{
    // From the event loop, as for every later answer.
    QTimer::singleShot(0, this, &WineRegistryQuery::askNext);
}

void WineRegistryQuery::askNext()
{
    QStringList command = QProcess::splitCommand(m_wineCommand);
    if (m_keys.isEmpty() || command.isEmpty()) {
        answered({});
        return;
    }
    // A file name of our own for Wine to write to; reg export replaces it.
    {
        QTemporaryFile file(QDir::tempPath() + QStringLiteral("/quorvel-reg-XXXXXX.reg"));
        if (!file.open()) {
            answered({});
            return;
        }
        file.setAutoRemove(false);
        m_exportFile = file.fileName();
    }
    const QString key = m_keys.takeFirst();
    m_process = new QProcess(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("WINEPREFIX"), m_prefix);
    environment.insert(QStringLiteral("WINEDEBUG"), QStringLiteral("-all"));
    m_process->setProcessEnvironment(environment);
    m_process->setStandardErrorFile(QProcess::nullDevice());
    m_process->setProgram(command.takeFirst());
    m_process->setStandardOutputFile(QProcess::nullDevice());
    m_process->setArguments(
        command + QStringList{QStringLiteral("reg"), QStringLiteral("export"), key,
                              WinePath::windowsPath(m_exportFile, m_prefix), QStringLiteral("/y")});
    connect(m_process, &QProcess::finished, this,
            [this, key](int exitCode, QProcess::ExitStatus status) {
                m_timeout.stop();
                m_process->deleteLater();
                m_process = nullptr;
                QFile file(m_exportFile);
                const QByteArray exported =
                    file.open(QIODevice::ReadOnly) ? file.read(kMaxExportBytes) : QByteArray();
                file.remove();
                const QString value = status == QProcess::NormalExit && exitCode == 0
                                          ? valueIn(exported, key, m_name)
                                          : QString();
                if (!value.isEmpty())
                    answered(value);
                else
                    askNext();
            });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // the others end in `finished`
        m_timeout.stop();
        m_process->deleteLater();
        m_process = nullptr;
        QFile::remove(m_exportFile);
        answered({}); // no Wine: no other key can be asked either
    });
    m_timeout.start();
    m_process->start();
}

void WineRegistryQuery::answered(const QString &value)
{
    Q_EMIT finished(value);
    deleteLater();
}

QString WineRegistryQuery::valueIn(const QByteArray &exported, const QString &key,
                                   const QString &name)
{
    // "Windows Registry Editor Version 5.00", then the key's section as in system.reg, in
    // UTF-16 with a byte-order mark; the section names the root in full.
    auto fromUtf16 = QStringDecoder(QStringDecoder::Utf16LE);
    QString text = fromUtf16(exported);
    if (fromUtf16.hasError())
        return {};
    // Unlike system.reg, the export writes its section names unescaped.
    QStringList lines = text.split(u'\n');
    for (QString &line : lines) {
        if (line.startsWith(u'['))
            line.replace(u'\\', QStringLiteral("\\\\"));
    }
    QString path = key;
    if (path.startsWith(QLatin1String("HKLM\\"), Qt::CaseInsensitive))
        path.replace(0, 4, QStringLiteral("HKEY_LOCAL_MACHINE"));
    const std::optional<RegistryValue> value =
        WineRegistry::findValue(lines.join(u'\n').toUtf8(), path, name);
    return value && value->type == RegistryValue::Type::String ? value->text : QString();
}

} // namespace client
