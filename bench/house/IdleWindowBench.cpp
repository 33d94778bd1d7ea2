// Counts how often the plug-in wakes while its popup window stands on a screen and nothing plays: how often
// each of its threads has given the processor up by itself. Prints figures; judges none.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>

#include "Brief.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"
#include "support/desktop/WindowManager.hpp"
#include "support/desktop/XServer.hpp"

namespace {

/// By thread.
using Wakes = std::map<std::string, long>;

Wakes WakesOf(long process) {
  const std::string counter = "voluntary_ctxt_switches:";
  Wakes wakes;
  for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream status(task.path() / "status");
    for (std::string line; std::getline(status, line);)
      if (line.starts_with(counter))
        wakes[task.path().filename().string()] = std::stol(line.substr(counter.size()));
  }
  return wakes;
}

}  // namespace

int main() {
  const int kSettle = bench::Amount(5, 1);
  const int kSeconds = bench::Amount(10, 1);
  const support::XServer screen;
  screen.use();
  const support::WindowManager manager;
  const support::SmallMusic music;
  support::RealHouse house({.music = music.path(), .display = screen.display()});
  if (!house.startReady() || !house.textBecomes("Display Controls", "Show")) {
    std::fprintf(stderr, "The window does not come up:\n%s\n", house.server().output().c_str());
    return 1;
  }
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const long plugin = connection.processOf("org.vantorix.vxif_WMP9");
  std::this_thread::sleep_for(std::chrono::seconds(kSettle));
  const Wakes before = WakesOf(plugin);
  std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
  long all = 0;
  long logic = 0;
  for (const auto& [thread, count] : WakesOf(plugin)) {
    const auto known = before.find(thread);
    const long more = count - (known == before.end() ? 0 : known->second);
    all += more;
    if (thread == std::to_string(plugin)) logic = more;
  }
  std::printf(
      "the popup window shown, nothing playing, %d s: %ld wake-ups in %zu threads, %ld of the logic's\n",
      kSeconds, all, before.size(), logic);
  return 0;
}
