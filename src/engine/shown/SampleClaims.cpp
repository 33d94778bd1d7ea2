#include "engine/shown/SampleClaims.hpp"

#include <algorithm>
#include <array>
#include <bitset>
#include <string_view>
#include <utility>

#include "engine/shown/UnreadTags.hpp"
#include "engine/tags/Bytes.hpp"

namespace engine {
namespace {

constexpr std::size_t kMostEdits = 32;
constexpr std::size_t kHead = 28;  // from a box's size to the last number that may be changed
constexpr std::size_t kNear = 40;  // how far before a name another may stand whose numbers reach beyond it
constexpr std::size_t kBefore = kHead + kNear + 4;
constexpr std::size_t kBehind = 24 + kMostEdits * 20;
constexpr std::uint64_t kMostAtOnce = std::uint64_t{1} << 19U;
constexpr std::size_t kMostVerdicts = 10'000;
constexpr std::size_t kMostRanges = 200'000;
constexpr std::uint64_t kPointSize = 64;  // of sixteen channels of four bytes
constexpr std::uint64_t kMostPoints = 500'000;
constexpr std::uint64_t kPiece = 160;          // the fewest samples that become one entry of the decoder's
constexpr std::uint64_t kReference = 131'072;  // what the decoder may keep of the name of another file
/// No box is called so, nor is any name made of a part of it and of what stands beside it.
constexpr std::string_view kUnknown = "0000";
/// The number that is told in place of a larger one of points. The end of a number may be a part of a time
/// that stands for silence, in which all is set, so what ends in such bytes still does.
constexpr std::uint32_t Fewer(std::uint64_t count) { return (count & 0xFFU) == 0xFF ? 0xFFFF : 10'000; }
constexpr std::uint32_t Name(const char (&letters)[5]) {
  std::uint32_t name = 0;
  for (int i = 0; i < 4; ++i) name = name << 8U | static_cast<unsigned char>(letters[i]);
  return name;
}

constexpr std::array kNames{Name("stsz"), Name("stz2"), Name("trun"), Name("elst"), Name("stsc"),
                            Name("stco"), Name("co64"), Name("stss"), Name("stps"), Name("stts"),
                            Name("ctts"), Name("keys"), Name("sbgp"), Name("sgpd"), Name("dref"),
                            Name("trak"), Name("moof"), Name("sidx"), Name("tfra"), Name("mfra"),
                            Name("cmov"), Name("senc"), Name("saiz"), Name("saio"), Name("pssh")};

/// Whether a name begins so, by each byte there is.
constexpr std::array<bool, 256> kBegins = [] {
  std::array<bool, 256> begins{};
  for (const std::uint32_t name : kNames) begins.at(name >> 24U) = true;
  return begins;
}();

/// Whether the name of a box that is judged stands there.
bool IsNameAt(std::string_view bytes, std::size_t at) {
  if (at + 4 > bytes.size() || !kBegins[static_cast<unsigned char>(bytes[at])]) return false;
  const auto name = static_cast<std::uint32_t>(tags::Big(bytes, at, 4));
  return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

}  // namespace

/// A box, seen from the place of its name.
struct SampleClaims::Box {
  std::string_view bytes;
  std::size_t at;       ///< of its name, in those bytes
  std::uint64_t place;  ///< of its name, in the file

  [[nodiscard]] std::uint32_t name() const { return static_cast<std::uint32_t>(tags::Big(bytes, at, 4)); }
  [[nodiscard]] bool wide() const { return at >= 4 && tags::Big(bytes, at - 4, 4) == 1; }
  /// How far its content is from its name.
  [[nodiscard]] std::size_t head() const { return wide() ? 12 : 4; }
  /// A number in its content.
  [[nodiscard]] std::uint64_t number(std::size_t index, std::size_t length = 4) const {
    return tags::Big(bytes, at + head() + index, length);
  }
  /// How long its content says it is; 0 for as long as what it lies in.
  [[nodiscard]] std::uint64_t length() const {
    const std::uint64_t size = wide() ? tags::Big(bytes, at + 4, 8) : tags::Big(bytes, at - 4, 4);
    return size - std::min<std::uint64_t>(size, head() + 4);
  }
};

SampleClaims::SampleClaims(UnreadTags& file, std::uint64_t size)
    : file_(file), walk_(BoxWalk::Over(file, size)), budget_(size) {}

bool SampleClaims::isSound(std::uint64_t begin, std::uint64_t end) const {
  if (!walk_.plain) return false;
  auto after = std::upper_bound(walk_.sound.begin(), walk_.sound.end(), begin,
                                [](std::uint64_t at, const auto& range) { return at < range.first; });
  return after != walk_.sound.begin() && end <= (--after)->second;
}

bool SampleClaims::fill(std::uint64_t offset, std::size_t length) {
  buffer_.resize(length);
  std::size_t filled = 0;
  while (filled < length) {
    const std::int64_t count = file_.read(buffer_.data() + filled, length - filled, offset + filled);
    if (count < 0) return false;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  buffer_.resize(filled);
  return true;
}

SampleClaims::Verdict SampleClaims::judgeSizes(const Box& box) {
  const bool compact = box.name() == Name("stz2");
  const std::uint64_t each = compact ? 0 : box.number(4);
  const std::uint64_t count = box.number(8);
  if (each == 0) {
    // Four bits each, or four bytes.
    const bool is = budget_.list(compact ? count / 2 : count * 4) && budget_.samples(count);
    return is ? Verdict::kAsItIs : Verdict::kUnread;
  }
  if (each > kPointSize || count <= kMostPoints)
    return budget_.samples(count) ? Verdict::kAsItIs : Verdict::kUnread;
  // Packed sound of a steady rate: its samples lie in the file.
  if (budget_.smallSamples(count, each)) return Verdict::kAsItIs;
  // Sound that isn't packed has a number for each point of it, of which the decoder makes nothing. It is told
  // smaller, where that changes no number of another box, nor what may be a time that stands for silence.
  if ((count & 0xFFFFFFU) == 0xFFFFFF || count > INT32_MAX) return Verdict::kUnread;
  const std::size_t begin = box.at + box.head() + 8;
  for (std::size_t at = box.at - std::min(box.at, kNear); at < begin + 8; ++at) {
    if (at == box.at || !IsNameAt(box.bytes, at)) continue;
    const Box other{box.bytes, at, 0};
    const std::size_t reach = other.name() == Name("sidx") ? 32 : 16;
    if (at > box.at || at + other.head() + reach > begin) return Verdict::kUnread;
  }
  return budget_.samples(Fewer(count)) ? Verdict::kFewer : Verdict::kUnread;
}

bool SampleClaims::believesRun(const Box& box) {
  const std::uint64_t count = box.number(4);
  const std::uint64_t each = 4 * std::bitset<4>(box.number(2, 1)).count();
  return budget_.list(count * each) && budget_.samples(count);
}

bool SampleClaims::believesEdits(const Box& box) {
  const bool wide = box.number(0, 1) == 1;
  const std::size_t each = wide ? 20 : 12;
  const std::uint64_t length = box.length();
  if (length < 8 || length - 8 > kMostEdits * each) return false;
  std::uint64_t edits = std::max<std::uint64_t>((length - 8) / each, 1);
  // What stands for silence at the beginning repeats nothing.
  const std::size_t time = wide ? 8 : 4;
  const std::uint64_t none = wide ? UINT64_MAX : UINT32_MAX;
  for (std::size_t at = 8 + time; edits > 1 && box.number(at, time) == none; at += each) --edits;
  return budget_.edits(edits);
}

/// The list says for some of the chunks how many samples each of them and of those behind it holds.
bool SampleClaims::believesSpread(const Box& box) {
  const std::uint64_t count = box.number(4);
  if (!budget_.list(count * 12)) return false;
  std::uint64_t told = 0;
  std::uint64_t before = 0;
  std::uint64_t pieces = 0;
  std::uint64_t unsorted = 0;
  std::string part(std::size_t{12} * 4096, '\0');
  std::uint64_t at = box.place + box.head() + 8;
  const std::uint64_t end = at + count * 12;
  while (at < end) {
    const std::int64_t got = file_.read(part.data(), std::min<std::uint64_t>(part.size(), end - at), at);
    if (got < 12) break;
    const std::size_t whole = static_cast<std::size_t>(got) / 12 * 12;
    for (std::size_t i = 0; i < whole; i += 12) {
      const std::uint64_t first = tags::Big(part, i, 4);
      if (first > before) {
        told += (first - before) * pieces;
      } else {
        unsorted += pieces;
      }
      before = std::max(before, first);
      pieces = std::min<std::uint64_t>(tags::Big(part, i + 4, 4), INT32_MAX) / kPiece;
    }
    at += whole;
  }
  return budget_.spread(told, pieces + unsorted, unsorted == 0 ? before : 1);
}

SampleClaims::Verdict SampleClaims::judge(const Box& box) {
  const auto believed = [](bool is) { return is ? Verdict::kAsItIs : Verdict::kUnread; };
  const auto listed = [&](std::uint64_t bytes) { return believed(budget_.list(bytes)); };
  const bool fragments = !walk_.plain;
  switch (box.name()) {
    case Name("stsz"):
    case Name("stz2"): return judgeSizes(box);
    case Name("trun"): return believed(believesRun(box));
    case Name("elst"): return believed(believesEdits(box));
    case Name("stsc"): return believed(believesSpread(box));
    case Name("stco"): return believed(budget_.list(box.number(4) * 4) && budget_.chunks(box.number(4)));
    case Name("co64"): return believed(budget_.list(box.number(4) * 8) && budget_.chunks(box.number(4)));
    case Name("stss"):
    case Name("stps"): return listed(box.number(4) * 4);
    case Name("stts"):
    case Name("ctts"):
    case Name("keys"): return listed(box.number(4) * 8);
    case Name("sbgp"):
      // By this kind of groups the decoder would write out each sample of its own accord.
      if (box.number(4) == Name("sync")) return Verdict::kUnread;
      return listed(box.number(box.number(0, 1) == 1 ? 12 : 8) * 8);
    case Name("sgpd"): return believed(box.number(4) != Name("sync"));
    case Name("dref"): return believed(box.length() - 1 < 100 || budget_.list(box.number(4) * kReference));
    case Name("trak"): return believed(budget_.track());
    case Name("moof"): return believed(fragments && budget_.fragments(1));
    case Name("sidx"):
      return believed(fragments && budget_.fragments(box.number(box.number(0, 1) == 0 ? 22 : 30, 2)));
    case Name("tfra"):
      return believed(fragments && budget_.list(box.number(12) * 11) && budget_.fragments(box.number(12)));
    case Name("mfra"): return believed(fragments);
    // A list of boxes that is packed; and what belongs to sound that is locked, for which there is no key.
    case Name("cmov"):
    case Name("senc"):
    case Name("saiz"):
    case Name("saio"):
    case Name("pssh"): return Verdict::kUnread;
    default: return Verdict::kAsItIs;
  }
}

SampleClaims::Verdict SampleClaims::verdictOn(const Box& box) {
  if (seen_.has(box.place)) {
    const auto found = verdicts_.find(box.place);
    return found != verdicts_.end() ? found->second : Verdict::kAsItIs;
  }
  // No honest file has so much against it, nor is read in so many places.
  if (verdicts_.size() >= kMostVerdicts || seen_.count() >= kMostRanges) return Verdict::kUnread;
  const Verdict verdict = judge(box);
  if (verdict != Verdict::kAsItIs) verdicts_.emplace(box.place, verdict);
  return verdict;
}

void SampleClaims::look(std::uint64_t start, std::size_t from, std::size_t to) {
  // All are judged by what the file says, before any of it is changed.
  std::string told;
  for (std::size_t at = from; at < to; ++at) {
    if (!IsNameAt(buffer_, at) || isSound(start + at, start + at + 1)) continue;
    const Box box{buffer_, at, start + at};
    const Verdict verdict = verdictOn(box);
    if (verdict == Verdict::kAsItIs) continue;
    if (told.empty()) told = buffer_;
    if (verdict == Verdict::kUnread) {
      told.replace(at, kUnknown.size(), kUnknown);
      continue;
    }
    std::size_t digit = at + box.head() + 12;
    for (std::uint32_t number = Fewer(box.number(8)); digit-- > at + box.head() + 8; number /= 256) {
      if (digit < told.size()) told[digit] = static_cast<char>(number % 256);
    }
  }
  if (seen_.count() < kMostRanges) seen_.add(start + from, start + to);
  if (!told.empty()) buffer_ = std::move(told);
}

std::int64_t SampleClaims::read(char* bytes, std::uint64_t most, std::uint64_t offset) {
  if (!walk_.boxes) return file_.read(bytes, most, offset);
  const auto before = static_cast<std::size_t>(std::min<std::uint64_t>(offset, kBefore));
  const auto wanted = static_cast<std::size_t>(std::min(most, kMostAtOnce));
  if (isSound(offset - before, offset + wanted)) return file_.read(bytes, wanted, offset);
  if (!fill(offset - before, before + wanted + kBehind)) return -1;
  if (buffer_.size() <= before) return 0;
  const std::size_t from = std::max<std::size_t>(before - std::min(before, kHead), 4);
  look(offset - before, from, std::min(buffer_.size(), before + wanted));
  return static_cast<std::int64_t>(buffer_.copy(bytes, wanted, before));
}

}  // namespace engine
