// Measures what the player's bar costs a browser: processor time of all of Chromium's processes, headless and
// so drawing in software, while a title plays and while it is paused. Prints figures; judges none.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "Times.hpp"
#include "support/Browser.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;

/// Processor time of all processes below this one whose program is the browser's, in seconds.
double BrowserTime() {
  std::map<int, int> parents;
  std::map<int, double> times;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const int id = std::atoi(entry.path().filename().c_str());
    if (id == 0) continue;
    std::ifstream file(entry.path() / "stat");
    const std::string line((std::istreambuf_iterator<char>(file)), {});
    const std::size_t name = line.find('(');
    const std::size_t end = line.rfind(')');
    if (name == std::string::npos || end == std::string::npos) continue;
    std::istringstream rest(line.substr(end + 2));
    const std::vector<std::string> words{std::istream_iterator<std::string>(rest), {}};
    if (words.size() < 13) continue;
    parents[id] = std::atoi(words[1].c_str());
    const bool browser = line.compare(name, 9, "(chromium") == 0 || line.compare(name, 7, "(chrome") == 0;
    const bool driver = line.compare(name, 13, "(chromedriver") == 0;
    if (browser && !driver) times[id] = std::atof(words[11].c_str()) + std::atof(words[12].c_str());
  }
  double sum = 0;
  for (const auto& [id, time] : times) {
    int at = id;
    while (at > 1 && at != ::getpid()) at = parents.count(at) == 0 ? 0 : parents[at];
    if (at == ::getpid()) sum += time;
  }
  return sum / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

void Measure(const char* words, int seconds) {
  const double before = BrowserTime();
  const auto begin = Clock::now();
  std::this_thread::sleep_for(std::chrono::seconds(seconds));
  const double spent = BrowserTime() - before;
  const double passed = bench::Milliseconds(Clock::now() - begin) / 1000;
  std::printf("%s: %.2f %% of a processor\n", words, 100 * spent / passed);
  std::fflush(stdout);
}

}  // namespace

int main(int count, char** words) {
  const int seconds = count > 1 ? std::atoi(words[1]) : 30;
  support::SmallMusic music(600);
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) return 1;
  support::Browser browser(1280, 900);
  browser.open(house.address());
  const auto play = [&] { return house.post("/api/play", {{"category", "Album"}, {"name", "Counting"}}); };
  if (!support::Eventually([&] { return play() == 200; })) return 1;
  for (const char* page : {"#devices", "#playing"}) {
    browser.open("about:blank");
    browser.open(house.url() + "/" + page);
    const char* kPlays = "return Boolean(document.querySelector('#player-bar .main[aria-label=Pause]'))";
    if (!browser.eventually(kPlays)) return 1;
    std::this_thread::sleep_for(std::chrono::seconds(4));
    Measure((std::string(page) + ", a title plays").c_str(), seconds);
    house.post("/api/player/pause", support::RealHouse::Json::object());
    std::this_thread::sleep_for(std::chrono::seconds(2));
    Measure((std::string(page) + ", paused").c_str(), seconds);
    house.post("/api/player/play", support::RealHouse::Json::object());
  }
  return 0;
}
