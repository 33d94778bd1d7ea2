#include "standin/settings/SettingsStore.hpp"

#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "files/FileError.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"

namespace standin {
namespace {

constexpr const char* kJournal = "settings.journal";

bool PlainFileName(const std::string& name) {
  const std::string folded = base::LowerCase(name);
  return !name.empty() && name.size() < 200 && name.front() != '.' &&
         name.find_first_of(std::string_view("/\\:\0", 4)) == std::string::npos &&
         // The store's own: a file renamed over the journal would take all changes with it.
         folded != kJournal && !folded.ends_with(".new") && !folded.ends_with(".edited");
}

std::string NoName(const std::string& file) { return "\"" + file + "\" is no name of a settings file"; }

}  // namespace

SettingsStore::SettingsStore(const std::filesystem::path& folder)
    : folder_((files::MakeFolder(folder), folder)), journal_(folder / kJournal) {
  files::ClearLeftovers(folder_);
  if (!pending()) return;
  journal_.replay([this](const SettingChange& change) {
    if (PlainFileName(change.file)) {
      waiting_[base::LowerCase(change.file)].push_back(change);
    } else {
      notes_.push_back("A change in the journal is passed over: " + NoName(change.file));
    }
  });
  try {
    openWaiting();
    keepEdited();
    flush();
  } catch (const base::Failure& failure) {
    notes_.push_back("The settings stay in the journal: " + failure.description());
  }
}

void SettingsStore::openWaiting() {
  while (!waiting_.empty()) open(std::string(waiting_.begin()->second.front().file));
}

void SettingsStore::keepEdited() {
  std::error_code failed;
  const auto journalTime = std::filesystem::last_write_time(folder_ / kJournal, failed);
  if (failed) files::FailOn(folder_ / kJournal, failed.value());
  for (const auto& [name, loaded] : files_) {
    std::error_code none;
    const auto time = std::filesystem::last_write_time(loaded.path, none);
    if (none || !loaded.changed || time <= journalTime) continue;
    const std::string text = files::TextOf(loaded.path).value_or(std::string());
    if (text == loaded.content.format()) continue;
    const std::filesystem::path copy = loaded.path.string() + ".edited";
    files::WriteFile(copy, text, {.mode = files::kForOwner});
    notes_.push_back(loaded.path.filename().string() +
                     " was edited while changes of the server's waited for it; they have been brought in, "
                     "and the edited file is kept as " +
                     copy.filename().string());
  }
}

SettingsStore::Loaded& SettingsStore::open(const std::string& file) {
  const std::string folded = base::LowerCase(file);
  if (const auto found = files_.find(folded); found != files_.end()) return found->second;
  if (!PlainFileName(file)) {
    throw base::Failure(base::number::kInvalidArgument, NoName(file));
  }
  if (files_.size() >= kMostFiles)
    throw base::Failure(base::number::kOverflow, "There are too many settings files");
  std::filesystem::path path = folder_ / file;
  std::error_code failed;
  for (std::filesystem::directory_iterator entry(folder_, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    if (base::LowerCase(entry->path().filename().string()) == folded) path = entry->path();
  }
  if (failed) files::FailOn(folder_, failed.value());
  const std::optional<std::string> text = files::TextOf(path);
  Loaded loaded{path, IniFile::parse(text.value_or(std::string())), false};
  const auto waiting = waiting_.extract(folded);
  if (!waiting.empty()) {
    for (const SettingChange& change : waiting.mapped()) bring(change, loaded);
  }
  return files_.emplace(folded, std::move(loaded)).first->second;
}

void SettingsStore::checkRoomFor(const SettingChange& change) {
  if (change.section.size() > kLongestName || change.key.size() > kLongestName ||
      change.value.size() > kLongestValue)
    throw base::Failure(base::number::kOverflow, "The setting is too long to be kept");
  std::size_t all = change.section.size() + change.key.size() + change.value.size();
  for (const auto& [name, loaded] : files_) all += loaded.content.bytes();
  if (const std::string* before = open(change.file).content.find(change.section, change.key))
    all -= before->size();
  if (all > kMostInAll) throw base::Failure(base::number::kOverflow, "There are too many settings");
}

void SettingsStore::bring(const SettingChange& change, Loaded& into) {
  if (change.kind == SettingChange::Kind::kSet) {
    into.content.set(change.section, change.key, change.value);
  } else {
    into.content.clear(change.section);
  }
  into.changed = true;
}

std::optional<std::string> SettingsStore::get(const std::string& file, const std::string& section,
                                              const std::string& key) {
  const std::string* found = open(file).content.find(section, key);
  return found == nullptr ? std::nullopt : std::optional(*found);
}

void SettingsStore::save(const std::string& file, const std::string& section, const std::string& key,
                         const std::string& value) {
  Loaded& loaded = open(file);
  const std::string* stored = loaded.content.find(section, key);
  if (stored != nullptr && *stored == value) return;
  const SettingChange change{SettingChange::Kind::kSet, file, section, key, value};
  checkRoomFor(change);
  journal_.append(change);
  bring(change, loaded);
}

std::string SettingsStore::section(const std::string& file, const std::string& section) {
  std::string out;
  bool first = true;
  for (const std::string& entry : open(file).content.entries(section)) {
    if (!std::exchange(first, false)) out += '\0';
    out += entry;
  }
  return out;
}

void SettingsStore::clear(const std::string& file, const std::string& section) {
  Loaded& loaded = open(file);
  const SettingChange change{SettingChange::Kind::kClear, file, section, {}, {}};
  journal_.append(change);
  bring(change, loaded);
}

void SettingsStore::flush() {
  openWaiting();  // the journal goes only with all that is in it
  for (auto& [name, loaded] : files_) {
    if (!loaded.changed) continue;
    files::WriteFile(loaded.path, loaded.content.format(), {.mode = files::kForOwner});
    loaded.changed = false;
  }
  journal_.empty();
}

}  // namespace standin
