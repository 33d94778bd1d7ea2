#include <algorithm>
#include <bit>
#include <cmath>
#include <string>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Readers.hpp"

namespace engine::tags {
namespace {

constexpr int kMostElements = 4096;
constexpr std::uint64_t kTrackLevel = 30;

enum Id : std::uint64_t {
  kHeader = 0x1A45DFA3,
  kSegment = 0x18538067,
  kSeekHead = 0x114D9B74,
  kSeek = 0x4DBB,
  kSeekId = 0x53AB,
  kSeekPlace = 0x53AC,
  kInfo = 0x1549A966,
  kScale = 0x2AD7B1,
  kDuration = 0x4489,
  kTitle = 0x7BA9,
  kTags = 0x1254C367,
  kTag = 0x7373,
  kTargets = 0x63C0,
  kLevel = 0x68CA,
  kSimpleTag = 0x67C8,
  kName = 0x45A3,
  kText = 0x4487,
  kCluster = 0x1F43B675,
  kAttachments = 0x1941A469,
  kAttachedFile = 0x61A7,
  kMediaType = 0x4660,
  kData = 0x465C,
};

struct Element {
  std::uint64_t id = 0;
  std::uint64_t begin = 0;  ///< of its content
  std::uint64_t end = 0;
};

/// The number of bytes that a number of changing length takes; 0 when it is none.
std::size_t Width(std::uint64_t first) {
  return first == 0 ? 0 : static_cast<std::size_t>(std::countl_zero(static_cast<std::uint8_t>(first))) + 1;
}

/// Calls `work` with each element of a range until it answers false. One of unknown length ends with the
/// range.
template <typename Work>
void ForEachElement(ByteSource& source, std::uint64_t at, std::uint64_t end, const Work& work) {
  for (int i = 0; i < kMostElements && at + 2 <= end; ++i) {
    const std::string_view head = source.at(at, 12);
    const std::size_t idWidth = Width(Byte(head, 0));
    const std::size_t sizeWidth = Width(Byte(head, idWidth));
    if (idWidth == 0 || idWidth > 4 || sizeWidth == 0) return;
    Element element;
    element.id = Big(head, 0, idWidth);
    const std::uint64_t mask = (std::uint64_t{1} << 7U * sizeWidth) - 1;
    const std::uint64_t size = Big(head, idWidth, sizeWidth) & mask;
    element.begin = at + idWidth + sizeWidth;
    if (element.begin > end) return;
    const bool whole = size != mask && size <= end - element.begin;
    element.end = whole ? element.begin + size : end;
    if (!work(element)) return;
    at = element.end;
  }
}

class Segment {
 public:
  Segment(ByteSource& source, TagFields& fields) : source_(source), fields_(fields) {}

  void read(const Element& segment) {
    std::uint64_t later = 0;  // where the tags are, when they come behind the pictures and sounds
    bool tagged = false;
    ForEachElement(source_, segment.begin, segment.end, [&](const Element& element) {
      if (element.id == kSeekHead) later = placeOfTags(element, segment.begin);
      if (element.id == kInfo) readInfo(element);
      if (element.id == kAttachments) readAttachments(element);
      if (element.id == kTags) {
        tagged = true;
        readTags(element);
      }
      return element.id != kCluster;
    });
    if (tagged || later <= segment.begin) return;
    ForEachElement(source_, later, segment.end, [&](const Element& element) {
      if (element.id == kTags) readTags(element);
      return false;
    });
  }

 private:
  std::uint64_t number(const Element& element) {
    const std::size_t size =
        static_cast<std::size_t>(std::min<std::uint64_t>(element.end - element.begin, 8));
    return Big(source_.at(element.begin, size), 0, size);
  }

  double real(const Element& element) {
    const std::uint64_t bits = number(element);
    if (element.end - element.begin == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    return element.end - element.begin == 8 ? std::bit_cast<double>(bits) : 0;
  }

  std::string text(const Element& element, std::size_t most) {
    return std::string(source_.at(
        element.begin, static_cast<std::size_t>(std::min<std::uint64_t>(element.end - element.begin, most))));
  }

  std::uint64_t placeOfTags(const Element& seekHead, std::uint64_t origin) {
    std::uint64_t place = 0;
    ForEachElement(source_, seekHead.begin, seekHead.end, [&](const Element& seek) {
      std::uint64_t id = 0;
      std::uint64_t at = 0;
      ForEachElement(source_, seek.begin, seek.end, [&](const Element& part) {
        if (part.id == kSeekId) id = number(part);
        if (part.id == kSeekPlace) at = number(part);
        return true;
      });
      if (seek.id == kSeek && id == kTags && at < source_.size()) place = origin + at;
      return true;
    });
    return place;
  }

  void readInfo(const Element& info) {
    double scale = 1000000;  // nanoseconds
    double duration = 0;
    ForEachElement(source_, info.begin, info.end, [&](const Element& part) {
      if (part.id == kScale) scale = static_cast<double>(number(part));
      if (part.id == kDuration) duration = real(part);
      if (part.id == kTitle) fields_.offer(Field::kTitle, text(part, TagFields::kMostOfText));
      return true;
    });
    const double milliseconds = duration * scale / 1e6;
    if (milliseconds > 0 && milliseconds < 4e9)
      fields_.length(static_cast<std::uint64_t>(std::llround(milliseconds)));
  }

  void readTags(const Element& tags) {
    ForEachElement(source_, tags.begin, tags.end, [&](const Element& tag) {
      std::uint64_t level = 0;  // 30: a track, 50: what it is a part of
      ForEachElement(source_, tag.begin, tag.end, [&](const Element& part) {
        if (part.id == kTargets) level = levelOf(part);
        if (part.id == kSimpleTag) readTag(part, level);
        return true;
      });
      return true;
    });
  }

  std::uint64_t levelOf(const Element& targets) {
    std::uint64_t level = 0;
    ForEachElement(source_, targets.begin, targets.end, [&](const Element& part) {
      if (part.id == kLevel) level = number(part);
      return true;
    });
    return level;
  }

  void readTag(const Element& tag, std::uint64_t level) {
    std::string name;
    std::string value;
    ForEachElement(source_, tag.begin, tag.end, [&](const Element& part) {
      if (part.id == kName) name = text(part, 64);
      if (part.id == kText) value = text(part, TagFields::kMostOfText);
      return true;
    });
    auto field = FieldNamed(name);
    if (level > kTrackLevel && field == Field::kTitle) field = Field::kAlbum;
    if (level > kTrackLevel && field == Field::kArtist) field = Field::kAlbumArtist;
    if (name == "PART_NUMBER") field = level > kTrackLevel ? Field::kDisc : Field::kTrack;
    if (field) fields_.offer(*field, value);
  }

  void readAttachments(const Element& attachments) {
    ForEachElement(source_, attachments.begin, attachments.end, [&](const Element& file) {
      std::string type;
      Element data;
      ForEachElement(source_, file.begin, file.end, [&](const Element& part) {
        if (part.id == kMediaType) type = text(part, 32);
        if (part.id == kData) data = part;
        return true;
      });
      const std::uint64_t size = data.end - data.begin;
      if (type.rfind("image/", 0) == 0 && fields_.wantsPicture(false, size))
        fields_.offerPicture(false, source_.copy(data.begin, size));
      return true;
    });
  }

  ByteSource& source_;
  TagFields& fields_;
};

}  // namespace

bool ReadMatroska(ByteSource& source, TagFields& fields) {
  bool found = false;
  ForEachElement(source, 0, source.size(), [&](const Element& element) {
    if (element.id != kSegment) return element.id == kHeader;
    found = true;
    Segment(source, fields).read(element);
    return false;
  });
  return found;
}

}  // namespace engine::tags
