#include "engine/tags/MediaFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/tags/Readers.hpp"
#include "files/Descriptor.hpp"
#include "files/FileError.hpp"

namespace engine::tags {
namespace {

using Reader = bool (*)(ByteSource&, TagFields&);

/// What only the decoder understands is known by its name.
bool NoTags(ByteSource& /*source*/, TagFields& /*fields*/) { return true; }

/// The tags of a stream without a head of its own; the decoder tells what is in it.
bool ReadBareStream(ByteSource& source, TagFields& fields) {
  ReadMpegAudio(source, fields);
  return true;
}

struct Format {
  std::string_view ending;
  MediaKind kind;
  Reader read;
};

constexpr std::array<Format, 33> kFormats{{
    {"mp3", MediaKind::kAudio, ReadMpegAudio},  {"flac", MediaKind::kAudio, ReadFlac},
    {"ogg", MediaKind::kAudio, ReadOgg},        {"oga", MediaKind::kAudio, ReadOgg},
    {"opus", MediaKind::kAudio, ReadOgg},       {"spx", MediaKind::kAudio, ReadOgg},
    {"m4a", MediaKind::kAudio, ReadMp4},        {"m4b", MediaKind::kAudio, ReadMp4},
    {"aac", MediaKind::kAudio, ReadBareStream}, {"mp2", MediaKind::kAudio, ReadBareStream},
    {"wav", MediaKind::kAudio, ReadRiff},       {"aif", MediaKind::kAudio, ReadAiff},
    {"aiff", MediaKind::kAudio, ReadAiff},      {"aifc", MediaKind::kAudio, ReadAiff},
    {"wma", MediaKind::kAudio, ReadAsf},        {"ape", MediaKind::kAudio, ReadMonkey},
    {"mpc", MediaKind::kAudio, ReadMusepack},   {"wv", MediaKind::kAudio, ReadWavPack},
    {"tta", MediaKind::kAudio, ReadTrueAudio},  {"dsf", MediaKind::kAudio, ReadDsf},
    {"mka", MediaKind::kAudio, ReadMatroska},   {"mp4", MediaKind::kVideo, ReadMp4},
    {"m4v", MediaKind::kVideo, ReadMp4},        {"mov", MediaKind::kVideo, ReadMp4},
    {"mkv", MediaKind::kVideo, ReadMatroska},   {"webm", MediaKind::kVideo, ReadMatroska},
    {"avi", MediaKind::kVideo, ReadRiff},       {"wmv", MediaKind::kVideo, ReadAsf},
    {"ogv", MediaKind::kVideo, ReadOgg},        {"mpg", MediaKind::kVideo, NoTags},
    {"mpeg", MediaKind::kVideo, NoTags},        {"ts", MediaKind::kVideo, NoTags},
    {"flv", MediaKind::kVideo, NoTags},
}};

const Format* FormatOf(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return nullptr;
  // Asked for every file of every scan, so without a text of its own; endings are plain letters.
  std::array<char, 8> folded{};
  const std::string_view ending = name.substr(dot + 1);
  if (ending.size() > folded.size()) return nullptr;
  std::size_t size = 0;
  for (const char c : ending) folded.at(size++) = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  const std::string_view lower(folded.data(), size);
  const auto* found = std::find_if(kFormats.begin(), kFormats.end(),
                                   [&](const Format& format) { return format.ending == lower; });
  return found != kFormats.end() ? found : nullptr;
}

struct OpenFile {
  files::Descriptor descriptor;
  std::uint64_t size = 0;
};

/// Opening anything but a file could wait for ever.
OpenFile Open(const std::string& path) {
  OpenFile file{files::Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))};
  if (!file.descriptor.valid()) throw files::FileFailure(errno, path, "Can't read ");
  struct stat info {};
  if (::fstat(file.descriptor.get(), &info) != 0 || !S_ISREG(info.st_mode))
    throw base::Failure(base::number::kInvalidArgument, base::RepairUtf8(path) + " holds no music");
  file.size = static_cast<std::uint64_t>(info.st_size);
  return file;
}

}  // namespace

MediaKind KindByName(std::string_view path) {
  const Format* format = FormatOf(path);
  return format != nullptr ? format->kind : MediaKind::kNone;
}

MediaFile ReadMediaFile(const std::string& path) {
  const OpenFile file = Open(path);
  const Format* format = FormatOf(path);
  MediaFile result;
  result.tags.kind = KindByName(path);
  if (format == nullptr) return result;
  ByteSource source(file.descriptor.get(), file.size);
  TagFields fields;
  // A film's picture and sound are left to the decoder, whatever its tags look like.
  result.music = format->read(source, fields) || format->kind == MediaKind::kVideo;
  result.tags = fields.take();
  result.tags.kind = format->kind;
  result.cut = fields.cut();
  return result;
}

std::string ReadPicture(const std::string& path) {
  const OpenFile file = Open(path);
  const Format* format = FormatOf(path);
  if (format == nullptr) return {};
  ByteSource source(file.descriptor.get(), file.size);
  TagFields fields(true);
  format->read(source, fields);
  return fields.takePicture();
}

}  // namespace engine::tags
