#include "standin/pages/WebFiles.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/Text.hpp"
#include "standin/pages/WebFileList.hpp"

namespace standin {

const WebFile* FindWebFile(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kWebFiles), std::end(kWebFiles),
                                         [&](const WebFile& file) { return file.name == name; });
  return found == std::end(kWebFiles) ? nullptr : found;
}

std::string_view AssetsAddress() { return kAssetsAddress; }

std::string_view MediaTypeOf(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 17> kTypes{{
      {"html", "text/html; charset=utf-8"},
      {"htm", "text/html; charset=utf-8"},
      {"css", "text/css; charset=utf-8"},
      {"js", "text/javascript; charset=utf-8"},
      {"mjs", "text/javascript; charset=utf-8"},
      {"json", "application/json"},
      {"txt", "text/plain; charset=utf-8"},
      {"svg", "image/svg+xml"},
      {"gif", "image/gif"},
      {"jpg", "image/jpeg"},
      {"jpeg", "image/jpeg"},
      {"png", "image/png"},
      {"webp", "image/webp"},
      {"ico", "image/x-icon"},
      {"wav", "audio/wav"},
      {"mp3", "audio/mpeg"},
      {"webmanifest", "application/manifest+json"},
  }};
  const std::string ending = base::LowerCase(name.substr(name.rfind('.') + 1));
  for (const auto& [known, type] : kTypes) {
    if (known == ending) return type;
  }
  return "application/octet-stream";
}

}  // namespace standin
