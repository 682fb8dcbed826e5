#pragma once

#include "client/app/windowslot.h"

#include <QObject>

namespace client {

class BorderlessWindow;
class FrmGameInfo;
class FrmLogIn;
class FrmMakeRoom;
class FrmMenu;
class FrmPager;
class FrmOptions;
class FrmRoom;

// The program's windows besides the main window. Each exists at most once and is created the
// first time it is touched, through its accessor; unloading destroys it, so the next touch
// creates it again and runs its load step again.
class AppWindows : public QObject
{
    Q_OBJECT

public:
    struct Factories
    {
        std::function<FrmLogIn *()> logIn;
        std::function<FrmOptions *()> options;
        std::function<FrmRoom *()> room;
        std::function<FrmMenu *()> menu;
        std::function<FrmPager *()> pager;
        std::function<FrmMakeRoom *()> makeRoom;
        std::function<FrmGameInfo *()> gameInfo;
    };

    explicit AppWindows(Factories factories, QObject *parent = nullptr);
    ~AppWindows() override;

    FrmLogIn *frmLogIn();
    FrmOptions *frmOptions();
    FrmRoom *frmRoom();
    FrmMenu *frmMenu();
    FrmPager *frmPager();
    FrmMakeRoom *frmMakeRoom();
    FrmGameInfo *frmGameInfo();

    bool isLoginLoaded() const { return m_logIn.isLoaded(); }
    bool isOptionsShown() const;
    bool isRoomLoaded() const { return m_room.isLoaded(); }
    void unloadLogIn();
    void unloadRoom();
    void unloadMakeRoom();

    // Unloads every window, in the shut-down order: pager, options, room, menu, login,
    // create-room, game info.
    void unloadAll();

Q_SIGNALS:
    // A loaded window was unloaded (its object name).
    void unloaded(const QString &name);

private:
    template <typename Window> void unload(WindowSlot<Window> &slot);

    WindowSlot<FrmLogIn> m_logIn;
    WindowSlot<FrmOptions> m_options;
    WindowSlot<FrmRoom> m_room;
    WindowSlot<FrmMenu> m_menu;
    WindowSlot<FrmPager> m_pager;
    WindowSlot<FrmMakeRoom> m_makeRoom;
    WindowSlot<FrmGameInfo> m_gameInfo;
};

} // namespace client
