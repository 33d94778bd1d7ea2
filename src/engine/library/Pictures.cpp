#include "engine/library/Pictures.hpp"

#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/flacpicture.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/opusfile.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <utility>

#include "base/Failure.hpp"
#include "engine/scan/TagReader.hpp"
#include "files/Stamp.hpp"
#include "files/WriteFile.hpp"

namespace engine {
namespace {

std::string Bytes(const TagLib::ByteVector& bytes) { return {bytes.data(), bytes.size()}; }

std::string FromFlacPictures(const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
  const TagLib::FLAC::Picture* chosen = nullptr;
  for (const auto* picture : pictures) {
    if (chosen == nullptr || picture->type() == TagLib::FLAC::Picture::FrontCover) chosen = picture;
    if (chosen->type() == TagLib::FLAC::Picture::FrontCover) break;
  }
  return chosen != nullptr ? Bytes(chosen->data()) : std::string();
}

std::string FromId3(const TagLib::ID3v2::Tag* tag) {
  if (tag == nullptr) return {};
  const TagLib::ID3v2::AttachedPictureFrame* chosen = nullptr;
  for (const auto* frame : tag->frameListMap()["APIC"]) {
    const auto* picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame*>(frame);
    if (picture == nullptr) continue;
    if (chosen == nullptr || picture->type() == TagLib::ID3v2::AttachedPictureFrame::FrontCover)
      chosen = picture;
  }
  return chosen != nullptr ? Bytes(chosen->picture()) : std::string();
}

std::string FromMp4(const TagLib::MP4::Tag* tag) {
  if (tag == nullptr || !tag->contains("covr")) return {};
  const auto covers = tag->item("covr").toCoverArtList();
  return covers.isEmpty() ? std::string() : Bytes(covers.front().data());
}

/// The ending that fits the picture's first bytes.
std::string Ending(const std::string& picture) {
  if (picture.rfind("\x89PNG", 0) == 0) return ".png";
  if (picture.rfind("GIF8", 0) == 0) return ".gif";
  if (picture.rfind("BM", 0) == 0) return ".bmp";
  return ".jpg";
}

}  // namespace

std::string EmbeddedPicture(const std::string& path) {
  const TagLib::FileRef reference(path.c_str(), false);
  if (reference.isNull()) return {};
  TagLib::File* file = reference.file();
  if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(file)) return FromFlacPictures(flac->pictureList());
  if (auto* vorbis = dynamic_cast<TagLib::Ogg::Vorbis::File*>(file)) {
    return vorbis->tag() != nullptr ? FromFlacPictures(vorbis->tag()->pictureList()) : std::string();
  }
  if (auto* opus = dynamic_cast<TagLib::Ogg::Opus::File*>(file)) {
    return opus->tag() != nullptr ? FromFlacPictures(opus->tag()->pictureList()) : std::string();
  }
  if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(file)) return FromId3(mpeg->ID3v2Tag());
  if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file)) return FromId3(wav->ID3v2Tag());
  if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(file)) return FromMp4(mp4->tag());
  return {};
}

Pictures::Pictures(std::string folder) : folder_(std::move(folder)) { files::ClearLeftovers(folder_); }

std::string Pictures::urlOf(const std::string& path) {
  std::string key;
  try {
    const files::FileStamp stamp = files::StampOf(path);
    key = path + '\n' + std::to_string(stamp.modified) + ' ' + std::to_string(stamp.size);
  } catch (const base::Failure&) {
    return {};
  }
  const auto [place, fresh] = known_.try_emplace(key);
  std::error_code ignored;
  if (!fresh && (place->second.empty() || std::filesystem::exists(place->second.substr(7), ignored))) {
    return place->second;
  }
  place->second.clear();
  const std::string picture = EmbeddedPicture(path);
  if (picture.empty()) return {};
  std::array<char, 24> name{};
  std::snprintf(name.data(), name.size(), "%016zx", std::hash<std::string>{}(picture));
  const std::string file = folder_ + '/' + name.data() + Ending(picture);
  try {
    if (!std::filesystem::exists(file, ignored)) {
      std::filesystem::create_directories(folder_);
      files::WriteFile(file, picture);
    }
  } catch (const std::exception&) {
    return {};  // without a place for it there is no picture
  }
  place->second = "file://" + file;
  return place->second;
}

}  // namespace engine
