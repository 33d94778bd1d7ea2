#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace engine {

/// Which of the loudnesses that tags tell is made the same for all.
enum class ReplayGain : std::uint8_t { kOff, kTrack, kAlbum };

/// What draws films: a graphics card where there is one, software alone, or whatever calls itself a card,
/// even one that draws in software itself.
enum class Graphics : std::uint8_t { kAuto, kNone, kAny };

/// What the player is set up with. Every field has a default that works.
struct Config {
  std::vector<std::string> musicFolders;  ///< absolute; scanned with everything below them
  std::string dataFolder;                 ///< the library's index and the extracted pictures
  std::string playlistFolder;             ///< where the playlists lie
  /// "" for the machine's own sound with silence as the last resort, "null" for silence, "pcm:FILE" for a
  /// WAV file.
  std::string audioOutput;
  Graphics graphics = Graphics::kAuto;
  bool untimed = false;                ///< silence runs as fast as it can instead of in real time
  std::vector<std::string> cdDevices;  ///< drives or CUE files
  bool findCdDrives = true;            ///< whether to look for the machine's own drives: if none are set up
  ReplayGain replayGain = ReplayGain::kOff;
  bool clipping = false;     ///< louder than full scale is allowed: peaks are cut
  double preamp = 0;         ///< decibels on top of what the tags say
  double crossfade = 0;      ///< seconds in which one title goes over into the next; 0 for none
  bool resume = true;        ///< what was played is taken up again at the next start, stopped
  std::string chosenCovers;  ///< a folder of pictures named after albums, before all others
  std::string metadataAddress;
  std::string coverAddress;
  std::chrono::milliseconds cardPatience = std::chrono::seconds(5);  ///< how long a card may take to open
  int tagWorkers = 2;
  /// Bytes that the player may hold more while it plays a title than it did before.
  std::size_t titleMemory = std::size_t{1} << 30U;
  /// Bytes that it may ask the system for meanwhile; it gets no more. One of the decoder's readers ends the
  /// process if it doesn't get the 2 GiB that it unpacks at once.
  std::size_t titleRoom = std::size_t{3} << 30U;
  /// The most that is granted: "none", "read" or "full".
  std::string mediaAccessRights = "full";
  std::optional<std::uint32_t> shuffleSeed;  ///< for an order that repeats, in tests
};

/// The configuration without a file: the XDG music folder and the XDG data folder.
Config DefaultConfig();

/// Reads a configuration file over the defaults; a missing file leaves the defaults. Throws number 5 with a
/// text that names the line when a line can't be understood, and 70 when the file can't be read.
Config LoadConfig(const std::string& path);

/// "auto", "none" or "any" in any case, or "" for "auto". Another word is taken for "auto" too: answers what
/// is wrong with it, and "" where nothing is.
std::string SetGraphics(Config& config, const std::string& word);

/// Where `player.ini` lies by default.
std::string DefaultConfigPath();

}  // namespace engine
