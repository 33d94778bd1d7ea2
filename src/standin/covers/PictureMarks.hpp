#pragma once
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace standin {

/// What has become of the pictures that the player has marked: their keys, or that there is none that can be
/// shown, which counts for good once two runs have found it so. Kept in a file, so that after a start nothing
/// is read twice; without a place for it everything works as well. Thread-safe.
class PictureMarks {
 public:
  static constexpr std::size_t kMost = 200'000;
  explicit PictureMarks(std::filesystem::path file, std::size_t most = kMost);

  /// The key; empty when there is none; nothing for a mark that is not known.
  std::optional<std::string> find(const std::string& mark);
  void put(const std::string& mark, const std::string& key);

 private:
  std::mutex mutex_;
  std::filesystem::path file_;
  std::size_t most_;
  std::map<std::string, std::string> keys_;
};

}  // namespace standin
