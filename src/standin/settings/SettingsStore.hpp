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

  /// The stored text, or nothing when the key is absent, or the file. Throws number 5 for a name that is no
  /// plain file name.
  std::optional<std::string> get(const std::string& file, const std::string& section, const std::string& key);
  static constexpr std::size_t kLongestName = 4096;  ///< of a section or a key, in bytes
  static constexpr std::size_t kLongestValue = std::size_t{4} << 20U;
  /// Names and values of all files, those that nobody has asked for yet by their size on the disk.
  static constexpr std::size_t kMostInAll = std::size_t{64} << 20U;
  static constexpr std::size_t kMostFiles = 1000;
  static constexpr std::size_t kMostWaiting = std::size_t{64} << 20U;  ///< in the journal, but for one change

  /// Throws number 61 when the disk is full, 6 when this would be more than is kept; the earlier value stands
  /// then.
  void save(const std::string& file, const std::string& section, const std::string& key,
            const std::string& value);
  /// The section as key=value entries separated by the character of code 0.
  std::string section(const std::string& file, const std::string& section);
  /// Throws number 61 when the disk is full. A section that isn't there is none to be cleared.
  void clear(const std::string& file, const std::string& section);

  /// Brings all changes into the files and empties the journal. On a failure the files stay whole, the
  /// journal stays, and the failure is thrown; so too where the files might not outlast a power cut.
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
  void countStored();
  void takeOver(const SettingChange& change);
  [[nodiscard]] std::optional<std::filesystem::path> pathOf(const std::string& folded) const;
  /// The file's content, null where there is none.
  Loaded* look(const std::string& file);
  /// The same, an empty one where there is none.
  Loaded& need(const std::string& file);
  Loaded& fresh(const std::string& file);
  Loaded& load(const std::string& folded, const std::filesystem::path& path);
  void checkRoomFor(const SettingChange& change, const Loaded* loaded) const;
  void note(const SettingChange& change);
  static void bring(const SettingChange& change, Loaded& into);
  /// What waits for that file.
  void bringWaiting(const std::string& folded, Loaded& into);
  void openWaiting();
  void keepEdited();

  std::filesystem::path folder_;
  SettingsJournal journal_;
  std::map<std::string, Loaded> files_;
  std::map<std::string, std::size_t> stored_;  ///< the sizes of files at the start that nobody has asked for
  std::map<std::string, std::vector<SettingChange>>
      waiting_;  ///< of the journal, for files that can't be read
  std::vector<std::string> notes_;
};

}  // namespace standin
