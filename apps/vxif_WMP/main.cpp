#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "FirstMeeting.hpp"
#include "OnThePanels.hpp"
#include "PluginLog.hpp"
#include "RegisteredObjects.hpp"
#include "UserDesktop.hpp"
#include "UserPlatform.hpp"
#include "base/Attempt.hpp"
#include "bus/Connection.hpp"
#include "bus/HouseBus.hpp"
#include "bus/ReplyLimit.hpp"
#include "engine/Player.hpp"
#include "engine/card/CardOpener.hpp"
#include "engine/common/Config.hpp"
#include "files/FolderSync.hpp"
#include "mpris/session/SessionAddress.hpp"
#include "pictures/CoverDesk.hpp"
#include "platform/PosixPlatform.hpp"
#include "plugin/Plugin.hpp"

namespace {

constexpr const char* kBusName = "org.vantorix.vxif_WMP9";
constexpr const char* kHostName = "org.vantorix.Host";

/// A process that the bus has started is told which bus that was.
std::string BusAddress() {
  const char* starter = std::getenv("DBUS_STARTER_ADDRESS");
  return starter != nullptr ? starter : bus::HouseBusAddress();
}

/// The bus that has started this process passes for the session bus. Trays, colours and screen readers are
/// found on the user's own. While one thread runs.
void LookToTheUsersBus() {
  if (const std::string address = mpris::SessionAddress(); !address.empty())
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

/// The player's configuration. One that can't be read leaves the defaults, and `problem` says why.
engine::Config PlayerConfig(std::string& problem) {
  engine::Config config = engine::DefaultConfig();
  try {
    config = engine::LoadConfig(engine::DefaultConfigPath());
  } catch (const base::Failure& failure) {
    problem = failure.description();
  }
  if (const char* folder = std::getenv("VANTORIX_MUSIC"); folder != nullptr && *folder != '\0') {
    const std::string playlists = "/Playlists";
    if (config.playlistFolder == config.musicFolders.front() + playlists)
      config.playlistFolder = folder + playlists;
    config.musicFolders = {folder};
  }
  if (const char* output = std::getenv("VANTORIX_AUDIO")) config.audioOutput = output;
  if (const char* graphics = std::getenv("VANTORIX_GRAPHICS")) {
    const std::string wrong = engine::SetGraphics(config, graphics);
    if (!wrong.empty())
      problem += (problem.empty() ? "VANTORIX_GRAPHICS: " : "; VANTORIX_GRAPHICS: ") + wrong;
  }
  return config;
}

int Serve() {
  LookToTheUsersBus();
  engine::KeepDriversOffTheDisk();
  bus::PollLoop loop;
  bus::Connection connection(loop, BusAddress());
  plugin::Plugin* owner = nullptr;
  // Before the first thread starts, for a thread takes the blocked signal after its maker.
  const auto onTerminate = loop.onSignal(SIGTERM, [&] {
    if (owner == nullptr) return;
    // It may come while a call to the host hangs, and what is saved now may go unanswered too.
    connection.replyWithin(bus::ReplyLimit::kForStop);
    owner->lifecycle.ShutdownIO();
  });
  PluginLog log;
  engine::Screen screen;
  UserDesktop desktop(loop, log, screen);
  platform::PosixPlatform machine;
  UserPlatform platform(machine, [&](base::BoxKind kind, const std::string& title, const std::string& text) {
    desktop.messageBox(kind, title, text);
  });
  RegisteredObjects objects;
  pictures::CoverDesk covers;
  std::string configProblem;
  const engine::Config config = PlayerConfig(configProblem);
  const auto tell = [&log](const std::string& line) { log.warn("Media Player: " + line); };
  // Whatever thread it is that writes; the loop tells it once it turns.
  const files::UnsyncedFolders unsynced([&](const base::Failure& failure) {
    loop.post([&tell, text = failure.description()] { tell(text); });
  });
  FirstMeeting meeting(loop);

  plugin::Plugin plugin({.loop = loop,
                         .platform = platform,
                         .makePlayer =
                             [&](player::WMP9Events& events) {
                               if (!configProblem.empty()) tell(configProblem);
                               // The plug-in's own words name no cause, so it is told beside them.
                               return base::Handled(
                                   [&] {
                                     return engine::MakePlayer(
                                         loop, config, events, tell, [&] { meeting.met(); }, &screen);
                                   },
                                   [&](const base::Failure& failure) -> std::unique_ptr<player::WMP9> {
                                     tell(failure.description());
                                     throw failure;
                                   });
                             },
                         .neighbours = {desktop, objects},
                         .popupWindow = desktop.popup(),
                         .progressView = desktop.progress(),
                         .coverFiles = &covers,
                         .coverServices = {config.metadataAddress, config.coverAddress},
                         .editorWindow = desktop.editor()});
  owner = &plugin;
  meeting.meetIn(plugin);
  log.connect(plugin.host);
  desktop.connect(plugin.host, plugin.calls);
  objects.provide(std::make_shared<script::ScriptClass>(
      script::ScriptParts{plugin.state, plugin.host, plugin.form, plugin.calls, plugin.playState,
                          plugin.catalogue, plugin.library, plugin.mediaEvents}));

  const OnThePanels panels(loop, objects.scriptClass(), plugin.playerEvents, desktop);

  connection.exportObject("/vxif", plugin.vxif());
  connection.exportObject("/scriptclass", objects.scriptClass());
  // A lost host ends the plug-in, whichever way it is noticed.
  const auto hostGone = [&] {
    plugin.loggers.LogFormError(base::number::kHostGone, base::DescriptionOf(base::number::kHostGone),
                                "HostGone");
  };
  connection.onNameLost(kHostName, hostGone);
  connection.onDisconnect(hostGone);
  connection.claimName(kBusName);
  return loop.run();
}

}  // namespace

int main() {
  try {
    return Serve();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "vxif_WMP: %s\n", failure.what());
    return EXIT_FAILURE;
  }
}
