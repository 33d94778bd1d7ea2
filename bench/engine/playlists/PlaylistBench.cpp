// What an edit of a stored playlist costs, beside the writing of the same bytes by itself.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Brief.hpp"
#include "PlainWrite.hpp"
#include "Timing.hpp"
#include "bus/PollLoop.hpp"
#include "engine/common/Config.hpp"
#include "engine/library/Library.hpp"
#include "engine/playlists/StoredPlaylists.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

using bench::Median;

const int kRounds = bench::Amount(15, 1);

double Seconds(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Costs {
  double load = 0, change = 0, append = 0, move = 0, remove = 0, plain = 0;
};

Costs Measure(const fs::path& folder, int count) {
  const fs::path path = folder / "playlists/Bench.m3u8";
  bench::MakePlaylist(path, count);
  bus::PollLoop loop;
  engine::Config config;
  config.dataFolder = folder / "data";
  const engine::Library library(loop, config, {[] {}, [](const std::string&) {}, [] {}});
  std::unique_ptr<engine::StoredPlaylists> playlists;
  Costs costs;
  std::vector<double> load;
  for (int round = 0; round < kRounds; ++round) {
    playlists.reset();
    load.push_back(Seconds([&] {
      playlists = std::make_unique<engine::StoredPlaylists>(
          loop, path.parent_path(), library,
          engine::StoredPlaylists::Events{
              [] {}, [] {}, [](const std::string& line) { std::printf("%s\n", line.c_str()); }});
    }));
  }
  costs.load = Median(load);
  // None of the items is in the library, so each is looked for at every change of it.
  std::vector<double> change;
  for (int round = 0; round < kRounds; ++round)
    change.push_back(Seconds([&] { playlists->libraryChanged(); }));
  costs.change = Median(change);
  const auto list = playlists->getByName("Bench")->item(0);
  const auto media = library.mediaAt("/srv/music/new.flac");
  std::vector<double> append;
  std::vector<double> move;
  std::vector<double> remove;
  std::vector<double> plain;
  for (int round = 0; round < kRounds; ++round) {  // by turns, as the disk has its moods
    append.push_back(Seconds([&] { list->appendItem(media); }));
    move.push_back(Seconds([&] { list->moveItem(list->count() - 1, list->count() / 2); }));
    remove.push_back(Seconds([&] { list->removeItem(list->item(list->count() / 2 - 1)); }));
    const std::string content = bench::Content(path);
    plain.push_back(Seconds([&] { bench::WritePlainly(folder / "plain", content); }));
  }
  if (list->count() != count) std::abort();
  costs.append = Median(append);
  costs.move = Median(move);
  costs.remove = Median(remove);
  costs.plain = Median(plain);
  std::printf(
      "%7d items, %6.2f MB | read %8.2f ms | looked through as the library changes %6.2f ms (%.3f of "
      "reading)",
      count, static_cast<double>(fs::file_size(path)) / 1e6, costs.load * 1e3, costs.change * 1e3,
      costs.change / costs.load);
  std::printf(
      " | append %7.2f ms (%.2f) | move %7.2f ms (%.2f) | remove %7.2f ms (%.2f) | plain write %7.2f ms\n",
      costs.append * 1e3, costs.append / costs.plain, costs.move * 1e3, costs.move / costs.plain,
      costs.remove * 1e3, costs.remove / costs.plain, costs.plain * 1e3);
  return costs;
}

/// An edit may grow with the writing of its bytes, which the disk has its own mind about, and no faster.
bool AsTheWrite(double now, double plainNow, double before, double plainBefore) {
  return now / plainNow < 3 * before / plainBefore;
}

}  // namespace

int main() {
  std::string name = (fs::temp_directory_path() / "vantorix-bench-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) return 1;
  std::printf("medians of %d; in brackets: times the plain write of the same bytes\n", kRounds);
  bool good = true;
  Costs before;
  for (const int count : {1000, 10000, 100000}) {
    if (bench::Brief() && count > 1000) break;
    const fs::path folder = fs::path(name) / std::to_string(count);
    fs::create_directories(folder);
    const Costs costs = Measure(folder, count);
    if (before.plain > 0) {
      for (const auto edit : {&Costs::append, &Costs::move, &Costs::remove}) {
        good = good && AsTheWrite(costs.*edit, costs.plain, before.*edit, before.plain);
      }
      // Room for a list so short that the processor's caches hold all of it.
      good = good && costs.load < 25 * before.load;
    }
    before = costs;
  }
  fs::remove_all(name);
  if (!good) std::printf("NOT linear in the number of items beside the plain write\n");
  return good ? 0 : 1;
}
