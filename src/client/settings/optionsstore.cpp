#include "client/settings/optionsstore.h"

#include "client/platform/dialogs.h"
#include "client/settings/options.h"
#include "client/settings/settingsfile.h"

namespace client {

OptionsStore::OptionsStore(Options &options, const QString &dataFolder, DefaultGameFolders defaults,
                           Dialogs &dialogs)
    : m_options(options), m_settingsPath(dataFolder + u'/' + SettingsFile::fileName()),
      m_defaults(std::move(defaults)), m_dialogs(dialogs)
{
}

bool OptionsStore::load(Tell tell)
{
    SettingsFile::read(m_settingsPath, m_options);
    if (m_defaults.fillEmpty(m_options))
        return true;
    if (tell == Tell::User)
        m_dialogs.messageBox(applicationTitle(), DefaultGameFolders::missingMessage(),
                             Dialogs::Buttons::Ok, Dialogs::Icon::Information);
    return false;
}

bool OptionsStore::save()
{
    return SettingsFile::write(m_settingsPath, m_options);
}

} // namespace client
