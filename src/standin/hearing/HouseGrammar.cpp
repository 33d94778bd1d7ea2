#include "standin/hearing/HouseGrammar.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

/// Where the plug-in keeps the library's names behind those that it can say: one section a category.
constexpr const char* kNamesFile = "vxif_WMP.ini";
constexpr const char* kCategories[] = {"Album", "Artist", "Genre", "PlayList"};

/// Two digits a byte; the empty text for anything else.
std::string Decoded(std::string_view digits) {
  std::string text;
  try {
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
      text += static_cast<char>(base::HexDigit(digits[i]) * 16 + base::HexDigit(digits[i + 1]));
  } catch (const base::Failure&) {
    return {};
  }
  return text;
}

using Names = std::unordered_map<std::string, std::vector<std::string>>;

/// By what stands in patterns, in lower case.
void AddNames(House& house, const char* category, Names& names) {
  const std::string section = house.settings.section(kNamesFile, category);
  for (const std::string& line : base::Split(section, '\0')) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string name = Decoded(std::string_view(line).substr(equals + 1));
    if (name.empty()) continue;
    std::vector<std::string>& known = names[base::LowerCase(line.substr(0, equals))];
    if (std::find(known.begin(), known.end(), name) == known.end()) known.push_back(name);
  }
}

}  // namespace

void HouseGrammar::refresh() {
  if (revision_ == revision()) return;
  revision_ = revision();
  entries_.clear();
  std::vector<Grammar::Source> sources;
  for (const auto& [id, event] : house_.events.all()) {
    if (event.vcmd.empty()) continue;
    entries_.push_back({id, std::make_shared<const Pattern>(event.vcmd)});
    sources.push_back({id, *entries_.back().pattern});
  }
  Names names;
  for (const char* category : kCategories) AddNames(house_, category, names);
  grammar_ = std::make_shared<const Grammar>(sources, [&](const std::string& words) {
    const auto found = names.find(base::LowerCase(words));
    return found == names.end() ? std::vector<std::string>() : found->second;
  });
}

std::shared_ptr<const Grammar> HouseGrammar::now() {
  refresh();
  return grammar_;
}

const std::vector<HouseGrammar::Entry>& HouseGrammar::entries() {
  refresh();
  return entries_;
}

std::string HouseGrammar::libraryName(const std::string& category, const std::string& words) const {
  const std::string name = Decoded(house_.settings.get(kNamesFile, category, words).value_or(""));
  return name.empty() ? words : name;
}

}  // namespace standin
