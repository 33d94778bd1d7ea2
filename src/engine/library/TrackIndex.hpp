#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/library/Attributes.hpp"
#include "engine/library/TrackTable.hpp"

namespace engine {

/// Track numbers in their order, shared between everybody who asked the same.
using TrackList = std::shared_ptr<const std::vector<TrackId>>;

/// The library by name and by attribute. Each index is built at its first use after a change.
///
/// Values compare without regard to case, and a doubled double quote in what is asked for also finds a single
/// one, as queries are written that way.
class TrackIndex {
 public:
  explicit TrackIndex(const TrackTable& table) : table_(table) {}

  /// All tracks by artist, album, disc, number and name.
  TrackList all();
  TrackList byName(const std::string& name);
  /// An album by disc, number and name; everything else by artist, album, disc, number and name.
  TrackList byAttribute(Attribute attribute, const std::string& value);
  /// The distinct values among the media of that type ("" or "all" for every type), in case-folded order.
  std::vector<std::string> values(Attribute attribute, const std::string& mediaType);

 private:
  using Groups = std::unordered_map<std::string, std::shared_ptr<std::vector<TrackId>>>;

  void refresh();
  const Groups& groups(Attribute attribute);

  const TrackTable& table_;
  std::uint64_t revision_ = 0;
  TrackList all_;
  std::map<Attribute, Groups> groups_;
};

}  // namespace engine
