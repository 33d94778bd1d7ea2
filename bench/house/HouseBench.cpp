// Measures the whole house, all of it real processes: how long a pressed button takes to be seen, what saving
// a setting costs, what the house costs while it does nothing, and what a start costs with many stored names.
// Prints figures and their ratios; judges none.
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <mutex>

#include "Brief.hpp"
#include "Times.hpp"
#include "catalogue/MediaKey.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;
using bench::Milliseconds;
using bench::Percentile;

/// The house's live stream, read in a thread of its own.
class LiveStream {
 public:
  explicit LiveStream(const support::RealHouse& house)
      : client_(house.client()), reader_([this] {
          client_.set_read_timeout(60);
          client_.Get("/api/live", [this](const char* data, std::size_t size) {
            const std::lock_guard lock(mutex_);
            text_.append(data, size);
            changed_.notify_all();
            return !ended_;
          });
        }) {}
  ~LiveStream() {
    ended_ = true;
    client_.stop();
    reader_.join();
  }
  LiveStream(const LiveStream&) = delete;
  LiveStream& operator=(const LiveStream&) = delete;
  LiveStream(LiveStream&&) = delete;
  LiveStream& operator=(LiveStream&&) = delete;

  void forget() {
    const std::lock_guard lock(mutex_);
    text_.clear();
  }
  bool waitFor(const std::string& wanted) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10),
                             [&] { return text_.find(wanted) != std::string::npos; });
  }

 private:
  httplib::Client client_;
  std::atomic<bool> ended_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string text_;
  std::thread reader_;
};

void MeasureLatency(support::RealHouse& house) {
  const int kPresses = bench::Amount(200, 4);
  LiveStream live(house);
  house.press("Mute", "Mute toggle");
  live.waitFor(">Muted");
  const auto mute = house.device("Mute")["ref"].get<int>();
  httplib::Client client = house.client();
  client.set_keep_alive(true);
  client.set_tcp_nodelay(true);
  const std::string body = support::RealHouse::Json{{"ref", mute}, {"caption", "Mute toggle"}}.dump();
  std::vector<double> times;
  std::vector<double> plain;
  for (int i = 0; i < kPresses; ++i) {
    live.forget();
    const auto begin = Clock::now();
    client.Post("/api/press", {{"Origin", house.url()}}, body, "application/json");
    if (!live.waitFor(i % 2 == 0 ? ">Not Muted" : ">Muted")) std::printf("press %d was not seen\n", i);
    times.push_back(Milliseconds(Clock::now() - begin));
    const auto start = Clock::now();
    client.Get("/favicon.svg");
    plain.push_back(Milliseconds(Clock::now() - start));
  }
  const double median = Percentile(times, 0.5);
  std::printf(
      "button to live text: median %.2f ms, 95th percentile %.2f ms of %d; %.1f times a static file's %.2f "
      "ms\n",
      median, Percentile(times, 0.95), kPresses, median / Percentile(plain, 0.5), Percentile(plain, 0.5));
}

void MeasureSaves(support::RealHouse& house) {
  const int kSaves = bench::Amount(50'000, 200);
  const int kSlice = bench::Amount(1'000, 100);
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const auto host = connection.proxy("org.vantorix.Host", "/host");
  // A bare call beside each slice shows what the machine was doing meanwhile.
  const auto timed = [kSlice](auto&& call) {
    const auto begin = Clock::now();
    for (int k = 0; k < kSlice; ++k) call(k);
    return Milliseconds(Clock::now() - begin);
  };
  std::vector<double> saves;
  std::vector<double> bare;
  double total = 0;
  for (int i = 0; i < kSaves; i += kSlice) {
    saves.push_back(timed([&](int k) {
      host->invoke("SaveINISetting", "Media Library", "Key " + std::to_string(i + k),
                   "Name " + std::to_string(i + k), "bench.ini");
    }));
    bare.push_back(timed([&](int) { host->invoke("WEBLoggedInUser"); }));
    total += saves.back();
  }
  std::printf(
      "%d saves through the bus: %.1f s; first thousand %.1f us a save (%.2f bare calls), last %.1f us "
      "(%.2f)\n",
      kSaves, total / 1000, saves.front(), saves.front() / bare.front(), saves.back(),
      saves.back() / bare.back());
}

struct Use {
  double seconds = 0;    ///< processor time so far
  double megabytes = 0;  ///< resident
};

Use UseOf(long process) {
  Use use;
  std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
  std::string text((std::istreambuf_iterator<char>(stat)), {});
  long user = 0;
  long system = 0;
  std::sscanf(text.c_str() + text.rfind(')') + 2, "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld",
              &user, &system);
  use.seconds = static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
  std::ifstream memory("/proc/" + std::to_string(process) + "/statm");
  long pages = 0;
  memory >> pages >> pages;
  use.megabytes = static_cast<double>(pages * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
  return use;
}

void MeasureIdle(support::RealHouse& house) {
  const int kSeconds = bench::Amount(10, 1);
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const long server = house.server().id();
  const long plugin = connection.processOf("org.vantorix.vxif_WMP9");
  const Use before[] = {UseOf(server), UseOf(plugin)};
  std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
  const Use after[] = {UseOf(server), UseOf(plugin)};
  const char* names[] = {"server", "plug-in"};
  for (int i = 0; i < 2; ++i)
    std::printf("%s, idle: %.2f %% of a processor, %.1f MiB resident\n", names[i],
                (after[i].seconds - before[i].seconds) / kSeconds * 100, after[i].megabytes);
}

/// The plug-in's file as a library of many names leaves it, a quarter of them in each section.
void StoreNames(const support::RealHouse& house, int count) {
  std::filesystem::create_directories(house.data() / "config");
  std::ofstream file(house.data() / "config" / "vxif_WMP.ini");
  file << "[Settings]\nDebugMessages=True\n";
  for (const char* section : {"Media Library", "Artist", "Album", "Genre"}) {
    file << "[" << section << "]\n";
    for (int i = 0; i < count / 4; ++i) {
      const std::string name = "Live / Unplugged, " + std::to_string(i) + " (Rock & Roll)";
      std::string key;
      catalogue::MakeMediaKey(name, key);
      file << key << "=" << catalogue::HexEncodeName(name) << "\n";
    }
  }
}

/// When a line came into the log, in milliseconds.
double LoggedAt(const support::RealHouse& house, const std::string& text) {
  httplib::Client client = house.client();
  const auto answer = client.Get("/api/log");
  if (!answer) return 0;
  const auto log = support::RealHouse::Json::parse(answer->body);
  for (const auto& line : log["lines"])
    if (line["text"] == text) return line["time"].get<double>();
  return 0;
}

struct Start {
  double seconds = 0;  ///< from the server's start to the plug-in's "ready"
  double names = 0;    ///< of them in LoadNameTable
};

Start MeasureStartWith(const std::string& music, int names) {
  support::RealHouse house({.music = music});
  StoreNames(house, names);
  const auto begin = Clock::now();
  house.start();
  Start start;
  if (!support::Eventually([&] { return house.pluginState() == "ready"; }, std::chrono::minutes(10)))
    std::printf("The house does not come up:\n%s\n", house.server().output().c_str());
  start.seconds = Milliseconds(Clock::now() - begin) / 1000;
  start.names = (LoggedAt(house, "Media Player: Finished Loading Xref") -
                 LoggedAt(house, "Media Player: Loading Xref")) /
                1000;
  return start;
}

/// Albums of one title each, by half as many artists. No name is a media key, so that each has to be stored.
void MakeAlbums(const std::filesystem::path& folder, int albums) {
  const auto sound = folder / "sound.flac";
  engine::demo::WriteSound(sound.string(), engine::demo::Tone(440, 0.05, 8000),
                           engine::demo::FileFormat::kFlac);
  for (int i = 0; i < albums; ++i) {
    const auto path = folder / (std::to_string(i) + ".flac");
    std::filesystem::copy_file(sound, path);
    engine::TrackTags tags;
    tags.title = "Title";
    tags.album = "Live / Unplugged, " + std::to_string(i) + " (Rock & Roll)";
    tags.artist = "Mira & the Clocks no. " + std::to_string(i / 2);
    tags.genre = "Rock";
    engine::demo::WriteTags(path.string(), tags, {});
  }
  std::filesystem::remove(sound);
}

/// What a page asks of a device of many values: how it looks, and the values that hold a text.
void MeasureValues(support::RealHouse& house) {
  const int kTimes = bench::Amount(50, 2);
  const std::string ref = std::to_string(house.device("Quick Album").value("ref", 0));
  for (const std::string& address :
       {std::string("/favicon.svg"), std::string("/api/state"), "/api/values?q=&ref=" + ref,
        "/api/values?q=unplugged%2099&ref=" + ref}) {
    httplib::Client client = house.client();
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);
    std::vector<double> times;
    std::size_t size = 0;
    for (int i = 0; i < kTimes; ++i) {
      const auto begin = Clock::now();
      const auto answer = client.Get(address);
      times.push_back(Milliseconds(Clock::now() - begin));
      size = answer ? answer->body.size() : 0;
    }
    std::printf("  %s: median %.2f ms, %zu bytes\n", address.c_str(), Percentile(times, 0.5), size);
  }
}

/// A house that has never been, with a player that knows its music.
void MeasureFirstMeeting() {
  const int kAlbums = bench::Amount(10'000, 50);
  const support::TempFolder music;
  MakeAlbums(music.path(), kAlbums);
  support::RealHouse house({.music = music.path().string()});
  bool met = house.startReady();
  {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    const auto script = connection.proxy("org.vantorix.vxif_WMP9", "/scriptclass");
    met = met && support::Eventually(
                     [&] {
                       return script->invoke("GetCategoryList", "Album").array().size() ==
                              static_cast<std::size_t>(kAlbums);
                     },
                     std::chrono::minutes(10));
  }
  house.server().signal(SIGTERM);
  house.server().wait();
  if (!met) std::printf("The player doesn't find its music:\n%s\n", house.server().output().c_str());
  std::filesystem::remove_all(house.data());
  const auto begin = Clock::now();
  house.start();
  const bool ready =
      support::Eventually([&] { return house.pluginState() == "ready"; }, std::chrono::minutes(10));
  std::printf("first meeting of %d albums and %d artists: %.2f s to %s\n", kAlbums, kAlbums / 2,
              Milliseconds(Clock::now() - begin) / 1000, ready ? "ready" : "nothing");
  if (ready) MeasureValues(house);
}

void MeasureStart(const std::string& music) {
  const int kNames = bench::Amount(50'000, 200);
  const Start bare = MeasureStartWith(music, 0);
  const Start full = MeasureStartWith(music, kNames);
  std::printf("start without stored names: %.2f s to ready, %.0f %% of it LoadNameTable\n", bare.seconds,
              100 * bare.names / bare.seconds);
  std::printf("start with %d stored names: %.2f s to ready, %.0f %% of it LoadNameTable (%.0f us a name)\n",
              kNames, full.seconds, 100 * full.names / full.seconds, 1e6 * full.names / kNames);
}

}  // namespace

int main() {
  const support::SmallMusic music;
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) {
    std::fprintf(stderr, "The house does not come up:\n%s\n", house.server().output().c_str());
    return 1;
  }
  MeasureIdle(house);
  MeasureLatency(house);
  MeasureSaves(house);
  MeasureStart(music.path());
  MeasureFirstMeeting();
  return 0;
}
