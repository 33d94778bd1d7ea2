#pragma once
#include <optional>
#include <string>
#include <vector>

#include "engine/library/Media.hpp"
#include "engine/library/TrackIndex.hpp"
#include "player/ManyOut.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// One step of a list's change: at a place so many items were taken out, and then so many put in there.
struct ListStep {
  std::size_t place = 0;
  std::size_t removed = 0;
  std::size_t added = 0;
};

/// Who is told what happens to a list in memory.
class ListWatch {
 public:
  ListWatch() = default;
  virtual ~ListWatch() = default;
  ListWatch(const ListWatch&) = delete;
  ListWatch& operator=(const ListWatch&) = delete;
  ListWatch(ListWatch&&) = delete;
  ListWatch& operator=(ListWatch&&) = delete;

  /// After one change of the list; each step counts places as the step before has left them.
  virtual void edited(const std::vector<ListStep>& steps) = 0;
};

/// An ordered list of media in memory. One that answers a question shares the index's own list until it is
/// changed; changing it changes nothing else.
class ListPlaylist : public player::Playlist, public player::ManyOut {
 public:
  ListPlaylist(std::string name, ShelfRef shelf, TrackList tracks)
      : name_(std::move(name)), shelf_(std::move(shelf)), tracks_(std::move(tracks)) {}
  ListPlaylist(std::string name, std::vector<player::MediaRef> items)
      : name_(std::move(name)), items_(std::move(items)) {}

  [[nodiscard]] std::string name() const override { return name_; }
  void name(const std::string& value) override { name_ = value; }
  [[nodiscard]] std::int32_t count() const override;
  [[nodiscard]] player::MediaRef item(std::int32_t index) const override;
  void appendItem(const player::MediaRef& media) override;
  void insertItem(std::int32_t index, const player::MediaRef& media) override;
  /// All of them in their order, at one go; throws as `insertItem`, and nothing is put in then.
  void insertAll(std::int32_t index, const std::vector<player::MediaRef>& media);
  /// This very item, or else the first one with the same source.
  void removeItem(const player::MediaRef& media) override;
  void removeItems(const std::vector<std::int32_t>& places) override;
  void moveItem(std::int32_t oldIndex, std::int32_t newIndex) override;

  /// One watch at a time, or none; it ends before the list or takes itself away.
  void watch(ListWatch* watch) { watch_ = watch; }

 protected:
  /// The items as a list of its own.
  std::vector<player::MediaRef>& own();
  /// Where the item stands that `removeItem` would remove.
  std::size_t placeOf(const player::MediaRef& media);
  [[nodiscard]] std::size_t size() const { return items_ ? items_->size() : tracks_->size(); }
  /// Throws 9 unless the index is below the limit.
  static void check(std::int32_t index, std::size_t limit);
  /// Throws 9 unless there is an item at each of the places and they rise.
  void checkPlaces(const std::vector<std::int32_t>& places) const;

 private:
  void tell(const std::vector<ListStep>& steps) const;

  std::string name_;
  ShelfRef shelf_;
  TrackList tracks_;
  std::optional<std::vector<player::MediaRef>> items_;
  ListWatch* watch_ = nullptr;
};

class ListPlaylistArray : public player::PlaylistArray {
 public:
  explicit ListPlaylistArray(std::vector<player::PlaylistRef> items) : items_(std::move(items)) {}
  [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(items_.size()); }
  [[nodiscard]] player::PlaylistRef item(std::int32_t index) const override;

 private:
  std::vector<player::PlaylistRef> items_;
};

class ListStringCollection : public player::StringCollection {
 public:
  explicit ListStringCollection(std::vector<std::string> items) : items_(std::move(items)) {}
  [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(items_.size()); }
  [[nodiscard]] std::string item(std::int32_t index) const override;

 private:
  std::vector<std::string> items_;
};

}  // namespace engine
