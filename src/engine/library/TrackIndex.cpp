#include "engine/library/TrackIndex.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/Text.hpp"

namespace engine {
namespace {

const TrackList kNoTracks = std::make_shared<const std::vector<TrackId>>();

/// Texts as they are ordered: without regard to case, and by their own letters where that makes no
/// difference.
struct Folded {
  explicit Folded(std::string_view text) : folded(base::LowerCase(text)), letters(text) {}
  bool operator<(const Folded& other) const {
    return std::tie(folded, letters) < std::tie(other.folded, other.letters);
  }
  std::string folded;
  std::string_view letters;
};

/// Compares artists and albums by the place of their numbers in that order, found once for all of them.
class Ranks {
 public:
  explicit Ranks(const TrackTable& table) : ranks_(table.texts(), 0) {
    std::vector<std::pair<Folded, StringPool::Id>> order;
    for (TrackId id = 0; id < table.rows(); ++id) {
      const Track& row = table.row(id);
      if (!row.present) continue;
      for (const auto text : {row.artist, row.album}) {
        if (std::exchange(ranks_[text], 1) == 0) order.emplace_back(Folded(table.text(text)), text);
      }
    }
    std::sort(order.begin(), order.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    for (std::uint32_t place = 0; place < order.size(); ++place) ranks_[order[place].second] = place;
  }
  [[nodiscard]] std::uint32_t of(StringPool::Id text) const { return ranks_[text]; }

 private:
  std::vector<std::uint32_t> ranks_;
};

/// A track's place by artist, album, disc and number.
struct Placed {
  std::uint64_t names = 0;
  std::uint32_t numbers = 0;
  TrackId id = 0;

  [[nodiscard]] bool beside(const Placed& other) const {
    return names == other.names && numbers == other.numbers;
  }
  bool operator<(const Placed& other) const {
    return std::tie(names, numbers) < std::tie(other.names, other.numbers);
  }
};

/// Orders tracks that share their place by title and path.
void OrderByTitle(const TrackTable& table, Placed* begin, Placed* end) {
  if (end - begin < 2) return;
  std::vector<std::tuple<Folded, Folded, Folded, Placed>> order;
  order.reserve(static_cast<std::size_t>(end - begin));
  for (const Placed* each = begin; each != end; ++each) {
    const Track& row = table.row(each->id);
    order.emplace_back(Folded(table.text(row.title)), Folded(table.text(row.folder)),
                       Folded(table.text(row.file)), *each);
  }
  std::sort(order.begin(), order.end());
  for (const auto& each : order) *begin++ = std::get<Placed>(each);
}

std::string SingleQuotes(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    result += text[i];
    if (text[i] == '"' && i + 1 < text.size() && text[i + 1] == '"') ++i;
  }
  return result;
}

}  // namespace

void TrackIndex::refresh() {
  if (revision_ == table_.revision()) return;
  revision_ = table_.revision();
  groups_.clear();
  std::vector<Placed> order;
  order.reserve(table_.count());
  const Ranks ranks(table_);
  for (TrackId id = 0; id < table_.rows(); ++id) {
    const Track& row = table_.row(id);
    if (!row.present) continue;
    order.push_back({(std::uint64_t{ranks.of(row.artist)} << 32U) | ranks.of(row.album),
                     (std::uint32_t{row.disc} << 16U) | row.track, id});
  }
  std::sort(order.begin(), order.end());
  // Most tracks have their place for themselves; only of the others are the titles asked.
  for (std::size_t begin = 0, end = 0; begin < order.size(); begin = end) {
    while (end < order.size() && order[end].beside(order[begin])) ++end;
    OrderByTitle(table_, order.data() + begin, order.data() + end);
  }
  auto ids = std::make_shared<std::vector<TrackId>>();
  ids->reserve(order.size());
  for (const Placed& entry : order) ids->push_back(entry.id);
  all_ = std::move(ids);
}

TrackList TrackIndex::all() {
  refresh();
  return all_;
}

const TrackIndex::Groups& TrackIndex::groups(Attribute attribute) {
  refresh();
  const auto [place, fresh] = groups_.try_emplace(attribute);
  Groups& groups = place->second;
  if (!fresh) return groups;
  for (const TrackId id : *all_) {
    const std::string value = AttributeText(table_, id, attribute);
    if (value.empty()) continue;
    auto& group = groups[base::LowerCase(value)];
    if (!group) group = std::make_shared<std::vector<TrackId>>();
    group->push_back(id);
  }
  if (attribute == Attribute::kAlbum) {
    // Within an album the order is the disc's, whoever plays: the order by artist stands only as a last word.
    const auto byDisc = [&](TrackId left, TrackId right) {
      const Track& a = table_.row(left);
      const Track& b = table_.row(right);
      if (a.disc != b.disc) return a.disc < b.disc;
      if (a.track != b.track) return a.track < b.track;
      return base::LowerCase(table_.text(a.title)) < base::LowerCase(table_.text(b.title));
    };
    for (auto& group : groups) std::stable_sort(group.second->begin(), group.second->end(), byDisc);
  }
  return groups;
}

TrackList TrackIndex::byName(const std::string& name) { return byAttribute(Attribute::kTitle, name); }

TrackList TrackIndex::byAttribute(Attribute attribute, const std::string& value) {
  if (attribute == Attribute::kUnknown) return kNoTracks;
  const Groups& known = groups(attribute);
  const std::string key = base::LowerCase(value);
  auto found = known.find(key);
  if (found == known.end()) found = known.find(SingleQuotes(key));
  return found != known.end() ? TrackList(found->second) : kNoTracks;
}

std::vector<std::string> TrackIndex::values(Attribute attribute, const std::string& mediaType) {
  std::vector<std::pair<std::string, std::string>> order;
  if (attribute == Attribute::kUnknown) return {};
  const std::string type = base::LowerCase(mediaType);
  const bool any = type.empty() || type == "all";
  if (!any && type != "audio" && type != "video") return {};
  const MediaKind kind = type == "video" ? MediaKind::kVideo : MediaKind::kAudio;
  for (const auto& [folded, ids] : groups(attribute)) {
    std::string spelling;
    for (const TrackId id : *ids) {
      if (!any && table_.row(id).kind != kind) continue;
      std::string value = AttributeText(table_, id, attribute);
      if (spelling.empty() || value < spelling) spelling = std::move(value);
    }
    if (!spelling.empty()) order.emplace_back(folded, std::move(spelling));
  }
  std::sort(order.begin(), order.end());
  std::vector<std::string> values;
  values.reserve(order.size());
  for (auto& entry : order) values.push_back(std::move(entry.second));
  return values;
}

}  // namespace engine
