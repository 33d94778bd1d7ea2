// How fast a large library is scanned, beside what reading its files costs at least.
// VANTORIX_BENCH_FILES sets the number of files (20000 without it).

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>

#include "Brief.hpp"
#include "demo/Cover.hpp"
#include "demo/Sound.hpp"
#include "demo/Tags.hpp"
#include "engine/library/TrackIndex.hpp"
#include "engine/library/TrackTable.hpp"
#include "engine/scan/Scanner.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double Seconds(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double PeakMegabytes() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

int FileCount() {
  const char* text = std::getenv("VANTORIX_BENCH_FILES");
  const int count = text != nullptr ? std::atoi(text) : 0;
  return count > 0 ? count : bench::Amount(20000, 100);
}

/// Tagged files of music with a cover, ten to an album, three albums to an artist.
void MakeFiles(const fs::path& root, int count) {
  const fs::path model = root / "model.flac";
  fs::create_directories(root);
  engine::demo::WriteSound(model.string(), engine::demo::Tone(440, 4.0), engine::demo::FileFormat::kFlac);
  const std::string cover = engine::demo::CoverPng(1, 200);
  for (int i = 0; i < count; ++i) {
    const int album = i / 10;
    const fs::path folder =
        root / ("artist " + std::to_string(album / 3)) / ("album " + std::to_string(album));
    fs::create_directories(folder);
    const fs::path file = folder / ("track " + std::to_string(i % 10) + ".flac");
    fs::copy_file(model, file);
    engine::TrackTags tags;
    tags.title = "Title " + std::to_string(i);
    tags.artist = "Artist " + std::to_string(album / 3);
    tags.album = "Album " + std::to_string(album);
    tags.genre = "Genre " + std::to_string(album % 20);
    tags.track = static_cast<std::uint16_t>(i % 10 + 1);
    engine::demo::WriteTags(file.string(), tags, cover);
  }
  fs::remove(model);
}

/// The least that a scan has to do: walk the folders and read the beginning of each file.
int ReadBeginnings(const fs::path& root) {
  std::array<char, 65536> buffer{};
  int count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    file.read(buffer.data(), buffer.size());
    ++count;
  }
  return count;
}

/// The library as it was left.
struct Start {
  std::unique_ptr<engine::LibraryStore> store;
  std::vector<engine::FileRecord> known;
};

Start Open(const fs::path& data, engine::TrackTable& table) {
  Start start;
  start.store = std::make_unique<engine::LibraryStore>(
      data.string(), [](const std::string& line) { std::cerr << line << '\n'; });
  start.known = start.store->load();
  for (const auto& record : start.known) table.put(record.path, record.tags);
  return start;
}

struct ScanTime {
  double seconds = 0;
  std::size_t read = 0;  ///< files that were opened
};

/// A scan from its beginning until all is in the index and in the table.
ScanTime Scan(const fs::path& root, Start start, int workers, engine::TrackTable& table) {
  std::mutex mutex;
  std::condition_variable ready;
  bool complete = false;
  std::size_t read = 0;
  engine::Scanner::Settings settings;
  settings.roots = {root.string()};
  settings.reading.workers = workers;
  const auto begin = Clock::now();
  const engine::Scanner scanner(settings, std::move(start.store), std::move(start.known),
                                [&](const engine::LibraryChange& change) {
                                  const std::lock_guard lock(mutex);
                                  for (const auto& record : change.changed)
                                    table.put(record.path, record.tags);
                                  read += change.changed.size();
                                  complete = complete || change.scanComplete;
                                  ready.notify_one();
                                });
  std::unique_lock lock(mutex);
  ready.wait(lock, [&] { return complete; });
  return {std::chrono::duration<double>(Clock::now() - begin).count(), read};
}

void Line(const char* what, double seconds, int count, double base) {
  std::printf("%-44s %8.3f s %9.0f files/s %7.2f of the plain reading\n", what, seconds, count / seconds,
              seconds / base);
}

}  // namespace

int main() {
  std::string name = (fs::temp_directory_path() / "vantorix-bench-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) return 1;
  const fs::path folder = name;
  const fs::path music = folder / "music";
  const int count = FileCount();
  bool good = true;
  {
    std::printf("%d files are made: %.1f s\n", count, Seconds([&] { MakeFiles(music, count); }));
    ReadBeginnings(music);  // so that everybody finds the files in memory alike
    const double plain = Seconds([&] { good = ReadBeginnings(music) == count; });
    Line("walking the folders, reading 64 KiB of each", plain, count, plain);

    engine::TrackTable one;
    engine::TrackTable two;
    engine::TrackTable again;
    const auto all = static_cast<std::size_t>(count);
    const ScanTime withOne = Scan(music, Open(folder / "data1", one), 1, one);
    Line("scan with one worker", withOne.seconds, count, plain);
    const double before = PeakMegabytes();
    const ScanTime withTwo = Scan(music, Open(folder / "data2", two), 2, two);
    Line("scan with two workers", withTwo.seconds, count, plain);
    Start start;
    const double opening = Seconds([&] { start = Open(folder / "data2", again); });
    Line("start: the library from its index", opening, count, plain);
    good = good && withOne.read == all && withTwo.read == all && again.count() == all;
    ScanTime rescan = Scan(music, std::move(start), 2, again);
    good = good && rescan.read == 0;
    for (int i = 0; i < 2; ++i) {
      const ScanTime other = Scan(music, Open(folder / "data2", again), 2, again);
      good = good && other.read == 0;
      rescan.seconds = std::min(rescan.seconds, other.seconds);
    }
    Line("rescan of the unchanged tree, best of three", rescan.seconds, count, plain);
    std::printf(
        "two workers against one: %.2f times as fast; rescan: %.3f of the plain reading (wanted: under "
        "0.5)\n",
        withOne.seconds / withTwo.seconds, rescan.seconds / plain);

    engine::TrackIndex index(again);
    const double build = Seconds([&] { index.byAttribute(engine::Attribute::kAlbum, "Album 1"); });
    const double ask = Seconds([&] {
      for (int i = 0; i < 1000; ++i)
        index.byAttribute(engine::Attribute::kAlbum, "Album " + std::to_string(i));
    });
    std::printf("first question by album: %.1f ms; each after it: %.2f us\n", build * 1e3, ask * 1e3);
    std::printf("peak memory: %.1f MB after one library, %.1f MB with all three in memory\n", before,
                PeakMegabytes());
    good = good && (bench::Brief() || rescan.seconds < plain / 2);
  }
  fs::remove_all(folder);
  if (!good) std::printf("NOT as wanted\n");
  return good ? 0 : 1;
}
