#include "engine/scan/TagReader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <taglib/tpropertymap.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace engine {
namespace {

constexpr std::array<std::string_view, 21> kAudioEndings{"mp3", "flac", "ogg", "oga",  "opus", "m4a", "m4b",
                                                         "aac", "wav",  "aif", "aiff", "wma",  "ape", "mpc",
                                                         "wv",  "tta",  "spx", "mka",  "mp2",  "dsf", "aifc"};
constexpr std::array<std::string_view, 12> kVideoEndings{"mp4",  "m4v", "mkv", "webm", "avi", "mpg",
                                                         "mpeg", "wmv", "mov", "ogv",  "ts",  "flv"};

std::string FileName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// What TagLib can't open but the decoder can.
bool BeyondTagLib(const std::string& path) {
  const std::string ending = base::LowerCase(path.substr(path.rfind('.') + 1));
  return KindByName(path) == MediaKind::kVideo || ending == "mka" || ending == "aac" || ending == "mp2";
}

/// Throws unless it is a file that can be opened for reading; opening anything else could wait for ever.
void CheckReadable(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    throw base::Failure(errno == ENOENT ? base::number::kFileNotFound : base::number::kPermissionDenied,
                        SafeName(path) + " can't be read");
  }
  struct stat info {};
  const bool regular = ::fstat(file, &info) == 0 && S_ISREG(info.st_mode);
  ::close(file);
  if (!regular) throw base::Failure(base::number::kInvalidArgument, SafeName(path) + " holds no music");
}

std::string Text(const TagLib::String& text) {
  std::string result = text.to8Bit(true);
  std::replace(result.begin(), result.end(), '\0', ' ');
  return base::TrimBlanks(base::RepairUtf8(result));
}

std::string First(const TagLib::PropertyMap& properties, const char* key) {
  const auto found = properties.find(key);
  return found != properties.end() && !found->second.isEmpty() ? Text(found->second.front()) : std::string();
}

std::uint16_t Number(const std::string& text) {
  unsigned value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9' || value > 6000) break;
    value = value * 10 + static_cast<unsigned>(digit - '0');
  }
  return static_cast<std::uint16_t>(std::min(value, 65535U));
}

}  // namespace

MediaKind KindByName(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return MediaKind::kNone;
  // Asked for every file of every scan, so without a text of its own; endings are plain letters.
  std::array<char, 8> folded{};
  const std::string_view ending = name.substr(dot + 1);
  if (ending.size() > folded.size()) return MediaKind::kNone;
  std::size_t size = 0;
  for (const char c : ending) folded.at(size++) = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  const std::string_view lower(folded.data(), size);
  const auto among = [&](const auto& endings) {
    return std::find(endings.begin(), endings.end(), lower) != endings.end();
  };
  if (among(kAudioEndings)) return MediaKind::kAudio;
  return among(kVideoEndings) ? MediaKind::kVideo : MediaKind::kNone;
}

std::string TitleFromPath(const std::string& path) {
  const std::string name = FileName(path);
  const auto dot = name.rfind('.');
  return base::RepairUtf8(dot != std::string::npos && dot > 0 ? name.substr(0, dot) : name);
}

std::string SafeName(const std::string& path) { return base::RepairUtf8(path); }

TrackTags ReadTags(const std::string& path) {
  CheckReadable(path);
  TrackTags tags;
  tags.kind = KindByName(path);
  tags.title = TitleFromPath(path);
  if (BeyondTagLib(path)) return tags;

  const TagLib::FileRef file(path.c_str(), true, TagLib::AudioProperties::Fast);
  const TagLib::AudioProperties* audio = file.isNull() ? nullptr : file.audioProperties();
  if (audio == nullptr || (audio->sampleRate() == 0 && audio->lengthInMilliseconds() == 0)) {
    throw base::Failure(base::number::kInvalidArgument, SafeName(path) + " holds no music");
  }
  tags.milliseconds = static_cast<std::uint32_t>(std::max(0, audio->lengthInMilliseconds()));

  const TagLib::PropertyMap properties = file.file()->properties();
  if (const std::string title = First(properties, "TITLE"); !title.empty()) tags.title = title;
  tags.artist = First(properties, "ARTIST");
  tags.albumArtist = First(properties, "ALBUMARTIST");
  tags.album = First(properties, "ALBUM");
  tags.genre = First(properties, "GENRE");
  tags.collectionId = First(properties, "MUSICBRAINZ_ALBUMID");
  tags.discId = First(properties, "MCDI");
  if (tags.discId.empty()) tags.discId = First(properties, "WM/MCDI");
  tags.year = Number(First(properties, "DATE"));
  tags.track = Number(First(properties, "TRACKNUMBER"));
  tags.disc = Number(First(properties, "DISCNUMBER"));
  return tags;
}

}  // namespace engine
