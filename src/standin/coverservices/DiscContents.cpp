#include "standin/coverservices/DiscContents.hpp"

#include <charconv>
#include <cstdint>
#include <vector>

namespace standin {
namespace {

constexpr std::size_t kMostTracks = 99;
constexpr std::uint32_t kLongest = 1'000'000;  ///< frames: more than three hours
constexpr std::size_t kLongestText = 2000;

}  // namespace

std::optional<std::string> TocOf(const std::string& contents) {
  if (contents.size() > kLongestText) return std::nullopt;
  std::vector<std::uint32_t> numbers;
  const char* at = contents.data();
  const char* const end = at + contents.size();
  while (at < end) {
    std::uint32_t number = 0;
    const auto [after, problem] = std::from_chars(at, end, number, 16);
    if (problem != std::errc() || number > kLongest) return std::nullopt;
    numbers.push_back(number);
    if (after < end && *after != '+' && *after != ' ') return std::nullopt;
    at = after + 1;
  }
  if (numbers.empty()) return std::nullopt;
  const std::size_t tracks = numbers.front();
  if (tracks < 1 || tracks > kMostTracks || numbers.size() != tracks + 2) return std::nullopt;
  std::string toc = "1+" + std::to_string(tracks) + "+" + std::to_string(numbers.back());
  for (std::size_t i = 1; i <= tracks; ++i) {
    if (numbers[i] >= numbers[i + 1]) return std::nullopt;  // they lie behind each other
    toc += "+" + std::to_string(numbers[i]);
  }
  return toc;
}

}  // namespace standin
