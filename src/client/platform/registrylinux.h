#pragma once

#include "client/platform/registry.h"

namespace client {

// The registry on Linux, where no such store exists:
// - values of the current user's Run key ("Software\Microsoft\Windows\CurrentVersion\Run")
//   are XDG autostart entries named after the value (`quorvel` -> quorvel.desktop), which the
//   desktop session starts at log-in; an empty value removes the entry;
// - machine values are read from the Wine prefix's system.reg, where the games keep theirs
//   (32-bit programs under "Software\Wow6432Node" in a 64-bit prefix), and failing that from
//   the INI file;
// - everything else is kept in an INI file in the client's data folder.
class LinuxRegistry final : public Registry
{
public:
    struct Paths
    {
        QString autostartFolder; // ~/.config/autostart
        QString wineSystemReg;   // $WINEPREFIX/system.reg
        QString iniFile;         // the data folder's registry.ini
    };

    // Paths from the environment: XDG_CONFIG_HOME, WINEPREFIX (default ~/.wine).
    static Paths defaultPaths(const QString &dataFolder);
    static QString defaultWinePrefix();

    explicit LinuxRegistry(Paths paths) : m_paths(std::move(paths)) {}

    long queryValue(Root root, const QString &subKey, const QString &name,
                    RegistryValue &value) override;
    long setValue(Root root, const QString &subKey, const QString &name,
                  const RegistryValue &value) override;

private:
    // The autostart entry for a Run value, or empty when the key is not the Run key.
    QString autostartEntryPath(Root root, const QString &subKey, const QString &name) const;
    long queryIni(Root root, const QString &subKey, const QString &name, RegistryValue &value);
    long setIni(Root root, const QString &subKey, const QString &name, const RegistryValue &value);

    Paths m_paths;
};

} // namespace client
