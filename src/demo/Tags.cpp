#include "demo/Tags.hpp"

#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/flacpicture.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/opusfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

#include <memory>

#include "base/Failure.hpp"

namespace engine::demo {
namespace {

void Put(TagLib::PropertyMap& properties, const char* key, const std::string& value) {
  if (!value.empty()) properties.replace(key, TagLib::String(value, TagLib::String::UTF8));
}

void Put(TagLib::PropertyMap& properties, const char* key, unsigned value) {
  if (value != 0) Put(properties, key, std::to_string(value));
}

void PutLoudness(TagLib::PropertyMap& properties, const Loudness& loudness) {
  const auto decibels = [&](const char* key, std::int16_t value) {
    if (value != Loudness::kUnknown) Put(properties, key, std::to_string(value / 100.0) + " dB");
  };
  const auto peak = [&](const char* key, std::uint16_t value) {
    if (value != 0) Put(properties, key, std::to_string(value / 10000.0));
  };
  decibels("REPLAYGAIN_TRACK_GAIN", loudness.track);
  peak("REPLAYGAIN_TRACK_PEAK", loudness.trackPeak);
  decibels("REPLAYGAIN_ALBUM_GAIN", loudness.album);
  peak("REPLAYGAIN_ALBUM_PEAK", loudness.albumPeak);
}

TagLib::FLAC::Picture* CoverOf(const TagLib::ByteVector& data) {
  auto picture = std::make_unique<TagLib::FLAC::Picture>();
  picture->setType(TagLib::FLAC::Picture::FrontCover);
  picture->setMimeType("image/png");
  picture->setData(data);
  return picture.release();  // the file owns it
}

TagLib::ID3v2::AttachedPictureFrame* FrameOf(const TagLib::ByteVector& data) {
  auto frame = std::make_unique<TagLib::ID3v2::AttachedPictureFrame>();
  frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
  frame->setMimeType("image/png");
  frame->setPicture(data);
  return frame.release();  // the tag owns it
}

void PutCover(TagLib::File* file, const std::string& png) {
  const TagLib::ByteVector data(png.data(), static_cast<unsigned>(png.size()));
  if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(file)) flac->addPicture(CoverOf(data));
  if (auto* vorbis = dynamic_cast<TagLib::Ogg::Vorbis::File*>(file)) vorbis->tag()->addPicture(CoverOf(data));
  if (auto* opus = dynamic_cast<TagLib::Ogg::Opus::File*>(file)) opus->tag()->addPicture(CoverOf(data));
  if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file)) wav->ID3v2Tag()->addFrame(FrameOf(data));
  if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(file)) mpeg->ID3v2Tag(true)->addFrame(FrameOf(data));
  if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(file)) {
    TagLib::MP4::CoverArtList covers;
    covers.append(TagLib::MP4::CoverArt(TagLib::MP4::CoverArt::PNG, data));
    mp4->tag()->setItem("covr", TagLib::MP4::Item(covers));
  }
}

}  // namespace

void WriteTags(const std::string& path, const TrackTags& tags, const std::string& png) {
  TagLib::FileRef file(path.c_str());
  if (file.isNull()) throw base::Failure(base::number::kDeviceIo, path + " can't be tagged");
  TagLib::PropertyMap properties;
  Put(properties, "TITLE", tags.title);
  Put(properties, "ARTIST", tags.artist);
  Put(properties, "ALBUMARTIST", tags.albumArtist);
  Put(properties, "ALBUM", tags.album);
  Put(properties, "GENRE", tags.genre);
  Put(properties, "MUSICBRAINZ_ALBUMID", tags.collectionId);
  Put(properties, "MCDI", tags.discId);
  Put(properties, "DATE", tags.year);
  Put(properties, "TRACKNUMBER", tags.track);
  Put(properties, "DISCNUMBER", tags.disc);
  PutLoudness(properties, tags.loudness);
  file.file()->setProperties(properties);
  if (!png.empty()) PutCover(file.file(), png);
  if (!file.save()) throw base::Failure(base::number::kDeviceIo, path + " can't be tagged");
}

}  // namespace engine::demo
