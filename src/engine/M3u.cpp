#include "engine/M3u.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "base/Text.hpp"
#include "engine/Attributes.hpp"

namespace engine {
namespace {

constexpr std::string_view kNameTag = "#PLAYLIST:";
constexpr std::string_view kItemTag = "#EXTINF:";
constexpr std::string_view kMark = "\xEF\xBB\xBF";

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
  return text;
}

std::string Escaped(std::string_view text, bool (*plain)(char)) {
  std::string result;
  for (const char character : text) {
    if (plain(character)) {
      result += character;
      continue;
    }
    std::array<char, 4> code{};
    std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(character));
    result += code.data();
  }
  return result;
}

/// A location as a line of the file.
std::string Line(const std::string& location) {
  const bool breaks = location.find_first_of("\n\r") != std::string::npos;
  const bool blanks = !location.empty() && (location.front() == ' ' || location.back() == ' ');
  if (IsAddress(location) || !(breaks || blanks)) return location;
  return "file://" + Escaped(location, [](char c) { return c > ' ' && c < 0x7F && c != '%'; });
}

void ReadItem(std::string_view text, M3u::Entry& entry) {
  entry.seconds = std::atoi(std::string(text).c_str());
  const auto comma = text.find(',');
  if (comma != std::string_view::npos)
    entry.title = base::RepairUtf8(base::TrimBlanks(text.substr(comma + 1)));
}

}  // namespace

M3u ParseM3u(const std::string& text, const std::string& folder) {
  M3u list;
  M3u::Entry entry;
  std::string_view rest = text;
  if (rest.substr(0, kMark.size()) == kMark) rest.remove_prefix(kMark.size());
  while (!rest.empty()) {
    const auto end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
    while (!line.empty() && line.front() == ' ') line.remove_prefix(1);
    if (line.empty()) continue;
    if (line.front() == '#') {
      if (line.substr(0, kNameTag.size()) == kNameTag) {
        list.name = base::RepairUtf8(base::TrimBlanks(line.substr(kNameTag.size())));
      }
      if (line.substr(0, kItemTag.size()) == kItemTag) ReadItem(line.substr(kItemTag.size()), entry);
      continue;
    }
    entry.location = PathOf(std::string(line));
    if (!IsAddress(entry.location) && entry.location.front() != '/')
      entry.location = folder + '/' + entry.location;
    list.entries.push_back(std::exchange(entry, {}));
  }
  return list;
}

std::string FormatM3u(const M3u& list) {
  std::string text = "#EXTM3U\n";
  text += std::string(kNameTag) + OneLine(list.name) + '\n';
  for (const M3u::Entry& entry : list.entries) {
    text += std::string(kItemTag) + std::to_string(entry.seconds) + ',' + OneLine(entry.title) + '\n';
    text += Line(entry.location) + '\n';
  }
  return text;
}

std::string EscapeFileName(const std::string& name) {
  std::string escaped = Escaped(name, [](char c) {
    return static_cast<unsigned char>(c) >= ' ' && c != 0x7F &&
           std::string_view("/\\:*?\"<>|%").find(c) == std::string_view::npos;
  });
  if (escaped.front() == '.') escaped = "%2E" + escaped.substr(1);
  return escaped;
}

std::string UnescapeFileName(const std::string& fileName) { return PathOf("file:///" + fileName).substr(1); }

}  // namespace engine
