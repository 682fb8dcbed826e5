#pragma once

#include "client/settings/defaultgamefolders.h"

#include <QString>

namespace client {

class Dialogs;
class Options;

// Where the options live between sessions: the settings file in the data folder. Loading
// also fills in the games' default folders and tells the user when no game folder is known.
class OptionsStore
{
public:
    OptionsStore(Options &options, const QString &dataFolder, DefaultGameFolders defaults,
                 Dialogs &dialogs);

    // The load step of the options: reads the settings file (a missing file keeps the
    // defaults), then probes the default game folders; when both folders are still empty,
    // returns false after saying so in a message box, unless `tell` is Quietly (the caller
    // then tells the user itself).
    enum class Tell { User, Quietly };
    bool load(Tell tell = Tell::User);
    // Writes all seven settings. False when the file cannot be written.
    bool save();

    QString settingsPath() const { return m_settingsPath; }

private:
    Options &m_options;
    QString m_settingsPath;
    DefaultGameFolders m_defaults;
    Dialogs &m_dialogs;
};

} // namespace client
