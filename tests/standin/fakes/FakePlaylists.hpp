#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/Members.hpp"

namespace support {

/// A player's stored playlists as its raw player hands them out, open to the test as to any other program
/// that changes them. May be used from any thread.
class FakePlaylists {
 public:
  struct Title {
    std::string name;
    std::string source;
    std::map<std::string, std::string> facts{};  ///< by attribute
  };
  using Names = std::vector<std::string>;

  /// What the library has.
  std::vector<Title> library;
  /// What a category's groups hold, "Album/Blue"; of others, the titles whose source begins with the name.
  std::map<std::string, std::vector<Title>> groups;
  /// The names of "Album", "Artist", "Genre", and the albums of "Artist/Joni".
  std::map<std::string, Names> categories;
  std::map<std::string, Names> albums;
  /// Changes that the player refuses from now on.
  void refuse(bool value) {
    locked([&] { refuses_ = value; });
  }

  /// Changes from now on that the player makes before its process is gone, as far as its callers can tell.
  void dieAfter(int changes) {
    locked([&] { changesLeft_ = changes; });
  }
  /// The last of them is made, but its caller does not hear of it.
  void dieBehind(int changes) {
    locked([&] {
      changesLeft_ = changes;
      heard_ = false;
    });
  }
  void comeBack() {
    locked([&] {
      changesLeft_ = -1;
      heard_ = true;
    });
  }
  /// Something else is chosen to be played: these titles, and the one at the place is the current one.
  void choose(const std::vector<Title>& titles, std::int32_t place = 0) {
    locked([&] {
      queue_ = std::make_shared<List>(List{"Blue", titles});
      queuePlace_ = place;
      ++queueMark_;
    });
  }
  [[nodiscard]] Names queued() {
    return locked([&] { return namesOf(queue_->titles); });
  }
  /// How many changes have been made, of whatever size.
  [[nodiscard]] int changes() {
    return locked([&] { return changes_; });
  }
  /// The list's length can't be read, or can again.
  void spoil(const std::string& list, bool value) {
    locked([&] { found(list)->spoilt = value; });
  }

  void put(const std::string& list, const std::vector<Title>& titles) {
    locked([&] {
      found(list)->titles = titles;
      ++found(list)->revision;
    });
  }
  void drop(const std::string& list) {
    locked([&] { std::erase_if(lists_, [&](const auto& each) { return each->name == list; }); });
  }
  void rename(const std::string& list, const std::string& name) {
    locked([&] { found(list)->name = name; });
  }
  [[nodiscard]] bool has(const std::string& list) {
    return locked([&] {
      for (const auto& each : lists_)
        if (each->name == list) return true;
      return false;
    });
  }
  [[nodiscard]] Names names(const std::string& list) {
    return locked([&] { return namesOf(found(list)->titles); });
  }
  [[nodiscard]] Names sources(const std::string& list) {
    return locked([&] { return sourcesOf(found(list)->titles); });
  }
  [[nodiscard]] Names lists() {
    return locked([&] {
      Names names;
      for (const auto& each : lists_) names.push_back(each->name);
      return names;
    });
  }
  /// The sources of what was played last through the raw player.
  [[nodiscard]] Names played() {
    return locked([&] { return sourcesOf(played_); });
  }
  /// The calls that the raw player has answered.
  [[nodiscard]] int asked() {
    return locked([&] { return asked_; });
  }

  /// The raw player.
  base::ObjectRef player();

 private:
  struct List {
    std::string name;
    std::vector<Title> titles;
    bool spoilt = false;
    std::int64_t revision = 1;
  };
  using ListRef = std::shared_ptr<List>;
  class Objects;  ///< how all of that looks from outside

  template <class Work>
  std::invoke_result_t<Work> locked(Work&& work) {
    const std::lock_guard lock(mutex_);
    return std::forward<Work>(work)();
  }
  ListRef found(const std::string& name);
  static Names namesOf(const std::vector<Title>& titles) {
    Names names;
    for (const Title& title : titles) names.push_back(title.name);
    return names;
  }
  static Names sourcesOf(const std::vector<Title>& titles) {
    Names sources;
    for (const Title& title : titles) sources.push_back(title.source);
    return sources;
  }

  std::mutex mutex_;
  std::vector<ListRef> lists_;
  std::vector<Title> played_;
  ListRef queue_ = std::make_shared<List>();
  std::int32_t queuePlace_ = -1;
  std::int64_t queueMark_ = 1'790'000'000'000;
  bool refuses_ = false;
  int changesLeft_ = -1;  ///< no end of them
  int changes_ = 0;
  bool heard_ = true;
  int asked_ = 0;
};

}  // namespace support
