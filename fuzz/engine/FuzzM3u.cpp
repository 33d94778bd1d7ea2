#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/M3u.hpp"

/// Whatever a playlist file holds: it is read, and what was read survives being written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const engine::M3u first = engine::ParseM3u(text, "/music");
  const engine::M3u second = engine::ParseM3u(engine::FormatM3u(first), "/music");
  if (second.entries.size() != first.entries.size()) std::abort();
  for (std::size_t i = 0; i < first.entries.size(); ++i) {
    if (second.entries[i].location != first.entries[i].location) std::abort();
  }
  const std::string name = text.substr(0, 60);
  if (!name.empty() && engine::UnescapeFileName(engine::EscapeFileName(name)) != name) std::abort();
  return 0;
}
