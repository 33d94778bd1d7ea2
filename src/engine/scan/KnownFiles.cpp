#include "engine/scan/KnownFiles.hpp"

#include "engine/common/PathParts.hpp"

namespace engine {

IdTable::Id KnownFiles::at(std::string_view path) const {
  const PathParts parts = Cut(path);
  const StringPool::Id folder = names_.find(parts.folder);
  const StringPool::Id name = names_.find(parts.file);
  return byPath_.find(HashOfPair(folder, name), [&](IdTable::Id id) {
    return entries_[id].folder == folder && entries_[id].name == name;
  });
}

void KnownFiles::put(std::string_view path, const File& file) {
  const IdTable::Id known = at(path);
  if (known != IdTable::kNone) {
    entries_[known].file = file;
    entries_[known].present = true;
    return;
  }
  const PathParts parts = Cut(path);
  const auto id = static_cast<IdTable::Id>(entries_.size());
  if (entries_.size() == entries_.capacity()) entries_.reserve(entries_.size() + entries_.size() / 4 + 64);
  entries_.push_back({names_.intern(parts.folder), names_.intern(parts.file), true, file});
  byPath_.insert(
      id, [this](IdTable::Id other) { return HashOfPair(entries_[other].folder, entries_[other].name); });
  auto place = folders_.find(parts.folder);
  if (place == folders_.end())
    place = folders_.emplace(std::string(parts.folder), std::vector<IdTable::Id>()).first;
  place->second.push_back(id);
}

KnownFiles::File* KnownFiles::find(std::string_view path) {
  const IdTable::Id known = at(path);
  return known != IdTable::kNone && entries_[known].present ? &entries_[known].file : nullptr;
}

void KnownFiles::erase(std::string_view path) {
  const IdTable::Id known = at(path);
  if (known != IdTable::kNone) entries_[known].present = false;
}

std::size_t KnownFiles::countBelow(const std::string& folder) const {
  std::size_t count = 0;
  walkBelow(folder, [&](const Entry& /*entry*/) { ++count; });
  return count;
}

std::string KnownFiles::pathOf(const Entry& entry) const {
  std::string path(names_.view(entry.folder));
  path += names_.view(entry.name);
  return path;
}

}  // namespace engine
