#include "engine/common/Fixtures.hpp"

#include <cstdlib>
#include <fstream>

namespace engine::testing {

TempFolder::TempFolder() {
  std::string name = (fs::temp_directory_path() / "vantorix-engine-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

bool TurnUntil(bus::PollLoop& loop, const std::function<bool()>& condition, std::chrono::seconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    loop.turn(std::chrono::milliseconds(20));
  }
  return true;
}

PlayerTest::PlayerTest() {
  config.musicFolders = {folder / "music"};
  config.dataFolder = folder / "data";
  config.playlistFolder = folder / "playlists";
  config.audioOutput = "null";
  config.untimed = true;
  config.findCdDrives = false;
  config.shuffleSeed = 7;
  fs::create_directories(config.musicFolders.front());
}

std::string PlayerTest::addTrack(const std::string& file, const TrackTags& tags, double seconds) {
  const fs::path path = music(file);
  fs::create_directories(path.parent_path());
  // Made elsewhere and moved, so that a watching player sees it whole.
  const std::string made = folder / ("made" + path.extension().string());
  const std::string ending = path.extension().string();
  demo::WriteSound(made, demo::Tone(440, seconds),
                   ending == ".flac"  ? demo::FileFormat::kFlac
                   : ending == ".ogg" ? demo::FileFormat::kOgg
                                      : demo::FileFormat::kWav);
  demo::WriteTags(made, tags);
  fs::rename(made, path);
  return path.string();
}

std::string PlayerTest::addTrack(const std::string& file, const std::string& title, const std::string& artist,
                                 const std::string& album, const std::string& genre, int track,
                                 double seconds) {
  TrackTags tags;
  tags.title = title;
  tags.artist = artist;
  tags.album = album;
  tags.genre = genre;
  tags.track = static_cast<std::uint16_t>(track);
  return addTrack(file, tags, seconds);
}

void PlayerTest::writeText(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

void PlayerTest::start() {
  player = MakePlayer(loop, config, told, [this](const std::string& line) { log.push_back(line); });
  player->settings().autoStart(false);
}

void PlayerTest::startWith(int tracks) {
  start();
  ASSERT_TRUE(libraryHolds(tracks));
}

bool PlayerTest::libraryHolds(int tracks) {
  return until([&] { return player->mediaCollection().getAll()->count() == tracks; });
}

bool PlayerTest::untilState(std::int32_t state) {
  return until([&] { return !told.states.empty() && told.states.back() == state; });
}

void PlayerTest::minutesPass() {
  clock.skip(std::chrono::minutes(2));
  for (int i = 0; i < 10; ++i) loop.pump();
}

std::vector<std::string> Names(player::Playlist& list) {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < list.count(); ++i) names.push_back(list.item(i)->name());
  return names;
}

std::vector<std::string> Names(player::StringCollection& list) {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < list.count(); ++i) names.push_back(list.item(i));
  return names;
}

}  // namespace engine::testing
