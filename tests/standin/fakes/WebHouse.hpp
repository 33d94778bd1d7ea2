#pragma once
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "standin/ear/NoRecogniser.hpp"
#include "standin/fakes/FakeEventControl.hpp"
#include "standin/fakes/FakeVoice.hpp"
#include "standin/fakes/WebClient.hpp"
#include "standin/hostobjects/HostObject.hpp"
#include "standin/http/PageRoutes.hpp"
#include "standin/http/WebServer.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/rules/PluginFormats.hpp"
#include "standin/rules/Wordings.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// The server's web in the test's own process, with a house without a plug-in behind it. The loop runs on a
/// thread of its own; what a test does with the house it does in `onLoop`.
class WebHouse {
 public:
  /// The log is told of refused posts at the first one, and of the others behind that pause.
  /// `local`: the owner comes with a key while he has no password.
  explicit WebHouse(base::Milliseconds pause = std::chrono::minutes(1), bool local = false)
      : visitors_(house_.users, local), refused_(std::in_place, loop_, house_.log, pause) {
    house_.webPort = port_.port();
    thread_ = std::thread([this] { loop_.run(); });
  }
  ~WebHouse() { end(); }
  WebHouse(const WebHouse&) = delete;
  WebHouse& operator=(const WebHouse&) = delete;
  WebHouse(WebHouse&&) = delete;
  WebHouse& operator=(WebHouse&&) = delete;

  /// Ends the web and the loop; the house is the test's own from then on.
  standin::House& end() {
    if (thread_.joinable()) {
      web_.reset();
      loop_.post([this] { loop_.quit(0); });
      thread_.join();
      refused_.reset();
    }
    return house_;
  }
  /// Time goes on for those who guess passwords; it stands still otherwise.
  void wait(std::chrono::seconds time) { time_ = time_.load() + time; }
  void onLoop(const std::function<void(standin::House&)>& work) {
    gate_.run([&](const auto& done) {
      work(house_);
      done();
    });
  }
  /// The cookie of a new session.
  std::string sessionOf(const std::string& user) {
    std::string token;
    onLoop([&](standin::House& house) { token = house.users.begin(user); });
    return standin::CookieName(port()) + "=" + token;
  }
  /// The key of the owner's address.
  std::string key() {
    std::string key;
    onLoop([&](standin::House&) { key = visitors_.key(); });
    return key;
  }
  /// On the loop.
  standin::Visitors& visitors() { return visitors_; }
  /// What the events' routes work with; on the loop.
  standin::RuleStore& rules() { return rules_; }
  standin::EvaluationStore& evaluations() { return evaluations_; }
  FakeEventControl& control() { return control_; }
  FakeVoice& voice() { return voice_; }
  [[nodiscard]] int port() const { return port_.port(); }
  [[nodiscard]] const standin::Routes& routes() const { return api_.routes(); }

 private:
  BusDaemon bus_;
  TempFolder folder_;
  bus::PollLoop loop_;
  bus::Connection connection_{loop_, bus_.address()};
  standin::WebPort port_{"127.0.0.1", 0};
  standin::House house_{folder_.path() / "data"};
  standin::BusShelf shelf_{connection_};
  standin::HouseObjects objects_{house_, shelf_};
  standin::PluginKeeper plugin_{loop_, connection_, house_, nullptr};
  standin::PlayerLibrary library_{loop_, connection_, plugin_};
  standin::LibrarySearch search_{loop_, library_};
  standin::Playlists playlists_{loop_, connection_, plugin_, house_, library_};
  standin::NowPlaying nowPlaying_{loop_, connection_, plugin_, house_};
  standin::OpenDialog dialog_{loop_, plugin_, house_};
  standin::ScriptStore scripts_{folder_.path() / "scripts"};
  standin::ScriptRunner runner_{loop_, connection_, house_, plugin_, nullptr, {}};
  standin::RuleStore rules_{house_};
  standin::EvaluationStore evaluations_{house_};
  standin::PluginWords pluginWords_{loop_, standin::FormatsOf(plugin_)};
  standin::Wordings words_{house_, pluginWords_};
  FakeEventControl control_;
  FakeVoice voice_;
  standin::Speech speech_{loop_, house_, voice_};
  standin::Quiet quiet_{loop_, speech_.events()};
  standin::NoRecogniser recogniser_{"There is no recogniser"};
  standin::VoiceCommands voiceCommands_{{loop_, house_, objects_, plugin_, library_, speech_, recogniser_}};
  standin::Utterances utterances_{loop_, voiceCommands_};
  const std::vector<standin::CaptureProgram> noPrograms_;
  standin::RoomMicrophone room_{{loop_, house_, voiceCommands_, quiet_, speech_, noPrograms_}};
  standin::LoopGate gate_{loop_, std::chrono::minutes(2)};
  standin::Visitors visitors_;
  std::optional<standin::RefusedPosts> refused_;
  standin::PlayerCovers playerCovers_{connection_, plugin_, house_};
  standin::Covers covers_{gate_, playerCovers_, folder_.path() / "covers"};
  standin::DiscCovers discs_{house_, folder_.path() / "discs"};
  std::atomic<standin::LoginLimits::Time> time_{standin::LoginLimits::Time()};
  standin::WebApi api_{
      visitors_, gate_,
      standin::Joined(
          {standin::HouseRoutes(house_, plugin_, visitors_),
           standin::DeviceRoutes(house_, objects_, plugin_, library_), standin::DialogRoutes(dialog_),
           standin::VoiceRoutes({house_, voiceCommands_, utterances_, quiet_, room_}),
           standin::LibraryRoutes(library_, search_), standin::PlayerRoutes(nowPlaying_, playlists_),
           standin::PlaylistRoutes(playlists_, library_), standin::CoverRoutes(covers_),
           standin::CoverServiceRoutes(discs_, "127.0.0.1"), standin::ScriptRoutes(scripts_, runner_),
           standin::EventRoutes({house_, rules_, evaluations_, words_, control_, scripts_}),
           standin::UserRoutes(house_, visitors_, gate_, [this] { return time_.load(); }),
           standin::PageRoutes(house_, plugin_)})};
  std::optional<standin::WebServer> web_{std::in_place, port_,
                                         standin::WebServer::Parts{.api = api_,
                                                                   .gate = gate_,
                                                                   .live = house_.live,
                                                                   .refused = *refused_,
                                                                   .hosts = {false, {}},
                                                                   .htmlFolder = house_.htmlFolder()}};
  std::thread thread_;
};

}  // namespace support
