#pragma once

#include "client/platform/registry.h"

#include <QObject>

namespace client {

class BasRegistry;
class Options;

// Keeps the Run value "quorvel" in step with the Autostart option: whenever the option is
// ticked (by the user, by loading the settings or at start-up) the value becomes the client's
// own program; whenever it is unticked, the value becomes empty.
class AutoStart : public QObject
{
    Q_OBJECT

public:
    static QString runSubKey()
    {
        return QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\Run");
    }
    static QString runValueName() { return QStringLiteral("quorvel"); }

    // `program` is what the Run value holds while ticked: see `currentProgram`. Build this
    // before the settings are loaded, so that loading a ticked option writes the value.
    AutoStart(Options &options, BasRegistry &registry, QString program, QObject *parent = nullptr);

    // The running client: its folder, a separator and its file name without ".exe".
    static QString currentProgram();

    // Start-up: ticks the option when the Run value is not empty; the tick rewrites the value
    // with the current program.
    void applyRunValue();

private:
    void onAutoStartChanged(bool on);

    Options &m_options;
    BasRegistry &m_registry;
    QString m_program;
};

} // namespace client
