// A house that is used for ten minutes at a hundred times a household's pace: what its processes hold of
// memory, descriptors and threads, and what its files grow to, with their slopes over the second half and the
// rise of their floors. Prints figures; judges none. Another time in seconds and another pace, in
// milliseconds between one thing and the next, may be given; with 0 it goes as fast as the house answers.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <thread>
#include <vector>

#include "Brief.hpp"
#include "Times.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;
using Json = support::RealHouse::Json;

/// What is looked at, by its name.
using Sample = std::map<std::string, double>;

double FilesIn(const std::filesystem::path& folder) {
  double bytes = 0;
  std::error_code gone;  // a file may go while it is looked at
  for (auto each = std::filesystem::recursive_directory_iterator(folder, gone);
       each != std::filesystem::recursive_directory_iterator(); each.increment(gone)) {
    if (gone) break;
    if (each->is_regular_file(gone)) bytes += static_cast<double>(each->file_size(gone));
  }
  return bytes;
}

std::size_t Count(const std::filesystem::path& folder) {
  std::error_code gone;
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder, gone), {}));
}

void Look(Sample& sample, const std::string& who, long process) {
  const std::filesystem::path folder = "/proc/" + std::to_string(process);
  std::ifstream rollup(folder / "smaps_rollup");
  for (std::string line; std::getline(rollup, line);) {
    if (line.starts_with("Private_Dirty:"))
      sample[who + ", own memory, kB"] = std::atof(line.c_str() + sizeof("Private_Dirty:"));
  }
  sample[who + ", descriptors"] = static_cast<double>(Count(folder / "fd"));
  sample[who + ", threads"] = static_cast<double>(Count(folder / "task"));
}

/// The slope by least squares.
double SlopeOf(const std::vector<std::pair<double, double>>& points) {
  double x = 0;
  double y = 0;
  for (const auto& [at, value] : points) {
    x += at;
    y += value;
  }
  const auto count = static_cast<double>(points.size());
  x /= count;
  y /= count;
  double up = 0;
  double along = 0;
  for (const auto& [at, value] : points) {
    up += (at - x) * (value - y);
    along += (at - x) * (at - x);
  }
  return along == 0 ? 0 : up / along;
}

/// What the least of the last quarter stands above the least of the one before: what comes and goes is in
/// neither.
double RiseOfTheFloor(const std::vector<std::pair<double, double>>& points) {
  const auto least = [&](std::size_t from, std::size_t to) {
    double found = points[from].second;
    for (std::size_t i = from; i < to; ++i) found = std::min(found, points[i].second);
    return found;
  };
  const std::size_t half = points.size() / 2;
  const std::size_t last = points.size() * 3 / 4;
  return least(last, points.size()) - least(half, std::max(last, half + 1));
}

/// What the people of a house do, one thing after the other and again from the beginning.
class Household {
 public:
  explicit Household(support::RealHouse& house)
      : house_(house), connection_(loop_, house.busAddress()), client_(house.client()) {
    client_.set_keep_alive(true);
    client_.set_tcp_nodelay(true);
    things_ = {
        [this] {
          post("/api/play", {{"category", "Album"}, {"name", "Album " + std::to_string(round_ % 20)}});
        },
        [this] { get("/api/state"); },
        [this] { get("/api/library?category=Album&limit=50"); },
        [this] { get("/api/cover?album=Album%20" + std::to_string(round_ % 20) + "&size=256"); },
        [this] {
          post("/api/player/volume", {{"to", static_cast<int>(20 + round_ % 60)}});
        },
        [this] { post("/api/player/next", Json::object()); },
        [this] {
          post("/api/voice", {{"text", "player shuffle"}});
        },
        [this] {
          post("/api/voice", {{"text", "play album Album " + std::to_string(round_ % 20)}});
        },
        [this] {
          post("/api/voice", {{"text", "what is the weather like"}}, 404);  // it isn't understood
        },
        [this] {
          post("/api/playlist/create", {{"name", "Soak"}});
        },
        [this] {
          post("/api/playlist/undo", {{"name", "Soak"}});
        },
        [this] { get("/api/player"); },
        [this] { get("/api/log"); },
        [this] { get("/"); },
        [this] {
          connection_.proxy("org.vantorix.Host", "/host")
              ->invoke("SaveINISetting", "Soak", "Key " + std::to_string(round_ % 500),
                       std::to_string(round_), "soak.ini");
        },
        [this] {
          connection_.proxy("org.vantorix.vxif_WMP9", "/scriptclass")->invoke("GetCategoryList", "Artist");
        },
        [this] {
          post("/api/script/run", {{"name", "soak"}, {"text", "print('hello')"}});
        },
        [this] {  // a page is opened and closed
          httplib::Client page = house_.client();
          page.Get("/api/live", [](const char*, std::size_t) { return false; });
        },
        [this] {  // a program comes to the bus, and goes
          bus::PollLoop loop;
          bus::Connection other(loop, house_.busAddress());
          other.proxy("org.vantorix.Host", "/host")->invoke("WEBLoggedInUser");
        },
        [this] {
          post("/api/voice", {{"text", "player stop"}});
        }};
  }
  void doNext() {
    try {
      things_[static_cast<std::size_t>(done_ % static_cast<long>(things_.size()))]();
    } catch (const std::exception& failure) {
      ++failures_[failure.what()];
    }
    if (++done_ % static_cast<long>(things_.size()) == 0) ++round_;
  }
  [[nodiscard]] long done() const { return done_; }
  /// How often what has failed.
  [[nodiscard]] const std::map<std::string, long>& failures() const { return failures_; }
  [[nodiscard]] long plugin() { return connection_.processOf("org.vantorix.vxif_WMP9"); }

 private:
  void get(const std::string& path) { count(path, client_.Get(path), 200); }
  /// `also` is an answer, too, as 409 is while a script still runs.
  void post(const std::string& path, const Json& body, int also = 409) {
    count(path, client_.Post(path, {{"Origin", house_.url()}}, body.dump(), "application/json"), also);
  }
  void count(const std::string& path, const httplib::Result& answer, int also) {
    const int status = answer ? answer->status : 0;
    if (status != 200 && status != also)
      ++failures_[path.substr(0, path.find('?')) + " answered " + std::to_string(status) +
                  (answer ? " " + answer->body : "")];
  }

  support::RealHouse& house_;
  bus::PollLoop loop_;
  bus::Connection connection_;
  httplib::Client client_;
  std::vector<std::function<void()>> things_;
  long done_ = 0;
  long round_ = 0;
  std::map<std::string, long> failures_;
};

void Fill(const support::SmallMusic& music) {
  for (int i = 0; i < 60; ++i) {
    engine::TrackTags tags;
    tags.title = "Song " + std::to_string(i);
    tags.artist = "Artist " + std::to_string(i % 7);
    tags.album = "Album " + std::to_string(i / 3);
    tags.track = i % 3 + 1;
    music.add("song " + std::to_string(i), 20, tags);
  }
}

int Measure(int seconds, std::chrono::milliseconds pace) {
  const auto every = std::chrono::seconds(bench::Amount(5, 1));
  const support::SmallMusic music(20);
  Fill(music);
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) return 1;
  Household household(house);
  std::map<std::string, std::vector<std::pair<double, double>>> all;
  const auto begin = Clock::now();
  const auto end = begin + std::chrono::seconds(seconds);
  auto look = begin;
  const long plugin = household.plugin();
  for (auto next = begin; Clock::now() < end; next += pace) {
    std::this_thread::sleep_until(next);
    household.doNext();
    if (Clock::now() < look) continue;
    look += every;
    Sample sample;
    Look(sample, "server", house.server().id());
    Look(sample, "plug-in", plugin);
    sample["files of the house, kB"] = FilesIn(house.folder()) / 1024;
    const double thousands = static_cast<double>(household.done()) / 1000;
    for (const auto& [what, value] : sample) all[what].emplace_back(thousands, value);
  }
  long failed = 0;
  for (const auto& [what, count] : household.failures()) failed += count;
  std::printf("%ld things done in %d s, %ld failed; the plug-in is %s\n", household.done(), seconds, failed,
              household.plugin() == plugin ? "the same" : "another one");
  for (const auto& [what, count] : household.failures())
    std::printf("failed %ld times: %s\n", count, what.c_str());
  std::printf(
      "%-28s tenth by tenth of the time, the slope of the second half, and how the least of its second half "
      "stands above that of its first\n",
      "");
  for (const auto& [what, points] : all) {
    std::printf("%-28s", what.c_str());
    constexpr std::size_t kShown = 10;
    for (std::size_t i = 0; i <= kShown; ++i)
      std::printf(" %.0f", points[i * (points.size() - 1) / kShown].second);
    const auto middle = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
    const double slope = SlopeOf({middle, points.end()});
    std::printf("; %+.2f for a thousand things; floor %+.1f\n", slope, RiseOfTheFloor(points));
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  // Somebody in a household does something every ten seconds; here it is ten things a second.
  constexpr int kPace = 100;
  return Measure(count > 1 ? std::atoi(words[1]) : bench::Amount(600, 4),
                 std::chrono::milliseconds(count > 2 ? std::atoi(words[2]) : kPace));
}
