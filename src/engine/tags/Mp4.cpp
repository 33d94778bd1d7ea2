#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"
#include "engine/tags/Readers.hpp"

namespace engine::tags {
namespace {

constexpr int kMostBoxes = 4096;

struct Box {
  std::string type;
  std::uint64_t begin = 0;  ///< of its content
  std::uint64_t end = 0;
};

/// Calls `work` with each box of a range. A box that ends beyond the range ends with it.
template <typename Work>
void ForEachBox(ByteSource& source, std::uint64_t at, std::uint64_t end, const Work& work) {
  for (int i = 0; i < kMostBoxes && at + 8 <= end; ++i) {
    const std::string_view head = source.at(at, 16);
    if (head.size() < 8) return;
    std::uint64_t size = Big(head, 0, 4);
    std::uint64_t headSize = 8;
    if (size == 1) {
      size = Big(head, 8, 8);
      headSize = 16;
    }
    if (size == 0) size = end - at;
    if (size < headSize) return;
    const std::uint64_t next = size > end - at ? end : at + size;
    if (at + headSize > next) return;
    const Box box{std::string(head.substr(4, 4)), at + headSize, next};
    work(box);
    at = next;
  }
}

constexpr std::array<std::pair<std::string_view, Field>, 6> kTexts{{
    {"\xA9nam", Field::kTitle},
    {"\xA9"
     "ART",
     Field::kArtist},
    {"aART", Field::kAlbumArtist},
    {"\xA9"
     "alb",
     Field::kAlbum},
    {"\xA9gen", Field::kGenre},
    {"\xA9"
     "day",
     Field::kYear},
}};

class Movie {
 public:
  Movie(ByteSource& source, TagFields& fields) : source_(source), fields_(fields) {}

  void read(const Box& movie) {
    ForEachBox(source_, movie.begin, movie.end, [&](const Box& box) {
      if (box.type == "mvhd") readLength(box);
      if (box.type == "udta") readUser(box);
      if (box.type == "meta") readMeta(box);
    });
  }

 private:
  void readLength(const Box& box) {
    const std::string_view head = source_.at(box.begin, 32);
    const bool wide = Byte(head, 0) == 1;
    fields_.length(wide ? Big(head, 24, 8) : Big(head, 16, 4), wide ? Big(head, 20, 4) : Big(head, 12, 4));
  }

  void readUser(const Box& user) {
    ForEachBox(source_, user.begin, user.end, [&](const Box& box) {
      if (box.type == "meta") readMeta(box);
      // Older films have the text itself, behind its length and its language.
      const std::string_view head = source_.at(box.begin, 4);
      const std::uint64_t length = Big(head, 0, 2);
      if (box.type.front() == '\xA9' && length > 0 && length + 4 <= box.end - box.begin)
        readText(box.type, box.begin + 4, length);
    });
  }

  void readMeta(const Box& meta) {
    const bool plain = source_.at(meta.begin + 4, 4) == "hdlr";  // films leave out version and flags
    ForEachBox(source_, meta.begin + (plain ? 0 : 4), meta.end, [&](const Box& box) {
      if (box.type == "ilst")
        ForEachBox(source_, box.begin, box.end, [&](const Box& item) { readItem(item); });
    });
  }

  void readItem(const Box& item) {
    std::string name;
    ForEachBox(source_, item.begin, item.end, [&](const Box& box) {
      const std::uint64_t size = box.end - box.begin;
      if (box.type == "name" && size > 4)
        name = source_.at(box.begin + 4, static_cast<std::size_t>(std::min<std::uint64_t>(size - 4, 64)));
      if (box.type != "data" || size <= 8) return;
      const std::uint64_t begin = box.begin + 8;
      const std::uint64_t length = size - 8;
      if (item.type == "covr") {
        if (fields_.wantsPicture(false, length)) fields_.offerPicture(false, source_.copy(begin, length));
      } else if (item.type == "trkn" || item.type == "disk") {
        fields_.offer(item.type == "trkn" ? Field::kTrack : Field::kDisc,
                      std::to_string(Big(source_.at(begin, 4), 2, 2)));
      } else if (item.type == "gnre") {
        fields_.offer(Field::kGenre, Genre(Big(source_.at(begin, 2), 0, 2) - 1));
      } else if (item.type == "----") {
        if (FieldNamed(name)) fields_.offer(name, source_.at(begin, Bounded(length)));
      } else {
        readText(item.type, begin, length);
      }
    });
  }

  void readText(std::string_view type, std::uint64_t begin, std::uint64_t length) {
    const auto* found =
        std::find_if(kTexts.begin(), kTexts.end(), [&](const auto& text) { return text.first == type; });
    if (found != kTexts.end()) fields_.offer(found->second, source_.at(begin, Bounded(length)));
  }

  static std::size_t Bounded(std::uint64_t length) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(length, TagFields::kMostOfText));
  }

  ByteSource& source_;
  TagFields& fields_;
};

}  // namespace

bool ReadMp4(ByteSource& source, TagFields& fields) {
  bool found = false;
  ForEachBox(source, 0, source.size(), [&](const Box& box) {
    if (box.type != "moov" || found) return;
    found = true;
    Movie(source, fields).read(box);
  });
  return found;
}

}  // namespace engine::tags
