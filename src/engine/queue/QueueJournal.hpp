#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/queue/KeptQueue.hpp"
#include "engine/queue/SyncThread.hpp"
#include "files/Descriptor.hpp"
#include "files/WriteFile.hpp"

namespace engine {

/// The kept queue on the disk: a file that begins with a whole queue, and behind it its changes. A whole
/// queue begins the file of the next number, and only when that is on the disk the one before goes. What a
/// call has written survives the end of the process at any moment; the disk has it soon after, and nobody
/// waits for that.
class QueueJournal {
 public:
  /// `message` gets lines for people; it may be called on another thread.
  QueueJournal(std::string folder, std::function<void(const std::string&)> message,
               files::WriteCall write = files::WriteBytes);

  /// What was kept, or none; to be asked once, before anything is written. What is damaged is moved aside
  /// and told; what can't be read now is told, and stays. Throws as `files::FailOn`.
  std::optional<KeptQueue> load();

  /// Throws as `files::WriteAll`, or 5 for a list that is too long; then what was kept before stays as it is,
  /// and only a whole queue can be written.
  void begin(const KeptQueue& queue);
  /// Throws as `files::WriteAll`; then only a whole queue can be written.
  void append(std::string_view record);
  /// True when nothing can be appended, or so much has been that it is better to begin anew.
  [[nodiscard]] bool wantsWhole() const;
  /// True if anything is kept.
  [[nodiscard]] bool any() const { return file_ != nullptr; }

 private:
  struct Known {
    std::uint64_t number = 0;
    std::string path;
  };
  /// The files that there are, the newest first.
  [[nodiscard]] std::vector<Known> known() const;
  /// False when there is no whole queue in it.
  bool read(const Known& known, KeptReplay& replay, std::string& text);
  void moveAside(const std::string& path, const std::string& why);
  void sync(std::vector<std::string> after);

  std::string folder_;
  std::function<void(const std::string&)> message_;
  files::WriteCall write_;
  std::shared_ptr<files::Descriptor> file_;
  std::string path_;
  bool looked_ = false;  ///< for what there is
  bool unread_ = false;  ///< the newest can't be read now
  std::uint64_t number_ = 0;
  std::int64_t whole_ = 0;  ///< bytes up to the end of the whole queue
  std::int64_t size_ = 0;
  int changes_ = 0;
  bool broken_ = false;
  std::vector<std::string> older_;
  SyncThread sync_;
};

}  // namespace engine
