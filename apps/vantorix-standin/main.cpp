#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <memory>

#include "base/Failure.hpp"
#include "bus/ReplyLimit.hpp"
#include "files/FolderLock.hpp"
#include "files/FolderSync.hpp"
#include "files/WriteFile.hpp"
#include "standin/AddressFile.hpp"
#include "standin/Options.hpp"
#include "standin/calendar/WallClock.hpp"
#include "standin/covers/PlayingCover.hpp"
#include "standin/dialogs/OpenDialog.hpp"
#include "standin/ear/EarProcess.hpp"
#include "standin/eventworld/HouseEvents.hpp"
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/hostobjects/Shelf.hpp"
#include "standin/hostobjects/TopObjects.hpp"
#include "standin/house/LoopGate.hpp"
#include "standin/house/SettingsFlusher.hpp"
#include "standin/http/PageRoutes.hpp"
#include "standin/http/RefusedPosts.hpp"
#include "standin/http/Tls.hpp"
#include "standin/http/WebServer.hpp"
#include "standin/player/LibrarySearch.hpp"
#include "standin/player/NowPlaying.hpp"
#include "standin/player/PlayerLibrary.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/playlists/Playlists.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/PluginFormats.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/rules/StoredAlarms.hpp"
#include "standin/rules/Wordings.hpp"
#include "standin/scripts/ScriptRunner.hpp"
#include "standin/scripts/ScriptStore.hpp"
#include "standin/voice/EspeakVoice.hpp"
#include "standin/voice/Quiet.hpp"
#include "standin/voice/RestingVoice.hpp"

namespace {

using namespace standin;  // NOLINT(google-build-using-namespace): this file is the server put together

int Serve(const Options& options) {
  // What another server may have already is asked for first, before any data is touched.
  bus::PollLoop loop;
  bus::Connection connection(loop, options.bus);
  connection.claimName("org.vantorix.Host");
  std::unique_ptr<TlsIdentity> identity;
  if (!options.tlsCertificate.empty())
    identity = std::make_unique<TlsIdentity>(options.tlsCertificate, options.tlsKey);
  WebPort port(options.listen, options.port, std::move(identity));
  // A name that isn't this machine's own is given for those who come from elsewhere, by way of another
  // server.
  const bool local = IsLoopback(options.listen) &&
                     std::all_of(options.allowedHosts.begin(), options.allowedHosts.end(), &IsLoopback);

  files::MakeFolder(options.data);
  const files::FolderLock lock(options.data);
  House house(options.data);
  if (!local && house.users.hashOf(kFirstUser).empty()) {
    throw base::Failure(
        base::number::kPermissionDenied,
        "Others could reach this server, but its owner has no password. Start it without --listen "
        "and --allow-host, and set one on the page \"Account\" first");
  }
  house.webPort = port.port();
  house.webCertificate = options.tlsCertificate;
  if (!IsAnyAddress(options.listen)) house.webHost = HostOf(options.listen);
  if (!options.version.empty()) house.version = options.version;

  // Whatever thread it is that writes.
  const files::UnsyncedFolders unsynced([&](const base::Failure& failure) {
    loop.post([&house, text = failure.description()] { house.log.write("Warning", text); });
  });
  BusShelf shelf(connection);
  HouseObjects objects(house, shelf);
  EspeakVoice espeak;
  RestingVoice voice(espeak);
  Speech speech(loop, house, voice);
  Quiet quiet(loop, speech.events());
  LoopWaits waits(loop, speech, LoopWaits::kFetchLimit, [&] { return connection.servesStranger(); });
  const TopObjects top(house, objects, waits);
  top.showOn(shelf);

  SettingsFlusher flusher(loop, house);
  RefusedPosts refused(loop, house.log);
  PluginKeeper plugin(loop, connection, house, top.callback);
  PlayerLibrary library(loop, connection, plugin);
  LibrarySearch search(loop, library);
  Playlists playlists(loop, connection, plugin, house, library);
  NowPlaying nowPlaying(loop, connection, plugin, house);
  OpenDialog dialog(loop, plugin, house);
  ScriptStore scripts(house.folder / "scripts");
  RuleStore rules(house);
  EvaluationStore history(house);
  PluginWords pluginWords(loop, FormatsOf(plugin));
  pluginWords.onNews = [&] { house.live.tell("event", R"({"id":0})"); };
  plugin.onPhase([&](PluginPhase phase) {
    if (phase == PluginPhase::kReady) pluginWords.askAgain();
  });
  const Wordings words(house, pluginWords);
  const SystemClock clock;
  StoredAlarms alarms(house, history);
  const auto end = [&] {
    // A call under way may hang, and nothing is stopped before it has returned.
    if (!loop.quitting()) connection.replyWithin(bus::ReplyLimit::kForStop);
    loop.quit(0);
    plugin.endWithin(std::chrono::seconds(15));
  };
  const auto onInterrupt = loop.onSignal(SIGINT, end);
  const auto onTerminate = loop.onSignal(SIGTERM, end);
  int code = 0;
  {
    ScriptLimits limits;
    limits.computing = std::chrono::seconds(options.scriptSeconds);
    const auto programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    ScriptRunner runner(loop, connection, house, plugin, top.host,
                        {.program = programs / "vantorix-script", .limits = limits});
    HouseEvents events(
        {loop, house, objects, plugin, speech, scripts, runner, rules, words, history, clock, alarms});
    EarProcess recogniser(loop, {.program = programs / "vantorix-ear"});
    WorkerThread worker(loop);
    VoiceCommands voiceCommands({loop, house, objects, plugin, library, speech, recogniser, &worker});
    Utterances utterances(loop, voiceCommands);
    RoomMicrophone room({loop, house, voiceCommands, quiet, speech});
    LoopGate gate(loop, std::chrono::seconds(30));
    Visitors visitors(house.users, local);
    PlayerCovers playerCovers(connection, plugin, house);
    Covers covers(gate, playerCovers, options.data / "covers");
    const PlayingCover playingCover({gate, covers, nowPlaying, plugin, house});
    DiscCovers discs(house, options.data / "covers" / "discs");
    WebApi api(
        visitors, gate,
        Joined({HouseRoutes(house, plugin, visitors), DeviceRoutes(house, objects, plugin, library),
                DialogRoutes(dialog), EventRoutes({house, rules, history, words, events.control(), scripts}),
                LibraryRoutes(library, search), PlayerRoutes(nowPlaying, playlists),
                PlaylistRoutes(playlists, library), CoverRoutes(covers),
                CoverServiceRoutes(discs, options.listen), ScriptRoutes(scripts, runner),
                UserRoutes(house, visitors, gate),
                VoiceRoutes({house, voiceCommands, utterances, quiet, room}), PageRoutes(house, plugin)}));
    const WebServer web(port, {.api = api,
                               .gate = gate,
                               .live = house.live,
                               .refused = refused,
                               .hosts = AllowedHosts(!local, options.allowedHosts),
                               .htmlFolder = house.htmlFolder()});
    // Before the server waits for its threads.
    const std::unique_ptr<DiscCovers, void (*)(DiscCovers*)> asked(&discs,
                                                                   [](DiscCovers* all) { all->end(); });
    const AddressFile file(options.data);
    const auto address = [&] {
      return (port.speaksTls() ? "https://" : "http://") + HostOf(options.listen) + ":" +
             std::to_string(port.port()) + "/" + (visitors.byKey() ? "?key=" + visitors.key() : "");
    };
    visitors.passwordChanged = [&] { file.write(address()); };
    file.write(address());
    std::cout << "Vantorix is at " << address() << std::endl;

    house.log.write("Startup", "Vantorix has started, version " + house.version);
    if (!options.tlsKey.empty() && IsReadByAnybody(options.tlsKey))
      house.log.write("Warning", "Everybody on this machine may read the key in " + options.tlsKey.string() +
                                     ", and who has it can pass for this house");
    connection.onDisconnect([&] {
      house.log.write("Error", "The message bus has gone");
      loop.quit(1);
    });
    plugin.start();
    code = loop.run();
  }
  connection.replyWithin(std::nullopt);  // the plug-in has its own time to end in
  plugin.stop();
  house.log.write("Info", "Vantorix has stopped");
  // The loop turns no more, and no other thread writes.
  const files::UnsyncedFolders late(
      [&](const base::Failure& failure) { house.log.write("Warning", failure.description()); });
  flusher.flushNow();
  return code;
}

int PrintAddress(const std::filesystem::path& data) {
  const std::optional<std::string> address = AddressFile::read(data);
  if (!address) throw base::Failure(base::number::kFileNotFound, "No server is running on " + data.string());
  std::cout << *address << "\n";
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  ::umask(0077);  // passwords and settings are nobody else's business
  try {
    const Options options = ReadOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (options.help) {
      std::cout << Usage();
      return 0;
    }
    return options.address ? PrintAddress(options.data) : Serve(options);
  } catch (const std::exception& failure) {
    std::cerr << "vantorix-standin: " << failure.what() << "\n";
    return 1;
  }
}
