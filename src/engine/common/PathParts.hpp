#pragma once
#include <cstdint>
#include <string_view>

namespace engine {

struct PathParts {
  std::string_view folder;  ///< with the slash at its end
  std::string_view file;
};

inline PathParts Cut(std::string_view path) {
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos) return {{}, path};
  return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

/// For tables that find something by folder and file, each known by its number.
inline std::size_t HashOfPair(std::uint32_t folder, std::uint32_t file) {
  const std::uint64_t mixed = ((static_cast<std::uint64_t>(folder) << 32U) | file) * 0x9E3779B97F4A7C15ULL;
  return mixed >> 20U;
}

}  // namespace engine
