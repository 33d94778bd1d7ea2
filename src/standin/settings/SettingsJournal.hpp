#pragma once
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "files/Descriptor.hpp"

namespace standin {

/// One change of a setting, as the journal keeps it.
struct SettingChange {
  enum class Kind { kSet, kClear };
  Kind kind = Kind::kSet;
  std::string file;
  std::string section;
  std::string key;
  std::string value;
};

/// The changes that the settings files don't hold yet, one line each with a check sum, so that a line cut
/// short by the end of the process is told from a whole one. One `write` a change.
class SettingsJournal {
 public:
  /// Opens or creates it. Throws as files do.
  explicit SettingsJournal(std::filesystem::path path);

  /// A longer line is no change, as the longest with each character escaped is half of it.
  static constexpr std::size_t kLongestLine = std::size_t{16} << 20U;

  /// Gives every whole change to `apply` in order, one in memory at a time; what is torn or too long is
  /// passed over. Throws as files do.
  void replay(const std::function<void(const SettingChange&)>& apply);
  /// Has the change in the file when it returns; throws, 61 for a full disk, and leaves nothing that would be
  /// read as one.
  void append(const SettingChange& change);
  /// Has all changes on the disk.
  void sync();
  /// Forgets all changes, as the files hold them now.
  void empty();
  [[nodiscard]] std::size_t size() const { return size_; }

  static std::string lineOf(const SettingChange& change);
  /// False when the line (without its end) is not whole.
  static bool readLine(std::string_view line, SettingChange& change);

 private:
  void cutWhatIsTorn();

  std::filesystem::path path_;
  files::Descriptor file_;
  std::size_t size_ = 0;  ///< of the changes
  bool torn_ = false;     ///< there is more behind them, which would swallow the next one
};

}  // namespace standin
