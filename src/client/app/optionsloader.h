#pragma once

#include "client/settings/optionsstore.h"

namespace client {

// Reads the settings once, the first time anything needs them (the options window's load or
// the start-up, whichever comes first), and remembers whether the game folders were missing
// then, for the first-start offer.
class OptionsLoader
{
public:
    explicit OptionsLoader(OptionsStore &store) : m_store(store) {}

    void load(OptionsStore::Tell tell = OptionsStore::Tell::User)
    {
        if (m_loaded)
            return;
        m_loaded = true;
        m_gameFoldersMissing = !m_store.load(tell);
    }
    bool gameFoldersMissing() const { return m_gameFoldersMissing; }

private:
    OptionsStore &m_store;
    bool m_loaded = false;
    bool m_gameFoldersMissing = false;
};

} // namespace client
