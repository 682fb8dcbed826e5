#include "client/app/appwindows.h"

#include "client/game/frmgameinfo.h"
#include "client/login/frmlogin.h"
#include "client/options/frmoptions.h"
#include "client/pager/frmpager.h"
#include "client/presence/frmmenu.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/ui/borderlesswindow.h"

namespace client {

AppWindows::AppWindows(Factories factories, QObject *parent)
    : QObject(parent), m_logIn(std::move(factories.logIn)), m_options(std::move(factories.options)),
      m_room(std::move(factories.room)), m_menu(std::move(factories.menu)),
      m_pager(std::move(factories.pager)), m_makeRoom(std::move(factories.makeRoom)),
      m_gameInfo(std::move(factories.gameInfo))
{
}

AppWindows::~AppWindows() = default;

FrmLogIn *AppWindows::frmLogIn()
{
    return m_logIn.get();
}

FrmOptions *AppWindows::frmOptions()
{
    return m_options.get();
}

FrmRoom *AppWindows::frmRoom()
{
    return m_room.get();
}

FrmMenu *AppWindows::frmMenu()
{
    return m_menu.get();
}

FrmPager *AppWindows::frmPager()
{
    return m_pager.get();
}

FrmMakeRoom *AppWindows::frmMakeRoom()
{
    return m_makeRoom.get();
}

FrmGameInfo *AppWindows::frmGameInfo()
{
    return m_gameInfo.get();
}

bool AppWindows::isOptionsShown() const
{
    return m_options.isLoaded() && m_options.loaded()->isVisible();
}

template <typename Window> void AppWindows::unload(WindowSlot<Window> &slot)
{
    if (Window *window = slot.loaded()) {
        const QString name = window->objectName();
        slot.unload();
        Q_EMIT unloaded(name);
    }
}

void AppWindows::unloadLogIn()
{
    unload(m_logIn);
}

void AppWindows::unloadRoom()
{
    unload(m_room);
}

void AppWindows::unloadMakeRoom()
{
    unload(m_makeRoom);
}

void AppWindows::unloadAll()
{
    unload(m_pager);
    unload(m_options);
    unload(m_room);
    unload(m_menu);
    unload(m_logIn);
    unload(m_makeRoom);
    unload(m_gameInfo);
}

} // namespace client
