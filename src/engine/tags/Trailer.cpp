#include <algorithm>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"

namespace engine::tags {
namespace {

constexpr std::uint64_t kId3Size = 128;
constexpr std::uint64_t kFooterSize = 32;
constexpr int kMostItems = 1000;

void ReadApeItems(ByteSource& source, std::uint64_t at, std::uint64_t end, TagFields& fields) {
  for (int i = 0; i < kMostItems && at + 9 < end; ++i) {
    const std::string_view head = source.at(at, 8 + 256);
    const std::uint64_t size = Little(head, 0, 4);
    const std::uint64_t flags = Little(head, 4, 4);
    const std::size_t nameEnd = head.find('\0', 8);
    if (head.size() < 9 || nameEnd == std::string_view::npos) return;
    const std::string name(head.substr(8, nameEnd - 8));
    const std::uint64_t value = at + nameEnd + 1;
    if (value > end || size > end - value) return;
    const bool text = (flags >> 1U & 3U) == 0;
    if (text && FieldNamed(name)) {
      fields.offer(
          name,
          source.at(value, static_cast<std::size_t>(std::min<std::uint64_t>(size, TagFields::kMostOfText))));
    }
    const bool front = name == "Cover Art (Front)";
    if (!text && front && fields.wantsPicture(front, size)) {
      std::string picture = source.copy(value, size);
      picture.erase(0, std::min(picture.find('\0'), picture.size() - 1) + 1);  // its file's name
      fields.offerPicture(front, std::move(picture));
    }
    at = value + size;
  }
}

void ReadId3v1(std::string_view tag, TagFields& fields) {
  fields.offerLatin(Field::kTitle, Part(tag, 3, 30));
  fields.offerLatin(Field::kArtist, Part(tag, 33, 30));
  fields.offerLatin(Field::kAlbum, Part(tag, 63, 30));
  fields.offerLatin(Field::kYear, Part(tag, 93, 4));
  if (Byte(tag, 125) == 0 && Byte(tag, 126) != 0) fields.offer(Field::kTrack, std::to_string(Byte(tag, 126)));
  fields.offer(Field::kGenre, Genre(Byte(tag, 127)));
}

}  // namespace

Trailer FindTrailer(ByteSource& source) {
  Trailer trailer;
  trailer.musicEnd = source.size();
  const std::uint64_t tail = std::min(source.size(), kId3Size + kFooterSize);
  const std::string_view bytes = source.at(source.size() - tail, static_cast<std::size_t>(tail));
  if (bytes.size() < tail) return trailer;
  trailer.id3v1 = tail >= kId3Size && bytes.substr(bytes.size() - kId3Size, 3) == "TAG";
  if (trailer.id3v1) trailer.musicEnd -= kId3Size;
  const std::size_t end = bytes.size() - (trailer.id3v1 ? kId3Size : 0);
  if (end < kFooterSize) return trailer;
  const std::string_view footer = bytes.substr(end - kFooterSize, kFooterSize);
  const std::uint64_t size = Little(footer, 12, 4);
  if (footer.substr(0, 8) != "APETAGEX" || size < kFooterSize || size > trailer.musicEnd) return trailer;
  trailer.apeEnd = trailer.musicEnd - kFooterSize;
  trailer.apeItems = trailer.musicEnd - size;
  trailer.musicEnd = trailer.apeItems;
  const bool header = (Little(footer, 20, 4) >> 31U) != 0;
  if (header && trailer.musicEnd >= kFooterSize) trailer.musicEnd -= kFooterSize;
  return trailer;
}

void ReadTrailer(ByteSource& source, const Trailer& trailer, TagFields& fields) {
  if (trailer.apeEnd != 0) ReadApeItems(source, trailer.apeItems, trailer.apeEnd, fields);
  if (trailer.id3v1 && !fields.any()) ReadId3v1(source.at(source.size() - kId3Size, kId3Size), fields);
}

}  // namespace engine::tags
