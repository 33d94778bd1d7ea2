// One run of the player over a library, for bench/engine/beside-mpd.sh: what it costs in processor time and
// memory.
//
// clang-format off
//   library_run make MODELS FOLDER COUNT   copies of the model files, each with tags of its own
//   library_run read FOLDER                walks it and reads the first 64 KiB of each file: the least there is
//   library_run scan FOLDER DATA           the player until its first scan is complete
//   library_run start FOLDER DATA          the player that knows the library already
//   library_run genres FOLDER DATA ROUNDS  the same; the names of all titles of each genre, so many times
// clang-format on
//
// Prints "files seconds user-and-system-seconds resident-KiB"; of "genres" the titles that were told, and
// what telling them took.

#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "demo/Cover.hpp"
#include "demo/Tags.hpp"
#include "engine/Player.hpp"
#include "engine/common/Config.hpp"
#include "player/WMP9.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Ten titles to an album, three albums to an artist; every fourth file has a picture.
void Make(const fs::path& models, const fs::path& folder, int count) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(models)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  const std::string cover = engine::demo::CoverPng(1, 200);
  for (int i = 0; i < count; ++i) {
    const fs::path& model = files.at(static_cast<std::size_t>(i) % files.size());
    const int album = i / 10;
    engine::TrackTags tags;
    tags.title = "Title number " + std::to_string(i);
    tags.artist = "Artist " + std::to_string(album / 3);
    tags.albumArtist = tags.artist;
    tags.album = "Album " + std::to_string(album);
    tags.genre = "Genre " + std::to_string(album % 20);
    tags.year = static_cast<std::uint16_t>(1960 + album % 60);
    tags.track = static_cast<std::uint16_t>(i % 10 + 1);
    const fs::path place = folder / tags.artist / tags.album;
    fs::create_directories(place);
    const fs::path file =
        place / (std::to_string(i % 10 + 1) + " " + tags.title + model.extension().string());
    fs::copy_file(model, file, fs::copy_options::overwrite_existing);
    engine::demo::WriteTags(file.string(), tags, i % 4 == 0 ? cover : std::string());
  }
}

int ReadBeginnings(const fs::path& folder) {
  std::array<char, 64 * 1024> buffer{};
  int count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    file.read(buffer.data(), buffer.size());
    ++count;
  }
  return count;
}

class Ear : public player::WMP9Events {
 public:
  void PlayStateChange(std::int32_t /*newState*/) override {}
  void ModeChange(const std::string& /*modeName*/, bool /*newValue*/) override {}
  void Error() override {}
  void Warning(std::int32_t /*type*/, std::int32_t /*parameter*/, const std::string& description) override {
    std::cerr << description << '\n';
  }
  void MediaCollectionChange() override {}
  void PlaylistCollectionChange() override {}
  void DoubleClick() override {}
};

double ProcessorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long ResidentKib() {
  std::ifstream file("/proc/self/statm");
  long all = 0;
  long resident = 0;
  file >> all >> resident;
  return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

std::size_t FilesBelow(const fs::path& folder) {
  std::size_t count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) count += entry.is_regular_file() ? 1 : 0;
  return count;
}

engine::Config ConfigFor(const fs::path& folder, const fs::path& data) {
  engine::Config config;
  config.musicFolders = {folder.string()};
  config.dataFolder = data.string();
  config.playlistFolder = (data / "playlists").string();
  config.audioOutput = "null";
  config.findCdDrives = false;
  return config;
}

int TellGenres(const fs::path& folder, const fs::path& data, int rounds) {
  bus::PollLoop loop;
  Ear ear;
  const auto player = engine::MakePlayer(loop, ConfigFor(folder, data), ear,
                                         [](const std::string& line) { std::cerr << line << '\n'; });
  auto& library = player->mediaCollection();
  const auto genres = library.getAttributeStringCollection("Genre", "Audio");
  std::size_t titles = 0;
  std::size_t bytes = 0;
  const auto begin = Clock::now();
  const double before = ProcessorSeconds();
  for (int round = 0; round < rounds; ++round) {
    for (std::int32_t i = 0; i < genres->count(); ++i) {
      const auto list = library.getByAttribute("Genre", genres->item(i));
      for (std::int32_t at = 0; at < list->count(); ++at) bytes += list->item(at)->name().size();
      titles += static_cast<std::size_t>(list->count());
    }
  }
  const double used = ProcessorSeconds() - before;
  std::printf("%zu %.3f %.3f %ld\n", titles, std::chrono::duration<double>(Clock::now() - begin).count(),
              used, ResidentKib());
  return bytes > 0 ? 0 : 1;
}

int Play(const fs::path& folder, const fs::path& data, bool known) {
  const std::size_t files = FilesBelow(folder);
  const double before = ProcessorSeconds();
  const auto begin = Clock::now();
  bus::PollLoop loop;
  const engine::Config config = ConfigFor(folder, data);
  Ear ear;
  const auto player =
      engine::MakePlayer(loop, config, ear, [](const std::string& line) { std::cerr << line << '\n'; });
  const auto count = [&] { return static_cast<std::size_t>(player->mediaCollection().getAll()->count()); };
  if (!known) {
    const auto limit = begin + std::chrono::minutes(30);
    std::size_t had = 0;
    while (had < files && Clock::now() < limit) {
      loop.turn(std::chrono::milliseconds(200));
      had = count();
    }
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  const double used = ProcessorSeconds() - before;
  const std::size_t met = count();
  const auto settled = Clock::now() + std::chrono::seconds(2);  // what it holds when all is done
  while (Clock::now() < settled) loop.turn(std::chrono::milliseconds(100));
  std::printf("%zu %.3f %.3f %ld\n", met, seconds, used, ResidentKib());
  return met == files ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
  const std::vector<std::string> given(words + 1, words + count);
  if (given.size() == 4 && given[0] == "make") {
    Make(given[1], given[2], std::atoi(given[3].c_str()));
    return 0;
  }
  if (given.size() == 2 && given[0] == "read") {
    const auto begin = Clock::now();
    const int files = ReadBeginnings(given[1]);
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    std::printf("%d %.3f %.3f %ld\n", files, seconds, ProcessorSeconds(), ResidentKib());
    return 0;
  }
  if (given.size() == 3 && (given[0] == "scan" || given[0] == "start"))
    return Play(given[1], given[2], given[0] == "start");
  if (given.size() == 4 && given[0] == "genres")
    return TellGenres(given[1], given[2], std::atoi(given[3].c_str()));
  std::cerr << "make MODELS FOLDER COUNT, read FOLDER, scan FOLDER DATA, start FOLDER DATA or genres FOLDER "
               "DATA ROUNDS\n";
  return 2;
}
