#pragma once
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "engine/scan/FolderListing.hpp"
#include "engine/scan/KnownFiles.hpp"
#include "engine/scan/LibraryStore.hpp"
#include "engine/scan/LibraryWatch.hpp"
#include "engine/scan/TagPool.hpp"
#include "files/Descriptor.hpp"

namespace engine {

/// A step of the library's way to what lies in the music folders.
struct LibraryChange {
  std::vector<FileRecord> changed;  ///< those of kind none are no media
  std::vector<std::string> removed;
  std::vector<std::string> messages;  ///< lines for people
  bool scanComplete = false;          ///< a scan of all folders has ended
};

/// Keeps the index in step with the music folders, on a thread of its own: a scan at the start, then whatever
/// the system tells of changes. Files that have not changed are not opened. A music folder that is missing,
/// unreadable or empty keeps what was known of it, and is looked at again from time to time. So does a folder
/// below one that has become empty or unreadable and lies, or has lain since the start, on another device
/// than the folder around it: perhaps it is not mounted. Any other folder that has become empty loses its
/// tracks.
class Scanner {
 public:
  struct Settings {
    std::vector<std::string> roots;
    TagPool::Settings reading;
    /// How long it must be quiet before changes are looked at, and how often missing folders are.
    std::chrono::milliseconds quiet{150};
    std::chrono::milliseconds retry{5000};
    bool watch = true;
  };
  /// Called on the scanner's thread.
  using Deliver = std::function<void(LibraryChange)>;

  /// `known` is what the index holds, by path.
  Scanner(Settings settings, std::unique_ptr<LibraryStore> store, const std::vector<FileRecord>& known,
          Deliver deliver);
  /// Stops the scan wherever it is; what was read so far is in the index.
  ~Scanner();
  Scanner(const Scanner&) = delete;
  Scanner& operator=(const Scanner&) = delete;
  Scanner(Scanner&&) = delete;
  Scanner& operator=(Scanner&&) = delete;

  /// Puts a record into the index, on the scanner's thread.
  void remember(FileRecord record);

 private:
  struct Root {
    std::string path;
    bool usable = false;
    bool told = false;  ///< that it is missing
    FolderIdentity identity{};
  };

  void run();
  void wait();
  /// What was added by hand goes into the index.
  void takeAdded();
  void scanAll();
  void scanRoot(Root& root);
  /// Reads the folder and all below it. Answers the number of media files met.
  std::size_t walk(const std::string& folder, const FolderIdentity& identity);
  void lookAgain(const std::string& folder);
  void watch(const std::string& folder);
  void visit(const FolderListing& listing);
  /// True when the folder was not met under another path that still leads to it.
  bool claim(const FolderIdentity& identity, const std::string& folder);
  void removeUnseen();
  void remove(const std::string& path);
  void keepRoot(Root& root, const std::string& reason);
  /// Notes which of the folders in it are on another device.
  void noteMounts(const FolderListing& listing);
  /// True for a folder that had tracks, has nothing now, and is or was on another device than the one around
  /// it.
  bool perhapsNotMounted(const std::string& folder, const FolderListing& listing);
  /// Keeps what was known below it until it can be read again.
  void keepFolder(const std::string& folder);
  /// Whether a folder that was kept has something in it again.
  bool anyBack();
  Root* rootOf(const std::string& path);
  void collect(std::chrono::milliseconds limit);
  void finishReading();
  /// Writes and delivers what has gathered.
  void flush();

  Settings settings_;
  std::unique_ptr<LibraryStore> store_;
  Deliver deliver_;
  KnownFiles known_;
  std::map<FolderIdentity, std::string> folders_;
  std::vector<Root> roots_;
  std::vector<std::string> unreadable_;
  std::set<std::string> mounts_;  ///< folders seen on another device than the one around them
  std::set<std::string> away_;    ///< those of them that are kept
  /// Files given up, which are not begun again while they stay as they are.
  std::map<std::string, files::FileStamp> slow_;
  LibraryWatch watch_;
  bool watchesShort_ = false;
  std::uint32_t scan_ = 0;
  LibraryChange pending_;
  std::chrono::steady_clock::time_point lastFlush_;
  std::unique_ptr<TagPool> pool_;

  std::atomic<bool> stopping_{false};
  files::Descriptor wake_;
  std::mutex mutex_;
  std::vector<FileRecord> toRemember_;
  std::thread thread_;  // last: it uses all of the above
};

}  // namespace engine
