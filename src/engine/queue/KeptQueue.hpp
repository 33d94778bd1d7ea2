#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/library/Lists.hpp"
#include "player/WMP9.hpp"

/// What an earlier player played, kept in a file: the list, the item, the position.
namespace engine {

/// Where a queue comes from.
enum class QueueKind : std::uint8_t {
  kNothing = 0,  ///< somebody has taken the list away
  kLibrary = 1,  ///< nobody has chosen anything: all that there is
  kList = 2,     ///< the items themselves
  kStored = 3,   ///< a stored playlist; the items are for when it has gone
};

/// The item that is current, and from where in it playing goes on.
struct KeptPlace {
  std::int32_t index = 0;
  std::string source;  ///< as `SourceOf`
  double seconds = 0;

  bool operator==(const KeptPlace&) const = default;
};

/// A queue without its items.
struct KeptName {
  QueueKind kind = QueueKind::kLibrary;
  std::string name;
  std::string path;       ///< of the stored playlist
  std::int64_t mark = 0;  ///< what others know the queue by
};

struct KeptQueue {
  KeptName name;
  std::vector<std::string> items;  ///< as `EncodedItem` makes them
  KeptPlace place;
};

/// An item as it is kept: a track of the library by where it lies alone, other media with all that is known.
std::string EncodedItem(const player::Media& media);

struct DecodedItem {
  std::string location;
  bool track = false;  ///< of the library
  TrackTags tags;      ///< of other media
};
/// Throws 57 for what is no item.
DecodedItem DecodeItem(std::string_view bytes);

/// A whole queue as one record.
std::string EncodedQueue(const KeptQueue& queue);
/// A change of its items; `added` holds those of all steps, in their order.
std::string EncodedEdit(const std::vector<ListStep>& steps, const std::vector<std::string>& added);
std::string EncodedPlace(const KeptPlace& place);

/// Carries out records one by one, the first of them a whole queue. What a record has changed is there as a
/// whole or, if the record throws (57, as it is none that was made here), not to be relied on.
class KeptReplay {
 public:
  /// The bytes must outlive this.
  void apply(std::string_view record);
  /// False before the first record.
  [[nodiscard]] bool any() const { return any_; }
  [[nodiscard]] KeptQueue queue() const;
  /// How many records came after the whole queue.
  [[nodiscard]] int changes() const { return changes_; }

 private:
  bool any_ = false;
  int changes_ = 0;
  KeptName name_;
  std::vector<std::string_view> items_;
  KeptPlace place_;
};

}  // namespace engine
