#include "wire/Frames.hpp"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

#include "wire/Bytes.hpp"

namespace wire {
namespace {

constexpr std::size_t kHead = 8;

}  // namespace

std::string Framed(std::uint32_t kind, std::string_view content) {
  std::string out;
  out.reserve(content.size() + kHead);
  PutNumber(out, kind);
  PutText(out, content);
  return out;
}

std::optional<Frame> TakeFrame(std::string_view& come, std::size_t longest) {
  if (come.size() < kHead) return std::nullopt;
  Bytes head(come.substr(0, kHead));
  const std::uint32_t kind = head.number();
  const std::size_t size = head.number();
  if (size > longest) throw std::length_error("A message is longer than any");
  if (come.size() - kHead < size) return std::nullopt;
  const Frame frame{kind, come.substr(kHead, size)};
  come.remove_prefix(kHead + size);
  return frame;
}

bool ReadMore(int descriptor, std::string& come) {
  std::array<char, 65536> part;  // NOLINT(cppcoreguidelines-pro-type-member-init): read into
  while (true) {
    const ssize_t got = ::read(descriptor, part.data(), part.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    come.append(part.data(), static_cast<std::size_t>(got));
    return true;
  }
}

bool WriteWhole(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(descriptor, content.data(), content.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) content.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace wire
