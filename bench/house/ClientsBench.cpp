// Measures what a page's question costs while others ask at the same time, each time over a connection of its
// own, as programs without a browser's care do: 1, 10, 40 and 200 at once. Prints figures and their ratios;
// judges none.
#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>

#include "Brief.hpp"
#include "Times.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;
using bench::Milliseconds;
using bench::Percentile;

struct Seen {
  std::vector<double> times;
  int failed = 0;
  double seconds = 0;
};

/// `clients` at once ask `each` times.
Seen Ask(const support::RealHouse& house, int clients, int each) {
  Seen seen;
  std::mutex mutex;
  std::atomic<bool> go = false;
  std::vector<std::thread> all;
  all.reserve(static_cast<std::size_t>(clients));
  for (int i = 0; i < clients; ++i) {
    all.emplace_back([&] {
      while (!go) std::this_thread::yield();
      for (int k = 0; k < each; ++k) {
        const auto begin = Clock::now();
        const auto answer = house.client().Get("/api/player");
        const double time = Milliseconds(Clock::now() - begin);
        const std::lock_guard lock(mutex);
        if (answer && answer->status == 200) {
          seen.times.push_back(time);
        } else {
          ++seen.failed;
        }
      }
    });
  }
  const auto begin = Clock::now();
  go = true;
  for (std::thread& each_ : all) each_.join();
  seen.seconds = Milliseconds(Clock::now() - begin) / 1000;
  return seen;
}

int Measure() {
  const support::SmallMusic music(20);
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) return 1;
  const int questions = bench::Amount(4000, 40);
  double alone = 0;
  for (const int clients : {1, 10, 40, 200}) {
    const Seen seen = Ask(house, clients, std::max(1, questions / clients));
    if (seen.times.empty()) return std::printf("%d clients: nobody was answered\n", clients), 1;
    const double median = Percentile(seen.times, 0.5);
    if (clients == 1) alone = median;
    std::printf(
        "%3d at once: median %7.2f ms (%.1f times one alone, %.2f a client), 95%% within %7.2f ms, longest "
        "%7.2f "
        "ms; %.0f answers a second, %d of %zu failed\n",
        clients, median, median / alone, median / alone / clients, Percentile(seen.times, 0.95),
        Percentile(seen.times, 1), static_cast<double>(seen.times.size()) / seen.seconds, seen.failed,
        seen.times.size() + static_cast<std::size_t>(seen.failed));
  }
  return 0;
}

}  // namespace

int main() { return Measure(); }
