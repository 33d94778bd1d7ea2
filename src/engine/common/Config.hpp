#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace engine {

/// What the player is set up with. Every field has a default that works.
struct Config {
  std::vector<std::string> musicFolders;  ///< absolute; scanned with everything below them
  std::string dataFolder;                 ///< the library's index and the extracted pictures
  std::string playlistFolder;             ///< where the playlists lie
  /// "" for the machine's own sound with silence as the last resort, "null" for silence, "pcm:FILE" for a
  /// WAV file.
  std::string audioOutput;
  bool untimed = false;                ///< silence runs as fast as it can instead of in real time
  std::vector<std::string> cdDevices;  ///< drives or CUE files
  bool findCdDrives = true;            ///< whether to look for the machine's own drives: if none are set up
  std::string metadataAddress;
  std::string coverAddress;
  int tagWorkers = 2;
  /// The most that is granted: "none", "read" or "full".
  std::string mediaAccessRights = "full";
  std::optional<std::uint32_t> shuffleSeed;  ///< for an order that repeats, in tests
};

/// The configuration without a file: the XDG music folder and the XDG data folder.
Config DefaultConfig();

/// Reads a configuration file over the defaults; a missing file leaves the defaults. Throws number 5 with a
/// text that names the line when a line can't be understood, and 70 when the file can't be read.
Config LoadConfig(const std::string& path);

/// Where `player.ini` lies by default.
std::string DefaultConfigPath();

}  // namespace engine
