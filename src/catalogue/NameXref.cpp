#include "catalogue/NameXref.hpp"

#include <optional>
#include <string_view>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "catalogue/MediaKey.hpp"

namespace catalogue {

using base::Attempt;

namespace {

/// The sections that a start loads, in their order, with the word of the log line. Playlists are not among
/// them: their entries are made anew when the playlists are read.
struct Section {
  const char* name;
  const char* word;
};
constexpr Section kSections[] = {
    {"Media Library", "Media"}, {"Artist", "Artist"}, {"Album", "Album"}, {"Genre", "Genre"}};

/// The section of an older form, with keys category:key.
constexpr const char* kOldSection = "Media";

std::string EntryOf(const std::string& category, const std::string& key) {
  std::string entry;
  entry.reserve(category.size() + 1 + key.size());
  entry.append(category).append(1, ':').append(key);
  return base::LowerCase(entry);
}

/// What stands behind the one "=" of a line; nothing where it has none or several.
std::optional<std::string_view> ValueIn(std::string_view line) {
  const std::size_t cut = line.find('=');
  if (cut == std::string_view::npos || line.find('=', cut + 1) != std::string_view::npos) return std::nullopt;
  return line.substr(cut + 1);
}

std::string WithQuotesDoubled(const std::string& name) {
  std::string doubled;
  doubled.reserve(name.size());
  for (const char c : name) {
    if (c == '"') doubled += c;
    doubled += c;
  }
  return doubled;
}

}  // namespace

bool NameXref::AddNameXref(const std::string& category, const std::string& name, std::string& key) {
  plugin::Unwaited saves(host_);
  return AddNameXref(category, name, key, saves);
}

bool NameXref::AddNameXref(const std::string& category, const std::string& name, std::string& key,
                           plugin::Unwaited& saves) {
  Attempt step;
  bool changed = false;
  step([&] { changed = !MakeMediaKey(name, key); });
  if (!changed || key.empty()) return true;
  bool known = false;
  const bool added = step([&] {
    std::string& entry = names_[EntryOf(category, key)];
    known = entry == name;
    // Names that share a key overwrite each other in turn.
    if (!known) entry = name;
  });
  if (known || !added) return added;
  step([&] { saves.SaveINISetting(category, key, HexEncodeName(name), plugin::kSettingsFile); });
  return true;
}

std::string NameXref::LookupNameXref(const std::string& category, const std::string& name) const {
  std::string known;
  Attempt step;
  step([&] {
    std::string key;
    MakeMediaKey(name, key);
    const auto found = names_.find(EntryOf(category, key));
    if (found != names_.end()) known = WithQuotesDoubled(found->second);
  });
  return known.empty() ? name : known;
}

bool NameXref::RemoveNameXref(const std::string& category, const std::string& name) {
  Attempt step;
  std::string key;
  bool existed = false;
  step([&] {
    MakeMediaKey(name, key);
    existed = names_.erase(EntryOf(category, key)) > 0;
  });
  if (!existed) return false;
  // The file keeps the key with an empty value, which loads as no name.
  step([&] { host_.SaveINISetting(category, key, "", plugin::kSettingsFile); });
  return true;
}

void NameXref::moveOldSection(ProgressShown& shown) {
  Attempt step;
  plugin::Unwaited saves(host_);
  std::vector<std::string> lines;
  step([&] { lines = base::Split(host_.GetINISection(kOldSection, plugin::kSettingsFile), '\0'); });
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto parts = base::Split(lines[i], '=');
    if (parts.size() == 2) {
      const auto path = base::Split(parts[0], ':');
      if (path.size() == 2)
        step([&] { saves.SaveINISetting(path[0], path[1], parts[1], plugin::kSettingsFile); });
    }
    shown.update(static_cast<std::int64_t>(i) + 1, static_cast<std::int64_t>(lines.size()));
    if (YieldsAt(static_cast<std::int64_t>(i))) step([&] { saves.WaitEvents(); });
  }
  step([&] { saves.settle(); });
  // An entry that could not be moved keeps the whole old section for the next start.
  if (!step.failed()) step([&] { host_.ClearINISection(kOldSection, plugin::kSettingsFile); });
}

void NameXref::readSection(const std::string& section, ProgressShown& shown) {
  // A new table for each section: in the end only the last one's entries are in memory. Those of the others
  // stay in the file and return name by name, when the library is next read.
  names_.clear();
  Attempt step;
  plugin::Unwaited saves(host_);
  std::vector<std::string> lines;
  step([&] { lines = base::Split(host_.GetINISection(section, plugin::kSettingsFile), '\0'); });
  step([&] { names_.reserve(lines.size()); });
  std::string key;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    // An entry is new to the table, and so it is also written back, unchanged.
    if (const auto value = ValueIn(lines[i]))
      step([&] { AddNameXref(section, HexDecodeName(*value), key, saves); });
    shown.update(static_cast<std::int64_t>(i) + 1, static_cast<std::int64_t>(lines.size()));
    if (YieldsAt(static_cast<std::int64_t>(i))) step([&] { saves.WaitEvents(); });
  }
}

void NameXref::LoadNameTable() {
  Attempt step;
  step([&] { loggers_.Debug("Media Player: Loading Xref"); });
  {
    ProgressShown shown(progress_, "LoadNameTable");
    moveOldSection(shown);
    for (const Section& section : kSections) {
      step([&] { loggers_.Debug(std::string("Media Player: Loading ") + section.word + " Xref"); });
      readSection(section.name, shown);
    }
    step([&] { loggers_.Debug("Media Player: Finished Loading Xref"); });
  }
}

}  // namespace catalogue
