#include "engine/common/Config.hpp"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string Home() {
  const std::string home = Environment("HOME");
  return home.empty() ? "/" : home;
}

std::string XdgFolder(const char* variable, const std::string& belowHome) {
  const std::string set = Environment(variable);
  return !set.empty() && set.front() == '/' ? set : Home() + "/" + belowHome;
}

/// The user's music folder as the desktop's own file names it.
std::string XdgMusicFolder() {
  std::ifstream file(XdgFolder("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs");
  const std::string key = "XDG_MUSIC_DIR=\"";
  for (std::string line; std::getline(file, line);) {
    const std::string text = base::TrimBlanks(line);
    if (text.rfind(key, 0) != 0 || text.back() != '"') continue;
    std::string folder = text.substr(key.size(), text.size() - key.size() - 1);
    if (folder.rfind("$HOME", 0) == 0) folder = Home() + folder.substr(5);
    if (!folder.empty() && folder.front() == '/') return folder;
  }
  return Home() + "/Music";
}

std::string Folder(const std::string& text) {
  std::string folder = text;
  if (folder == "~" || folder.rfind("~/", 0) == 0) folder = Home() + folder.substr(1);
  folder = fs::absolute(folder).lexically_normal().string();
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

/// One line of the file; `section` is where it stands.
class Reader {
 public:
  explicit Reader(Config& config) : config_(config) {}

  /// False when the line can't be understood.
  bool line(const std::string& raw) {
    const std::string text = base::TrimBlanks(raw);
    if (text.empty() || text.front() == '#' || text.front() == ';') return true;
    if (text.front() == '[') {
      if (text.back() != ']') return false;
      section_ = base::LowerCase(text.substr(1, text.size() - 2));
      return section_ == "library" || section_ == "audio" || section_ == "network" || section_ == "cd" ||
             section_ == "playback" || section_ == "covers";
    }
    const auto equals = text.find('=');
    if (equals == std::string::npos) return false;
    return entry(section_ + "." + base::LowerCase(base::TrimBlanks(text.substr(0, equals))),
                 base::TrimBlanks(text.substr(equals + 1)));
  }

 private:
  bool entry(const std::string& key, const std::string& value) {
    if (key == "library.folder") {
      if (value.empty()) return false;
      if (!foldersGiven_) config_.musicFolders.clear();
      foldersGiven_ = true;
      config_.musicFolders.push_back(Folder(value));
      return true;
    }
    if (key == "library.access") {
      config_.mediaAccessRights = base::LowerCase(value);
      return config_.mediaAccessRights == "none" || config_.mediaAccessRights == "read" ||
             config_.mediaAccessRights == "full";
    }
    if (key == "library.data" && !value.empty()) return set(config_.dataFolder, Folder(value));
    if (key == "library.playlists" && !value.empty()) return set(config_.playlistFolder, Folder(value));
    if (key == "audio.output") return set(config_.audioOutput, value);
    if (key == "playback.resume") return choice(config_.resume, value);
    if (key == "playback.replaygain") return gain(value);
    if (key == "playback.preamp") return number(config_.preamp, value, -24, 24);
    if (key == "playback.clipping") return choice(config_.clipping, value);
    if (key == "playback.crossfade") return number(config_.crossfade, value, 0, 12);
    if (key == "covers.folder" && !value.empty()) return set(config_.chosenCovers, Folder(value));
    if (key == "network.metadata") return set(config_.metadataAddress, value);
    if (key == "network.cover")  // what is asked for is put right behind it
      return set(config_.coverAddress, value.empty() || value.back() == '/' ? value : value + '/');
    if (key == "cd.drive" && !value.empty()) {
      config_.cdDevices.push_back(value);
      config_.findCdDrives = false;
      return true;
    }
    return false;
  }

  static bool choice(bool& field, const std::string& value) {
    const std::string folded = base::LowerCase(value);
    field = folded == "yes";
    return field || folded == "no";
  }
  bool gain(const std::string& value) {
    const std::string folded = base::LowerCase(value);
    if (folded == "track")
      config_.replayGain = ReplayGain::kTrack;
    else if (folded == "album")
      config_.replayGain = ReplayGain::kAlbum;
    else
      config_.replayGain = ReplayGain::kOff;
    return config_.replayGain != ReplayGain::kOff || folded == "off";
  }
  static bool number(double& field, const std::string& value, double least, double most) {
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, field);
    return read.ec == std::errc() && read.ptr == end && field >= least && field <= most;
  }
  static bool set(std::string& field, const std::string& value) {
    field = value;
    return true;
  }

  Config& config_;
  std::string section_;
  bool foldersGiven_ = false;
};

}  // namespace

Config DefaultConfig() {
  Config config;
  config.musicFolders = {XdgMusicFolder()};
  config.dataFolder = XdgFolder("XDG_DATA_HOME", ".local/share") + "/vantorix/player";
  config.playlistFolder = config.musicFolders.front() + "/Playlists";
  config.chosenCovers = config.dataFolder + "/covers";
  return config;
}

Config LoadConfig(const std::string& path) {
  Config config = DefaultConfig();
  std::error_code ignored;
  if (!fs::exists(path, ignored)) return config;
  std::ifstream file(path);
  if (!file) throw base::Failure(base::number::kPermissionDenied, path + " can't be read");
  const std::string defaultPlaylists = config.playlistFolder;
  const std::string defaultCovers = config.chosenCovers;
  Reader reader(config);
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (number == 1 && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!reader.line(line)) {
      std::string text = path + ", line ";
      text.append(std::to_string(number)).append(": \"").append(line).append("\" is not understood");
      throw base::Failure(base::number::kInvalidArgument, text);
    }
  }
  if (config.playlistFolder == defaultPlaylists) {
    config.playlistFolder = config.musicFolders.front() + "/Playlists";
  }
  if (config.chosenCovers == defaultCovers) config.chosenCovers = config.dataFolder + "/covers";
  return config;
}

std::string SetGraphics(Config& config, const std::string& word) {
  const std::string folded = base::LowerCase(word);
  config.graphics = Graphics::kAuto;
  if (folded == "none")
    config.graphics = Graphics::kNone;
  else if (folded == "any")
    config.graphics = Graphics::kAny;
  else if (!folded.empty() && folded != "auto")
    return "What draws films is auto, none or any, and not \"" + word + "\": it is auto now";
  return "";
}

std::string DefaultConfigPath() { return XdgFolder("XDG_CONFIG_HOME", ".config") + "/vantorix/player.ini"; }

}  // namespace engine
