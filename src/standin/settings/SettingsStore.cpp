#include "standin/settings/SettingsStore.hpp"

#include <utility>

#include "base/Attempt.hpp"
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
  countStored();
  if (!pending()) return;
  journal_.replay([this](const SettingChange& change) { takeOver(change); });
  try {
    openWaiting();
    keepEdited();
    flush();
  } catch (const base::Failure& failure) {
    notes_.push_back("The settings stay in the journal: " + failure.description());
  }
}

void SettingsStore::countStored() {
  std::error_code failed;
  for (std::filesystem::directory_iterator entry(folder_, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    const std::string name = entry->path().filename().string();
    std::error_code none;
    if (!PlainFileName(name) || !entry->is_regular_file(none)) continue;
    const std::uintmax_t size = entry->file_size(none);
    if (!none) stored_[base::LowerCase(name)] = static_cast<std::size_t>(size);
  }
  if (failed) files::FailOn(folder_, failed.value());
}

void SettingsStore::takeOver(const SettingChange& change) {
  if (!PlainFileName(change.file)) {
    notes_.push_back("A change in the journal is passed over: " + NoName(change.file));
    return;
  }
  const std::string folded = base::LowerCase(change.file);
  // What comes behind a change that has to wait waits too.
  const bool brought =
      !waiting_.contains(folded) && base::Attempt()([&] { bring(change, need(change.file)); });
  if (!brought) waiting_[folded].push_back(change);
}

void SettingsStore::openWaiting() {
  while (!waiting_.empty()) need(std::string(waiting_.begin()->second.front().file));
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
    files::WriteFile(copy, text, {.mode = files::kForOwner, .lasting = true});
    notes_.push_back(loaded.path.filename().string() +
                     " was edited while changes of the server's waited for it; they have been brought in, "
                     "and the edited file is kept as " +
                     copy.filename().string());
  }
}

std::optional<std::filesystem::path> SettingsStore::pathOf(const std::string& folded) const {
  std::optional<std::filesystem::path> path;
  std::error_code failed;
  for (std::filesystem::directory_iterator entry(folder_, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    if (base::LowerCase(entry->path().filename().string()) == folded) path = entry->path();
  }
  if (failed) files::FailOn(folder_, failed.value());
  return path;
}

SettingsStore::Loaded* SettingsStore::look(const std::string& file) {
  const std::string folded = base::LowerCase(file);
  if (const auto found = files_.find(folded); found != files_.end()) {
    // A change that there was too little memory for when its file was read.
    bringWaiting(folded, found->second);
    return &found->second;
  }
  if (!PlainFileName(file)) throw base::Failure(base::number::kInvalidArgument, NoName(file));
  const std::optional<std::filesystem::path> path = pathOf(folded);
  if (!path && !waiting_.contains(folded)) return nullptr;
  return &load(folded, path.value_or(folder_ / file));
}

SettingsStore::Loaded& SettingsStore::need(const std::string& file) {
  Loaded* loaded = look(file);
  return loaded == nullptr ? fresh(file) : *loaded;
}

SettingsStore::Loaded& SettingsStore::fresh(const std::string& file) {
  return files_.emplace(base::LowerCase(file), Loaded{folder_ / file, IniFile(), false}).first->second;
}

void SettingsStore::bringWaiting(const std::string& folded, Loaded& loaded) {
  const auto waiting = waiting_.find(folded);
  if (waiting == waiting_.end()) return;
  for (const SettingChange& change : waiting->second) bring(change, loaded);
  waiting_.erase(waiting);
}

SettingsStore::Loaded& SettingsStore::load(const std::string& folded, const std::filesystem::path& path) {
  const std::optional<std::string> text = files::TextOf(path);
  Loaded loaded{path, IniFile::parse(text.value_or(std::string())), false};
  bringWaiting(folded, loaded);
  stored_.erase(folded);
  return files_.emplace(folded, std::move(loaded)).first->second;
}

void SettingsStore::checkRoomFor(const SettingChange& change, const Loaded* loaded) const {
  if (change.section.size() > kLongestName || change.key.size() > kLongestName ||
      change.value.size() > kLongestValue)
    throw base::Failure(base::number::kOverflow, "The setting is too long to be kept");
  if (loaded == nullptr && files_.size() + stored_.size() >= kMostFiles)
    throw base::Failure(base::number::kOverflow, "There are too many settings files");
  std::size_t all = change.section.size() + change.key.size() + change.value.size();
  for (const auto& [name, size] : stored_) all += size;
  for (const auto& [name, known] : files_) all += known.content.bytes();
  const std::string* before = loaded == nullptr ? nullptr : loaded->content.find(change.section, change.key);
  if (before != nullptr) all -= before->size();
  if (all > kMostInAll) throw base::Failure(base::number::kOverflow, "There are too many settings");
}

void SettingsStore::note(const SettingChange& change) {
  if (journal_.size() > kMostWaiting) flush();
  journal_.append(change);
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
  const Loaded* loaded = look(file);
  const std::string* found = loaded == nullptr ? nullptr : loaded->content.find(section, key);
  return found == nullptr ? std::nullopt : std::optional(*found);
}

void SettingsStore::save(const std::string& file, const std::string& section, const std::string& key,
                         const std::string& value) {
  Loaded* loaded = look(file);
  const std::string* stored = loaded == nullptr ? nullptr : loaded->content.find(section, key);
  if (stored != nullptr && *stored == value) return;
  const SettingChange change{SettingChange::Kind::kSet, file, section, key, value};
  checkRoomFor(change, loaded);
  note(change);
  bring(change, loaded == nullptr ? fresh(file) : *loaded);
}

std::string SettingsStore::section(const std::string& file, const std::string& section) {
  const Loaded* loaded = look(file);
  if (loaded == nullptr) return {};
  std::string out;
  bool first = true;
  for (const std::string& entry : loaded->content.entries(section)) {
    if (!std::exchange(first, false)) out += '\0';
    out += entry;
  }
  return out;
}

void SettingsStore::clear(const std::string& file, const std::string& section) {
  Loaded* loaded = look(file);
  if (loaded == nullptr || !loaded->content.has(section)) return;
  if (section.size() > kLongestName)
    throw base::Failure(base::number::kOverflow, "The section's name is too long");
  const SettingChange change{SettingChange::Kind::kClear, file, section, {}, {}};
  note(change);
  bring(change, *loaded);
}

void SettingsStore::flush() {
  openWaiting();    // the journal goes only with all that is in it
  journal_.sync();  // a part of it, found after a power cut, would take the files back to what they were
  for (auto& [name, loaded] : files_) {
    if (!loaded.changed) continue;
    files::WriteFile(loaded.path, loaded.content.format(), {.mode = files::kForOwner, .lasting = true});
    loaded.changed = false;
  }
  journal_.empty();
}

}  // namespace standin
