#pragma once
#include <string>
#include <unordered_map>

#include "catalogue/Progress.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"

namespace catalogue {

/// The way back from a media key to the library's own name, in memory and, entry by entry, in the plug-in's
/// file, where each category has a section. Only names that differ from their key are entered, so that an
/// empty table is a normal state. A category is any word. No operation throws.
class NameXref {
 public:
  NameXref(plugin::HostServices& host, plugin::Loggers& loggers, Progress& progress)
      : host_(host), loggers_(loggers), progress_(progress) {}

  /// Registers a name, the newest spelling of its key. `key` gets the media key. False only when the
  /// name could not be added to the table, for want of memory.
  bool AddNameXref(const std::string& category, const std::string& name, std::string& key);
  /// The same within a walk of many names: what is to be saved goes with `saves`.
  bool AddNameXref(const std::string& category, const std::string& name, std::string& key,
                   plugin::Unwaited& saves);
  /// The library name with each double quote doubled, as the player's queries want it; `name` as given, and
  /// undoubled, where none is known.
  [[nodiscard]] std::string LookupNameXref(const std::string& category, const std::string& name) const;
  /// True if the entry existed.
  bool RemoveNameXref(const std::string& category, const std::string& name);
  /// Reads the sections of the file.
  void LoadNameTable();

  [[nodiscard]] std::size_t size() const { return names_.size(); }

 private:
  void readSection(const std::string& section, ProgressShown& shown);
  void moveOldSection(ProgressShown& shown);

  plugin::HostServices& host_;
  plugin::Loggers& loggers_;
  Progress& progress_;
  std::unordered_map<std::string, std::string> names_;  // by "category:key", folded
};

}  // namespace catalogue
