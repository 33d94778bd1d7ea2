#include "files/LiesIn.hpp"

#include <algorithm>
#include <system_error>

namespace files {

bool LiesIn(const std::filesystem::path& real, const std::filesystem::path& folder) {
  std::error_code failed;
  const std::filesystem::path home = std::filesystem::canonical(folder, failed);
  if (failed) return false;
  return std::mismatch(home.begin(), home.end(), real.begin(), real.end()).first == home.end();
}

}  // namespace files
