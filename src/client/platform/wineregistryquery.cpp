#include "client/platform/wineregistryquery.h"

#include <QProcessEnvironment>
#include <QRegularExpression>

namespace client {

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
    m_process = new QProcess(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("WINEPREFIX"), m_prefix);
    environment.insert(QStringLiteral("WINEDEBUG"), QStringLiteral("-all"));
    m_process->setProcessEnvironment(environment);
    m_process->setStandardErrorFile(QProcess::nullDevice());
    m_process->setProgram(command.takeFirst());
    m_process->setArguments(command + QStringList{QStringLiteral("reg"), QStringLiteral("query"),
                                                  m_keys.takeFirst(), QStringLiteral("/v"),
                                                  m_name});
    connect(m_process, &QProcess::finished, this,
            [this](int exitCode, QProcess::ExitStatus status) {
                m_timeout.stop();
                const QByteArray output = m_process->readAllStandardOutput();
                m_process->deleteLater();
                m_process = nullptr;
                const QString value = status == QProcess::NormalExit && exitCode == 0
                                          ? valueIn(output, m_name)
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

QString WineRegistryQuery::valueIn(const QByteArray &output, const QString &name)
{
    // "    NAME    REG_SZ    text", the text possibly with spaces of its own.
    const QRegularExpression line(QStringLiteral("^\\s*%1\\s+REG_(?:EXPAND_)?SZ(?:[ \\t]+(.*))?$")
                                      .arg(QRegularExpression::escape(name)),
                                  QRegularExpression::CaseInsensitiveOption |
                                      QRegularExpression::MultilineOption);
    // Wine prints in the console's code page, which is not the locale's; only text that reads
    // as UTF-8 (ASCII, in practice) is taken, anything else is left to the registry file.
    QString text = QString::fromUtf8(output);
    if (text.contains(QChar::ReplacementCharacter))
        return {};
    const QRegularExpressionMatch match = line.match(text.remove(u'\r'));
    return match.hasMatch() ? match.captured(1).trimmed() : QString();
}

} // namespace client
