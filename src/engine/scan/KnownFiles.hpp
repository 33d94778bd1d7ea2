#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "engine/common/IdTable.hpp"
#include "engine/common/StringPool.hpp"
#include "files/Stamp.hpp"

namespace engine {

/// The files that a scanner knows, packed: a library has many, and of each only its stamp is asked for. A
/// path that has gone keeps its place for its return.
class KnownFiles {
 public:
  struct File {
    files::FileStamp stamp;
    std::uint32_t scan = 0;  ///< the scan that saw it last
    bool added = false;      ///< by hand
  };

  void put(std::string_view path, const File& file);
  /// Null when it is not known. Holds until the next `put`.
  [[nodiscard]] File* find(std::string_view path);
  void erase(std::string_view path);
  /// Below a folder, at any depth.
  [[nodiscard]] std::size_t countBelow(const std::string& folder) const;

  /// Calls `work(path, file)` for each file below a folder, folder by folder.
  template <typename Work>
  void forEachBelow(const std::string& folder, const Work& work) const {
    walkBelow(folder, [&](const Entry& entry) { work(pathOf(entry), entry.file); });
  }
  template <typename Work>
  void forEach(const Work& work) const {
    for (const Entry& entry : entries_) {
      if (entry.present) work(pathOf(entry), entry.file);
    }
  }

 private:
  struct Entry {
    StringPool::Id folder = 0;  ///< with the slash at its end
    StringPool::Id name = 0;
    bool present = false;
    File file;
  };

  [[nodiscard]] IdTable::Id at(std::string_view path) const;
  [[nodiscard]] std::string pathOf(const Entry& entry) const;
  template <typename Work>
  void walkBelow(const std::string& folder, const Work& work) const {
    const std::string begin = folder + '/';
    for (auto place = folders_.lower_bound(begin); place != folders_.end() && place->first.starts_with(begin);
         ++place) {
      for (const IdTable::Id id : place->second) {
        if (entries_[id].present) work(entries_[id]);
      }
    }
  }

  StringPool names_;
  std::vector<Entry> entries_;
  IdTable byPath_;
  std::map<std::string, std::vector<IdTable::Id>, std::less<>> folders_;  ///< with the slash at their ends
};

}  // namespace engine
