#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "standin/settings/IniText.hpp"
#include "standin/settings/SettingsJournal.hpp"

namespace standin {

/// The house's settings: INI files in one folder. A change is in memory and in the journal when its call
/// returns; the files themselves are rewritten by `flush`.
class SettingsStore {
 public:
  /// Takes over what a journal of an earlier run still holds; where that can't be written now, or the file
  /// that it belongs to can't be read, the journal goes on. A file that was edited since is kept beside the
  /// new one. Throws as files do.
  explicit SettingsStore(const std::filesystem::path& folder);

  /// The stored text, or nothing when the key is absent. Throws number 5 for a name that is no plain file
  /// name.
  std::optional<std::string> get(const std::string& file, const std::string& section, const std::string& key);
  static constexpr std::size_t kLongestName = 4096;  ///< of a section or a key, in bytes
  static constexpr std::size_t kLongestValue = std::size_t{4} << 20U;
  static constexpr std::size_t kMostInAll = std::size_t{64} << 20U;  ///< names and values of all files in use
  static constexpr std::size_t kMostFiles = 1000;

  /// Throws number 61 when the disk is full, 6 when this would be more than is kept; the earlier value stands
  /// then.
  void save(const std::string& file, const std::string& section, const std::string& key,
            const std::string& value);
  /// The section as key=value entries separated by the character of code 0.
  std::string section(const std::string& file, const std::string& section);
  void clear(const std::string& file, const std::string& section);

  /// Brings all changes into the files and empties the journal. On a failure the files stay whole, the
  /// journal stays, and the failure is thrown.
  void flush();
  /// What the user should know of the taking over, for the log.
  [[nodiscard]] const std::vector<std::string>& notes() const { return notes_; }
  [[nodiscard]] bool pending() const { return journal_.size() > 0; }
  /// Bytes of changes that the files don't hold yet.
  [[nodiscard]] std::size_t journalSize() const { return journal_.size(); }

 private:
  struct Loaded {
    std::filesystem::path path;
    IniFile content;
    bool changed = false;
  };
  Loaded& open(const std::string& file);
  void checkRoomFor(const SettingChange& change);
  static void bring(const SettingChange& change, Loaded& into);
  void openWaiting();
  void keepEdited();

  std::filesystem::path folder_;
  SettingsJournal journal_;
  std::map<std::string, Loaded> files_;
  std::map<std::string, std::vector<SettingChange>> waiting_;  ///< of the journal, for files not opened yet
  std::vector<std::string> notes_;
};

}  // namespace standin
