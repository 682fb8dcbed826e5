#include "client/settings/autostart.h"

#include "client/settings/basregistry.h"
#include "client/settings/options.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace client {

AutoStart::AutoStart(Options &options, BasRegistry &registry, QString program, QObject *parent)
    : QObject(parent), m_options(options), m_registry(registry), m_program(std::move(program))
{
    connect(&m_options, &Options::autoStartChanged, this, &AutoStart::onAutoStartChanged);
}

QString AutoStart::currentProgram()
{
    const QFileInfo executable(QCoreApplication::applicationFilePath());
    QString name = executable.fileName();
    if (name.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive))
        name.chop(4);
    return QDir::toNativeSeparators(executable.absolutePath() + u'/' + name);
}

void AutoStart::applyRunValue()
{
    const QVariant value =
        m_registry.readValue(Registry::Root::CurrentUser, runSubKey(), runValueName());
    if (!value.toString().isEmpty())
        m_options.setAutoStart(true);
}

void AutoStart::onAutoStartChanged(bool on)
{
    m_registry.writeValue(Registry::Root::CurrentUser, runSubKey(), runValueName(),
                          on ? m_program : QString());
}

} // namespace client
