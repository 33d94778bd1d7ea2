#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Readers.hpp"
#include "engine/tags/XiphComments.hpp"

namespace engine::tags {
namespace {

constexpr int kMostStreams = 16;
constexpr int kMostPages = 4096;
constexpr std::size_t kPageHead = 27;
constexpr std::uint64_t kNoPlace = ~std::uint64_t{0};

struct Page {
  std::uint64_t at = 0;
  bool first = false;  ///< of its stream
  std::uint64_t serial = 0;
  std::string lacing;
  std::uint64_t body = 0;  ///< where its bytes begin
  std::uint64_t next = 0;
};

std::optional<Page> PageAt(ByteSource& source, std::uint64_t at) {
  const std::string_view head = source.at(at, kPageHead + 255);
  if (head.size() < kPageHead || head.substr(0, 4) != "OggS") return std::nullopt;
  Page page;
  page.at = at;
  page.first = (Byte(head, 5) & 2U) != 0;
  page.serial = Little(head, 14, 4);
  const auto segments = static_cast<std::size_t>(Byte(head, 26));
  page.lacing = head.substr(kPageHead, segments);
  page.body = at + kPageHead + segments;
  page.next = page.body;
  for (const char size : page.lacing) page.next += static_cast<unsigned char>(size);
  return page;
}

/// The second packet of a stream, which may run over many pages.
class SecondPacket : public ByteStream {
 public:
  SecondPacket(ByteSource& source, Page first) : source_(source), page_(std::move(first)), at_(page_.body) {
    while (segment_ < page_.lacing.size() && !passSegment()) {
    }
  }

  std::string_view take(std::size_t length) override {
    if (!findRun()) return {};
    if (length <= run_) return step(length);
    kept_.clear();
    while (kept_.size() < length && findRun()) {
      const std::string_view piece =
          step(static_cast<std::size_t>(std::min<std::uint64_t>(length - kept_.size(), run_)));
      if (piece.empty()) break;
      kept_ += piece;
    }
    return kept_;
  }

  void skip(std::uint64_t length) override {
    while (length > 0 && findRun()) {
      const std::uint64_t passed = std::min(length, run_);
      at_ += passed;
      run_ -= passed;
      length -= passed;
    }
  }

 private:
  /// Answers whether the packet has ended with it.
  bool passSegment() {
    const auto size = static_cast<unsigned char>(page_.lacing[segment_++]);
    at_ += size;
    return size < 255;
  }

  std::string_view step(std::size_t length) {
    const std::string_view bytes = source_.at(at_, length);
    at_ += bytes.size();
    run_ -= bytes.size();
    if (bytes.size() < length) ended_ = true;
    return bytes;
  }

  /// The packet's bytes that lie one behind the other from here on; false at its end.
  bool findRun() {
    while (run_ == 0 && !ended_) {
      if (lastOfPacket_ || (segment_ >= page_.lacing.size() && !findPage())) {
        ended_ = true;
        return false;
      }
      while (segment_ < page_.lacing.size() && !lastOfPacket_) {
        const auto size = static_cast<unsigned char>(page_.lacing[segment_++]);
        run_ += size;
        lastOfPacket_ = size < 255;
      }
    }
    return run_ > 0;
  }

  bool findPage() {
    const std::uint64_t serial = page_.serial;
    for (int i = 0; i < kMostPages; ++i) {
      auto page = PageAt(source_, page_.next);
      if (!page) return false;
      page_ = std::move(*page);
      if (page_.serial != serial || page_.lacing.empty()) continue;
      at_ = page_.body;
      segment_ = 0;
      return true;
    }
    return false;
  }

  ByteSource& source_;
  Page page_;
  std::uint64_t at_;
  std::size_t segment_ = 0;
  std::uint64_t run_ = 0;
  bool lastOfPacket_ = false;
  bool ended_ = false;
  std::string kept_;
};

struct Codec {
  std::string_view mark;       ///< what its first packet begins with
  std::size_t rateAt;          ///< where that has the samples a second, four bytes
  std::uint64_t rate;          ///< or this
  std::size_t beforeComments;  ///< bytes in front of them in the second packet
  bool sound;
};
constexpr std::array<Codec, 5> kCodecs{{
    {{"\x01vorbis", 7}, 12, 0, 7, true},
    {{"OpusHead", 8}, 0, 48000, 8, true},
    {{"\x7F"
      "FLAC",
      5},
     27,
     0,
     4,
     true},
    {{"Speex   ", 8}, 36, 0, 0, true},
    {{"\x80theora", 7}, 0, 0, 7, false},
}};

/// The number of samples up to the end: what the stream's last page says.
std::uint64_t LastPlace(ByteSource& source, std::uint64_t serial) {
  for (const std::uint64_t reach : {std::uint64_t{8} * 1024, std::uint64_t{ByteSource::kMost}}) {
    const std::uint64_t tail = std::min(source.size(), reach);
    const std::string_view bytes = source.at(source.size() - tail, static_cast<std::size_t>(tail));
    for (std::size_t at = bytes.rfind("OggS"); at != std::string_view::npos;
         at = at > 0 ? bytes.rfind("OggS", at - 1) : at) {
      const std::uint64_t place = Little(bytes, at + 6, 8);
      if (at + kPageHead <= bytes.size() && Little(bytes, at + 14, 4) == serial && place != kNoPlace)
        return place;
      if (at == 0) break;
    }
  }
  return 0;
}

}  // namespace

bool ReadOgg(ByteSource& source, TagFields& fields) {
  const Codec* codec = nullptr;
  Page stream;
  std::uint64_t rate = 0;
  std::uint64_t before = 0;  // samples that are not heard
  std::uint64_t at = 0;
  for (int i = 0; i < kMostStreams && (codec == nullptr || !codec->sound); ++i) {
    auto page = PageAt(source, at);
    if (!page || !page->first) break;
    at = page->next;
    const std::string_view packet = source.at(page->body, 64);
    const auto* found = std::find_if(kCodecs.begin(), kCodecs.end(), [&](const Codec& known) {
      return packet.substr(0, known.mark.size()) == known.mark;
    });
    if (found == kCodecs.end()) continue;
    codec = found;
    stream = std::move(*page);
    rate = codec->rate;
    if (codec->rateAt != 0)
      rate =
          codec->mark.back() == 'C' ? Big(packet, codec->rateAt, 3) >> 4U : Little(packet, codec->rateAt, 4);
    before = codec->rate != 0 ? Little(packet, 10, 2) : 0;
  }
  if (codec == nullptr || (codec->sound && rate == 0)) return false;
  const std::uint64_t serial = stream.serial;
  SecondPacket comments(source, std::move(stream));
  comments.skip(codec->beforeComments);
  ReadXiphComments(comments, fields);
  if (codec->sound) {
    const std::uint64_t place = LastPlace(source, serial);
    fields.length(place > before ? place - before : 0, rate);
  }
  return true;
}

}  // namespace engine::tags
