#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wire {

/// What goes over a pipe between two processes, one behind the other: a kind, a length, and content.
struct Frame {
  std::uint32_t kind = 0;
  std::string_view content;
};

[[nodiscard]] std::string Framed(std::uint32_t kind, std::string_view content);
/// Takes the first whole one off the front of what has come, within which its content lies; nothing where it
/// is not there yet. Throws std::length_error for one whose content is longer than that.
std::optional<Frame> TakeFrame(std::string_view& come, std::size_t longest);

/// Waits for more to come; false once the other side has gone.
[[nodiscard]] bool ReadMore(int descriptor, std::string& come);
/// Writes all of it; false once the other side has gone.
[[nodiscard]] bool WriteWhole(int descriptor, std::string_view content);

}  // namespace wire
