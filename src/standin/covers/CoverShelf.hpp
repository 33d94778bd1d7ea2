#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace standin {

/// Pictures that have been made smaller, in a folder of their own: by the hash of what they were made from.
/// When they take more room than they may, those go that nobody has asked for longest. What can't be written
/// is kept in memory for a while, so that a full disk costs time and nothing else. Thread-safe.
class CoverShelf {
 public:
  struct Limits {
    std::uint64_t disk = std::uint64_t{512} << 20U;   ///< bytes
    std::uint64_t memory = std::uint64_t{16} << 20U;  ///< bytes
  };
  /// How a file comes to the disk: as `files::WriteFile`.
  using Write = std::function<void(const std::string& path, const std::string& bytes)>;

  /// How it comes back: as `files::ReadFile`.
  using Read = std::function<std::string(const std::string& path)>;

  /// Writes a whole file or nothing, for its owner alone.
  static void Written(const std::string& path, const std::string& bytes);
  static std::string ReadBack(const std::string& path);

  /// What a killed process has left half-written in the folder is cleared.
  explicit CoverShelf(std::filesystem::path folder) : CoverShelf(std::move(folder), Limits(), &Written) {}
  CoverShelf(std::filesystem::path folder, Limits limits, Write write, Read read = &ReadBack);

  /// The picture of that key and size, if it is here.
  std::optional<std::string> take(const std::string& key, int size);
  [[nodiscard]] bool has(const std::string& key, int size);
  void put(const std::string& key, int size, const std::string& bytes);
  /// Bytes on the disk.
  [[nodiscard]] std::uint64_t used();

  /// Whether a text can be a key: 32 hexadecimal digits. Nothing else becomes a part of a path.
  static bool isKey(const std::string& text);
  static std::string keyOf(const std::string& picture);

 private:
  struct Entry {
    std::uint64_t bytes = 0;
    std::list<std::string>::iterator turn{};
  };
  struct Held {
    std::string name;
    std::string bytes;
  };
  void know(const std::string& name, std::uint64_t bytes);
  void forget(const std::string& name);
  void hold(const std::string& name, const std::string& bytes);
  void makeRoom();

  std::mutex mutex_;
  std::filesystem::path folder_;
  Limits limits_;
  Write write_;
  Read read_;
  std::map<std::string, Entry> entries_;  ///< by the file's name
  std::list<std::string> turns_;          ///< names, the one asked for last in front
  std::uint64_t used_ = 0;
  std::list<Held> held_;  ///< the newest in front
  std::uint64_t heldBytes_ = 0;
};

}  // namespace standin
