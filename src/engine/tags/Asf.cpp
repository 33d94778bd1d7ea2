#include <algorithm>
#include <array>
#include <string>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Readers.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine::tags {
namespace {

constexpr std::uint64_t kMostObjects = 1024;
constexpr std::uint64_t kMostAttributes = 1024;
constexpr std::string_view kHeader{"\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C", 16};
constexpr std::string_view kFile{"\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65", 16};
constexpr std::string_view kDescription{"\x33\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C",
                                        16};
constexpr std::string_view kMore{"\x40\xA4\xD0\xD2\x07\xE3\xD2\x11\x97\xF0\x00\xA0\xC9\x5E\xA8\x50", 16};

std::string TextAt(ByteSource& source, std::uint64_t at, std::uint64_t length, std::size_t most) {
  return FromUtf16(source.at(at, static_cast<std::size_t>(std::min<std::uint64_t>(length, most))), false);
}

void ReadFileProperties(ByteSource& source, std::uint64_t at, TagFields& fields) {
  const std::string_view head = source.at(at, 64);
  const std::uint64_t played = Little(head, 40, 8) / 10000;
  const std::uint64_t ahead = Little(head, 56, 8);  // loaded before it is played
  fields.length(played > ahead ? played - ahead : 0);
}

void ReadDescription(ByteSource& source, std::uint64_t at, TagFields& fields) {
  const std::string sizes(source.at(at, 10));
  const std::uint64_t title = Little(sizes, 0, 2);
  fields.offer(Field::kTitle, TextAt(source, at + 10, title, TagFields::kMostOfText));
  fields.offer(Field::kArtist, TextAt(source, at + 10 + title, Little(sizes, 2, 2), TagFields::kMostOfText));
}

void ReadMore(ByteSource& source, std::uint64_t at, std::uint64_t end, TagFields& fields) {
  const std::uint64_t count = std::min(Little(source.at(at, 2), 0, 2), kMostAttributes);
  at += 2;
  for (std::uint64_t i = 0; i < count && at < end; ++i) {
    const std::uint64_t nameSize = Little(source.at(at, 2), 0, 2);
    const std::string name = TextAt(source, at + 2, nameSize, 128);
    const std::string_view kind = source.at(at + 2 + nameSize, 4);
    if (kind.size() < 4) return;
    const bool text = Little(kind, 0, 2) == 0;
    const bool number = Little(kind, 0, 2) == 3;
    const std::uint64_t size = Little(kind, 2, 2);
    const std::uint64_t value = at + 6 + nameSize;
    if (const auto field = FieldNamed(name); field && text) {
      fields.offer(*field, TextAt(source, value, size, TagFields::kMostOfText));
    } else if (field && number) {
      fields.offer(*field, std::to_string(Little(source.at(value, 4), 0, 4)));
    }
    at = value + size;
  }
}

}  // namespace

bool ReadAsf(ByteSource& source, TagFields& fields) {
  const std::string head(source.at(0, 30));
  if (head.substr(0, 16) != kHeader) return false;
  const std::uint64_t end = std::min(Little(head, 16, 8), source.size());
  const std::uint64_t count = std::min(Little(head, 24, 4), kMostObjects);
  std::uint64_t at = 30;
  for (std::uint64_t i = 0; i < count && at + 24 <= end; ++i) {
    const std::string object(source.at(at, 24));
    const std::string_view kind = std::string_view(object).substr(0, 16);
    const std::uint64_t size = Little(object, 16, 8);
    if (size < 24 || size > end - at) break;
    if (kind == kFile) ReadFileProperties(source, at + 24, fields);
    if (kind == kDescription) ReadDescription(source, at + 24, fields);
    if (kind == kMore) ReadMore(source, at + 24, at + size, fields);
    at += size;
  }
  return true;
}

}  // namespace engine::tags
