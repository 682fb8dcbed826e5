#include "client/platform/registrylinux.h"

#include "client/platform/registryautostart.h"
#include "client/platform/registrywine.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>

namespace client {

namespace {

const QLatin1String kRunKey("Software\\Microsoft\\Windows\\CurrentVersion\\Run");
const QLatin1String kNumberPrefix("dword:");
const QLatin1String kStringPrefix("sz:");

// The INI key of a value: root, sub key and name as one slash-separated path, in lower case
// because registry names are not case-sensitive.
QString iniKey(Registry::Root root, const QString &subKey, const QString &name)
{
    QString path = root == Registry::Root::CurrentUser ? QStringLiteral("HKEY_CURRENT_USER")
                                                       : QStringLiteral("HKEY_LOCAL_MACHINE");
    for (const QString &part : subKey.split(u'\\', Qt::SkipEmptyParts))
        path += u'/' + part;
    // An empty value name is the key's default value.
    path += u'/' + (name.isEmpty() ? QStringLiteral("@") : name);
    return path.toLower();
}

} // namespace

LinuxRegistry::Paths LinuxRegistry::defaultPaths(const QString &dataFolder)
{
    Paths paths;
    paths.autostartFolder =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/autostart");
    paths.wineSystemReg = defaultWinePrefix() + QStringLiteral("/system.reg");
    paths.iniFile = dataFolder + QStringLiteral("/registry.ini");
    return paths;
}

QString LinuxRegistry::defaultWinePrefix()
{
    const QString prefix = qEnvironmentVariable("WINEPREFIX");
    return prefix.isEmpty() ? QDir::homePath() + QStringLiteral("/.wine") : prefix;
}

QString LinuxRegistry::autostartEntryPath(Root root, const QString &subKey,
                                          const QString &name) const
{
    const QString key = subKey.split(u'\\', Qt::SkipEmptyParts).join(u'\\');
    if (root != Root::CurrentUser || key.compare(kRunKey, Qt::CaseInsensitive) != 0)
        return {};
    // A value name becomes a file name: keep it to one harmless path component.
    QString file = name.toLower();
    file.replace(u'/', u'_');
    if (file.isEmpty() || file.startsWith(u'.'))
        file.prepend(u'_');
    return m_paths.autostartFolder + u'/' + file + QStringLiteral(".desktop");
}

long LinuxRegistry::queryValue(Root root, const QString &subKey, const QString &name,
                               RegistryValue &value)
{
    const QString entry = autostartEntryPath(root, subKey, name);
    if (!entry.isEmpty()) {
        const auto program = AutostartEntry::read(entry);
        if (!program)
            return kNotFound;
        value = RegistryValue::string(*program);
        return kSuccess;
    }
    if (root == Root::LocalMachine) {
        QFile file(m_paths.wineSystemReg);
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray content = file.readAll();
            auto found = WineRegistry::findValue(content, subKey, name);
            if (!found)
                found = WineRegistry::findValue(content, WineRegistry::wow6432Path(subKey), name);
            if (found) {
                value = *found;
                return kSuccess;
            }
        }
    }
    return queryIni(root, subKey, name, value);
}

long LinuxRegistry::setValue(Root root, const QString &subKey, const QString &name,
                             const RegistryValue &value)
{
    const QString entry = autostartEntryPath(root, subKey, name);
    if (!entry.isEmpty()) {
        const QString program =
            value.type == RegistryValue::Type::Number ? QString::number(value.number) : value.text;
        return AutostartEntry::write(entry, program) ? kSuccess : kAccessDenied;
    }
    return setIni(root, subKey, name, value);
}

long LinuxRegistry::queryIni(Root root, const QString &subKey, const QString &name,
                             RegistryValue &value)
{
    if (!QFile::exists(m_paths.iniFile))
        return kNotFound;
    QSettings ini(m_paths.iniFile, QSettings::IniFormat);
    const QVariant stored = ini.value(iniKey(root, subKey, name));
    if (!stored.isValid())
        return kNotFound;
    const QString text = stored.toString();
    if (text.startsWith(kNumberPrefix)) {
        bool ok = false;
        const uint number = text.mid(kNumberPrefix.size()).toUInt(&ok, 16);
        value = ok ? RegistryValue::fromNumber(number) : RegistryValue{};
    } else if (text.startsWith(kStringPrefix)) {
        value = RegistryValue::string(text.mid(kStringPrefix.size()));
    } else {
        value = RegistryValue{};
    }
    return kSuccess;
}

long LinuxRegistry::setIni(Root root, const QString &subKey, const QString &name,
                           const RegistryValue &value)
{
    QSettings ini(m_paths.iniFile, QSettings::IniFormat);
    QString stored;
    switch (value.type) {
    case RegistryValue::Type::Number:
        stored = kNumberPrefix + QStringLiteral("%1").arg(value.number, 8, 16, QLatin1Char('0'));
        break;
    case RegistryValue::Type::String:
        stored = kStringPrefix + value.text;
        break;
    case RegistryValue::Type::Other:
        stored = QStringLiteral("other:");
        break;
    }
    ini.setValue(iniKey(root, subKey, name), stored);
    ini.sync();
    return ini.status() == QSettings::NoError ? kSuccess : kAccessDenied;
}

} // namespace client
