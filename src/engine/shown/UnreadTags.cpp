#include "engine/shown/UnreadTags.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "engine/tags/Bytes.hpp"

namespace engine {
namespace {

constexpr std::size_t kHeader = 10;
constexpr std::size_t kNameBefore = 24;  // how far before a tag its name stands at most
constexpr std::size_t kBefore = kNameBefore + kHeader;
constexpr std::uint64_t kMostAtOnce = std::uint64_t{1} << 20U;
constexpr int kMostAtFront = 1000;
constexpr char kUnreadVersion = '\x7F';
constexpr std::array<std::string_view, 2> kMagics{"ID3", "ea3"};  // the second only stands at the front

std::uint64_t SizeOf(std::string_view header) { return tags::Sevens(header, 6); }

bool HasFooter(std::string_view header) { return (tags::Byte(header, 5) & 0x10U) != 0; }

/// Whether the libraries below the decoder would take it for a tag.
bool IsTag(std::string_view header) {
  return header.size() == kHeader && (header.starts_with(kMagics[0]) || header.starts_with(kMagics[1])) &&
         tags::Byte(header, 3) != 0xFF && tags::Byte(header, 4) != 0xFF &&
         std::all_of(header.begin() + 6, header.end(), [](char c) { return (c & '\x80') == 0; });
}

/// Whether a version of it is read.
bool IsOfAKnownVersion(std::string_view header) {
  return tags::Byte(header, 3) >= 2 && tags::Byte(header, 3) <= 4;
}

/// Whether it begins as a file does in which tags stand in places of their own only.
bool HasForm(std::string_view head) {
  constexpr std::array<std::string_view, 18> kBegins{"fLaC", "OggS", "\x1A\x45\xDF\xA3",
                                                     "RIFF", "RF64", "FORM",
                                                     "DSD ", "FRM8", "MAC ",
                                                     "wvpk", "TTA1", "MPCK",
                                                     "MP+",  "caff", ".snd",
                                                     "FLV",  "OFR ", "\x30\x26\xB2\x75"};
  constexpr std::array<std::string_view, 6> kAtoms{"ftyp", "moov", "mdat", "free", "wide", "skip"};
  const auto begins = [&](std::string_view part) { return head.starts_with(part); };
  const auto isAtom = [&](std::string_view part) {
    return head.substr(std::min<std::size_t>(4, head.size())).starts_with(part);
  };
  if (std::any_of(kBegins.begin(), kBegins.end(), begins)) return true;
  if (std::any_of(kAtoms.begin(), kAtoms.end(), isAtom)) return true;
  const bool sync = tags::Byte(head, 0) == 0xFF && (tags::Byte(head, 1) & 0xE0U) == 0xE0;
  return sync && (tags::Byte(head, 1) & 0x06U) != 0;  // sound of MPEG's layers; without a layer it is AAC
}

/// The number of a DSF file that says where its tag begins.
std::uint64_t TagOfDsf(std::string_view head) { return tags::Little(head, 20, 8); }

/// Whether something called "ID3" has just begun there, in letters of one byte or of two.
bool IsNamed(std::string_view before) {
  std::string letters;
  for (const char c : before) {
    if (c != '\0') letters += c == 'i' || c == 'd' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return letters.find("ID3") != std::string::npos;
}

}  // namespace

UnreadTags::UnreadTags(int descriptor) : descriptor_(descriptor) { findFront(); }

void UnreadTags::findFront() {
  for (int i = 0; i < kMostAtFront; ++i) {
    if (!fill(frontEnd_, 32)) return;
    const std::string_view header = std::string_view(buffer_).substr(0, kHeader);
    if (!IsTag(header)) {
      formless_ = !HasForm(buffer_);
      if (buffer_.starts_with("DSD ")) pointed_ = frontEnd_ + TagOfDsf(buffer_);
      return;
    }
    frontEnd_ += kHeader + SizeOf(header) + (HasFooter(header) ? kHeader : 0);
  }
}

bool UnreadTags::fill(std::uint64_t offset, std::size_t length) {
  buffer_.resize(length);
  std::size_t filled = 0;
  while (filled < length) {
    const ssize_t count =
        ::pread(descriptor_, buffer_.data() + filled, length - filled, static_cast<off_t>(offset + filled));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  buffer_.resize(filled);
  return true;
}

bool UnreadTags::isRead(std::uint64_t offset, std::size_t at) const {
  if (offset < frontEnd_ || formless_ || (pointed_ != 0 && offset == pointed_)) return true;
  const std::size_t before = std::min(at, kNameBefore);
  return IsNamed(std::string_view(buffer_).substr(at - before, before));
}

void UnreadTags::veil(std::uint64_t start) {
  for (const std::string_view magic : kMagics) {
    for (std::size_t at = buffer_.find(magic); at != std::string::npos; at = buffer_.find(magic, at + 1)) {
      const std::string_view header = std::string_view(buffer_).substr(at, kHeader);
      if (!IsTag(header) || !IsOfAKnownVersion(header) || !isRead(start + at, at)) continue;
      // A footer belongs to the fourth version only, so it is told as a part of what is passed over.
      if (HasFooter(header)) {
        std::uint64_t size = SizeOf(header) + kHeader;
        for (std::size_t i = kHeader; i-- > 6; size /= 128) buffer_[at + i] = static_cast<char>(size % 128);
        buffer_[at + 5] = static_cast<char>(buffer_[at + 5] & ~0x10);
      }
      buffer_[at + 3] = kUnreadVersion;
    }
  }
}

std::int64_t UnreadTags::read(char* bytes, std::uint64_t most, std::uint64_t offset) {
  const auto before = static_cast<std::size_t>(std::min<std::uint64_t>(offset, kBefore));
  const auto wanted = static_cast<std::size_t>(std::min(most, kMostAtOnce));
  // A tag may begin before what is asked for, and end behind it.
  if (!fill(offset - before, before + wanted + kHeader)) return -1;
  if (buffer_.size() <= before) return 0;
  veil(offset - before);
  return static_cast<std::int64_t>(buffer_.copy(bytes, wanted, before));
}

}  // namespace engine
