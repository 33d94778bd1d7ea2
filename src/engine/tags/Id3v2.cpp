#include <algorithm>
#include <array>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine::tags {
namespace {

struct TextFrame {
  std::string_view id;       ///< of versions 3 and 4
  std::string_view shortId;  ///< of version 2
  Field field;
};
constexpr std::array<TextFrame, 9> kTextFrames{{
    {"TIT2", "TT2", Field::kTitle},
    {"TPE1", "TP1", Field::kArtist},
    {"TPE2", "TP2", Field::kAlbumArtist},
    {"TALB", "TAL", Field::kAlbum},
    {"TCON", "TCO", Field::kGenre},
    {"TDRC", "", Field::kYear},
    {"TYER", "TYE", Field::kYear},
    {"TRCK", "TRK", Field::kTrack},
    {"TPOS", "TPA", Field::kDisc},
}};

/// Zeros that were put in behind each 255 are taken out again.
std::string WithoutStuffing(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    result += bytes[i];
    if (bytes[i] == '\xFF' && i + 1 < bytes.size() && bytes[i + 1] == '\0') ++i;
  }
  return result;
}

struct Frame {
  std::string id;
  std::uint64_t at = 0;  ///< of its content, from the tag's first frame on
  std::uint64_t size = 0;
  bool packed = false;
  bool stuffed = false;
  bool locked = false;
};

class Tag {
 public:
  Tag(ByteSource& source, std::uint64_t offset, std::uint64_t size, unsigned version)
      : source_(source), offset_(offset), size_(size), version_(version) {}

  /// The whole tag was stuffed: it is taken into memory, as far as frames worth reading may be expected.
  void unstuff() {
    memory_ =
        WithoutStuffing(source_.copy(offset_, std::min<std::uint64_t>(size_, std::uint64_t{512} * 1024)));
    size_ = memory_.size();
    inMemory_ = true;
  }

  void read(TagFields& fields) {
    std::uint64_t at = 0;
    while (const auto frame = frameAt(at)) {
      at = frame->at + frame->size;
      if (frame->locked) continue;
      if (frame->id == "APIC" || frame->id == "PIC") {
        readPicture(*frame, fields);
      } else if (frame->id.front() == 'T') {
        readText(*frame, fields);
      }
    }
  }

  void skipExtendedHeader() {
    const std::string_view head = view(0, 4);
    const std::uint64_t length = version_ == 4 ? Sevens(head, 0) : Big(head, 0, 4) + 4;
    const std::uint64_t step = std::min(length, size_);
    offset_ += step;
    size_ -= step;
    if (inMemory_) memory_.erase(0, static_cast<std::size_t>(step));
  }

 private:
  std::string_view view(std::uint64_t at, std::uint64_t length) {
    if (at >= size_) return {};
    const auto wanted =
        static_cast<std::size_t>(std::min({length, size_ - at, std::uint64_t{ByteSource::kMost}}));
    return inMemory_ ? Part(memory_, static_cast<std::size_t>(at), wanted) : source_.at(offset_ + at, wanted);
  }

  static bool isId(std::string_view id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), [](char c) {
      return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    });
  }

  std::optional<Frame> frameAt(std::uint64_t at) {
    const std::size_t idSize = version_ == 2 ? 3 : 4;
    const std::size_t headSize = version_ == 2 ? 6 : 10;
    const std::string_view head = view(at, headSize);
    if (head.size() < headSize || !isId(head.substr(0, idSize))) return std::nullopt;
    Frame frame;
    frame.id = head.substr(0, idSize);
    frame.at = at + headSize;
    const std::uint64_t plain = Big(head, idSize, idSize);
    const std::uint64_t sevens = Sevens(head, idSize);
    const std::uint64_t flags = version_ == 2 ? 0 : Byte(head, 9);
    frame.size = version_ == 4 ? sevens : plain;
    // Some programs write version 4 with the sizes of version 3.
    if (version_ == 4 && plain != sevens && !endsWell(frame.at + sevens) && endsWell(frame.at + plain))
      frame.size = plain;
    if (frame.size > size_ - frame.at) return std::nullopt;
    readFlags(frame, flags);
    return frame;
  }

  bool endsWell(std::uint64_t at) {
    if (at >= size_) return at == size_;
    const std::string_view next = view(at, 4);
    return isId(next) || (!next.empty() && next.front() == '\0');
  }

  void readFlags(Frame& frame, std::uint64_t flags) const {
    std::uint64_t before = 0;
    if (version_ == 3) {
      frame.packed = (flags & 0x80U) != 0;
      frame.locked = (flags & 0x40U) != 0;
      before = (frame.packed ? 4U : 0U) + ((flags & 0x20U) != 0 ? 1U : 0U);
    } else if (version_ == 4) {
      frame.packed = (flags & 0x08U) != 0;
      frame.locked = (flags & 0x04U) != 0;
      frame.stuffed = (flags & 0x02U) != 0;
      before = ((flags & 0x40U) != 0 ? 1U : 0U) + ((flags & 0x01U) != 0 ? 4U : 0U);
    }
    before = std::min(before, frame.size);
    frame.at += before;
    frame.size -= before;
  }

  /// The frame's content as it was before it was packed, at most so much of it.
  [[nodiscard]] std::string unwrapped(const Frame& frame, std::string_view bytes, std::size_t most) const {
    std::string plain = frame.stuffed ? WithoutStuffing(bytes) : std::string(bytes);
    return frame.packed ? Unpacked(plain, most) : plain;
  }

  void readText(const Frame& frame, TagFields& fields) {
    const auto* known = std::find_if(kTextFrames.begin(), kTextFrames.end(), [&](const TextFrame& text) {
      return frame.id == text.id || frame.id == text.shortId;
    });
    const bool ownName = frame.id == "TXXX" || frame.id == "TXX";
    if (known == kTextFrames.end() && !ownName) return;
    std::string_view content =
        view(frame.at,
             std::min<std::uint64_t>(frame.size, frame.packed ? ByteSource::kMost : TagFields::kMostOfText));
    std::string kept;
    if (frame.packed || frame.stuffed) content = kept = unwrapped(frame, content, TagFields::kMostOfText);
    if (content.size() < 2) return;
    if (ownName) {
      readNamed(content, fields);
    } else {
      offer(known->field, static_cast<unsigned char>(content.front()), content.substr(1), fields);
    }
  }

  /// A text whose name stands before it.
  static void readNamed(std::string_view content, TagFields& fields) {
    const auto form = static_cast<unsigned char>(content.front());
    const std::string_view text = content.substr(1);
    const std::size_t end = endOfText(form, text);
    const std::string name = decoded(form, text.substr(0, end));
    const auto field = FieldNamed(name);
    if (field) offer(*field, form, Part(text, end + (form == 1 || form == 2 ? 2 : 1)), fields);
  }

  static std::size_t endOfText(unsigned form, std::string_view text) {
    if (form != 1 && form != 2) return std::min(text.find('\0'), text.size());
    for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
      if (text[at] == '\0' && text[at + 1] == '\0') return at;
    }
    return text.size();
  }

  static std::string decoded(unsigned form, std::string_view text) {
    if (form == 1 || form == 2) return FromUtf16(text, form == 2);
    return form == 0 ? FromLatin(text) : std::string(text);
  }

  static void offer(Field field, unsigned form, std::string_view text, TagFields& fields) {
    if (field == Field::kGenre) {
      fields.offer(field, GenreText(decoded(form, text.substr(0, endOfText(form, text)))));
    } else if (form == 0) {
      fields.offerLatin(field, text);
    } else if (form == 3) {
      fields.offer(field, text);
    } else {
      fields.offer(field, decoded(form, text));
    }
  }

  void readPicture(const Frame& frame, TagFields& fields) {
    if (!fields.wantsPicture(true, frame.size)) return;
    std::string whole = inMemory_ ? std::string(Part(memory_, static_cast<std::size_t>(frame.at),
                                                     static_cast<std::size_t>(frame.size)))
                                  : source_.copy(offset_ + frame.at, frame.size);
    if (frame.packed || frame.stuffed) whole = unwrapped(frame, whole, ByteSource::kLargestCopy);
    const std::string_view content = whole;
    const std::uint64_t form = Byte(content, 0);
    std::size_t at = 4;  // of the kind of picture: front or back
    if (frame.id == "APIC") at = std::min(content.find('\0', 1), content.size()) + 1;
    const bool front = Byte(content, at) == 3;
    const std::string_view rest = Part(content, at + 1);
    const std::size_t end = endOfText(static_cast<unsigned>(form), rest);
    fields.offerPicture(front, std::string(Part(rest, end + (form == 1 || form == 2 ? 2 : 1))));
  }

  ByteSource& source_;
  std::uint64_t offset_;
  std::uint64_t size_;
  unsigned version_;
  std::string memory_;
  bool inMemory_ = false;
};

}  // namespace

std::uint64_t ReadId3v2(ByteSource& source, std::uint64_t offset, TagFields& fields) {
  const std::string_view head = source.at(offset, 10);
  const std::uint64_t version = Byte(head, 3);
  if (head.size() < 10 || head.substr(0, 3) != "ID3" || version < 2 || version > 4) return offset;
  const std::uint64_t flags = Byte(head, 5);
  const std::uint64_t begin = offset + 10;
  const std::uint64_t size =
      std::min<std::uint64_t>(Sevens(head, 6), source.size() - std::min(begin, source.size()));
  Tag tag(source, begin, size, static_cast<unsigned>(version));
  if ((flags & 0x80U) != 0 && version < 4) tag.unstuff();
  if ((flags & 0x40U) != 0 && version > 2) tag.skipExtendedHeader();
  tag.read(fields);
  const bool footer = version == 4 && (flags & 0x10U) != 0;
  return begin + size + (footer ? 10 : 0);
}

}  // namespace engine::tags
