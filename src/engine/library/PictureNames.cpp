#include "engine/library/PictureNames.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

#include "base/Text.hpp"

namespace engine {
namespace {

constexpr std::array<std::string_view, 4> kEndings{".jpg", ".jpeg", ".png", ".webp"};
constexpr std::int64_t kTick = 2'000'000'000;  ///< nanoseconds: the coarsest clock that a file system has

}  // namespace

bool IsPictureName(std::string_view file) {
  const std::size_t dot = file.rfind('.');
  if (dot == std::string_view::npos) return false;
  const std::string ending = base::LowerCase(file.substr(dot));
  return std::find(kEndings.begin(), kEndings.end(), ending) != kEndings.end();
}

bool IsSettled(std::int64_t modified) {
  const std::int64_t now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                               std::chrono::system_clock::now().time_since_epoch())
                               .count();
  return modified < now - kTick;
}

}  // namespace engine
