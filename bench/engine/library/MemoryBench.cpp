// What a track of the library takes in memory. VANTORIX_BENCH_TRACKS sets the number (100000 without it).

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Brief.hpp"
#include "bus/PollLoop.hpp"
#include "engine/common/Config.hpp"
#include "engine/library/Library.hpp"
#include "engine/scan/LibraryStore.hpp"

namespace {

namespace fs = std::filesystem;

/// Which is not there, so the library keeps what its index knows.
const std::string kMusic = "/nowhere/vantorix/music";

int TrackCount() {
  const char* text = std::getenv("VANTORIX_BENCH_TRACKS");
  const int count = text != nullptr ? std::atoi(text) : 0;
  return count > 0 ? count : bench::Amount(100000, 500);
}

double Resident() {
  std::ifstream file("/proc/self/statm");
  double all = 0;
  double resident = 0;
  file >> all >> resident;
  return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

engine::FileRecord Track(int number) {
  const int album = number / 10;
  engine::FileRecord record;
  record.tags.title = "Title number " + std::to_string(number);
  record.tags.artist = "Artist " + std::to_string(album / 3);
  record.tags.album = "Album " + std::to_string(album);
  record.tags.genre = "Genre " + std::to_string(album % 20);
  record.tags.track = static_cast<std::uint16_t>(number % 10 + 1);
  record.tags.milliseconds = 215000;
  record.path = kMusic + "/" + record.tags.artist + "/" + record.tags.album + "/" +
                std::to_string(record.tags.track) + " " + record.tags.title + ".flac";
  record.stamp = {number + 1, 30000000, static_cast<std::uint64_t>(number) + 1};
  return record;
}

void FillIndex(const fs::path& data, int count) {
  engine::LibraryStore store(data.string(),
                             [](const std::string& line) { std::printf("%s\n", line.c_str()); });
  std::vector<engine::FileRecord> tracks;
  tracks.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) tracks.push_back(Track(i));
  store.apply(tracks, {});
}

struct Sizes {
  double loaded = 0;  ///< bytes, once the library is up
  double asked = 0;   ///< once it has been asked by album, artist and genre
  int tracks = 0;
};

/// In a process of its own, so that nothing else is counted.
Sizes Load(const fs::path& data) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) std::abort();
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    bus::PollLoop loop;
    engine::Config config;
    config.dataFolder = data;
    config.musicFolders = {kMusic};
    engine::Library library(loop, config, {[] {}, [](const std::string&) {}, [] {}});
    Sizes sizes;
    sizes.loaded = Resident();
    for (const char* attribute : {"Album", "Artist", "Genre"}) library.getByAttribute(attribute, "x");
    sizes.asked = Resident();
    sizes.tracks = library.getAll()->count();
    ::_exit(::write(ends[1], &sizes, sizeof sizes) == sizeof sizes ? 0 : 1);
  }
  Sizes sizes;
  if (::read(ends[0], &sizes, sizeof sizes) != sizeof sizes) std::abort();
  ::waitpid(child, nullptr, 0);
  ::close(ends[0]);
  ::close(ends[1]);
  return sizes;
}

}  // namespace

int main() {
  std::string name = (fs::temp_directory_path() / "vantorix-bench-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) return 1;
  const int count = TrackCount();
  const fs::path folder = name;
  const pid_t filler = ::fork();  // whose memory is none of the library's
  if (filler == 0) {
    FillIndex(folder / "full", count);
    std::fflush(stdout);
    ::_exit(0);
  }
  ::waitpid(filler, nullptr, 0);
  const Sizes empty = Load(folder / "empty");
  const Sizes full = Load(folder / "full");
  fs::remove_all(folder);
  std::printf("the empty library's process: %.1f MB; with %d tracks: %.1f MB\n", empty.loaded / 1e6,
              full.tracks, full.loaded / 1e6);
  std::printf("a track takes %.0f bytes, %.0f once the library has been asked\n",
              (full.loaded - empty.loaded) / count, (full.asked - empty.asked) / count);
  return full.tracks == count && empty.tracks == 0 ? 0 : 1;
}
