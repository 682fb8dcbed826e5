#include "client/app/appparts.h"

#include "client/app/appwindows.h"
#include "client/app/buddynotifier.h"
#include "client/app/form1.h"
#include "client/app/optionsloader.h"
#include "client/app/sessionlooks.h"
#include "client/app/traycontroller.h"
#include "client/game/findgameserver.h"
#include "client/game/gameinfo.h"
#include "client/game/gamelauncher.h"
#include "client/game/gameserverquery.h"
#include "client/game/gamewindows.h"
#include "client/game/ingamedetection.h"
#include "client/game/launchsites.h"
#include "client/lobby/credentialsfile.h"
#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/platform/eventsounds.h"
#include "client/platform/gamewindowfinder.h"
#include "client/platform/keystate.h"
#include "client/platform/processstarter.h"
#include "client/platform/tcptable.h"
#include "client/presence/playerlistmodel.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"
#include "client/settings/autostart.h"
#include "client/settings/basregistry.h"
#include "client/settings/defaultgamefolders.h"
#include "client/settings/options.h"
#include "client/settings/optionsstore.h"

#include <QDir>

namespace client {

AppParts::AppParts(AppServices services_, ServerAddresses servers_, QObject &owner_)
    : owner(owner_), services(std::move(services_)), dataFolder(services.dataFolder),
      session(new SessionState(&owner)), servers(std::move(servers_), *session, dataFolder),
      dispatcher(new LobbyDispatcher(&owner)),
      connection(new LobbyConnection(*dispatcher, LobbyConnection::kConnectTimeout, &owner)),
      rooms(new RoomListModel(&owner)), players(new PlayerListModel(&owner)),
      ignored(new IgnoreList(
          dataFolder.isEmpty()
              ? QString()
              : QDir(dataFolder).filePath(QString::fromLatin1(IgnoreList::kFileName)),
          &owner)),
      options(new Options(&owner)), basRegistry(std::make_unique<BasRegistry>(*services.registry)),
      optionsStore(std::make_unique<OptionsStore>(
          *options, dataFolder, DefaultGameFolders::forWinePrefix(services.winePrefix),
          *services.dialogs)),
      optionsLoader(std::make_unique<OptionsLoader>(*optionsStore)),
      form(std::make_unique<Form1>()), gameInfo(new GameInfo(&owner)),
      // Built before the settings are loaded, so that loading a ticked Autostart writes the Run
      // value.
      autoStart(new AutoStart(*options, *basRegistry, AutoStart::currentProgram(), &owner)),
      sounds(new EventSounds(*services.sounds, &owner)),
      looks(new SessionLooks(*form, *services.tray, *session, &owner))
{
    sounds->setSoundsOn(options->sound());
    sounds->setGameFolder(options->pathRS());
    QObject::connect(options, &Options::soundChanged, sounds, &EventSounds::setSoundsOn);
    QObject::connect(options, &Options::pathRSChanged, sounds, &EventSounds::setGameFolder);
}

AppParts::~AppParts() = default;

QString AppParts::credentialsPath() const
{
    return QDir(dataFolder).filePath(QString::fromLatin1(CredentialsFile::kFileName));
}

QString AppParts::savedName() const
{
    return CredentialsFile::read(credentialsPath()).name;
}

} // namespace client
