#include "engine/library/TrackIndex.hpp"

#include <algorithm>
#include <array>
#include <tuple>

#include "base/Text.hpp"

namespace engine {
namespace {

const TrackList kNoTracks = std::make_shared<const std::vector<TrackId>>();

/// Compares texts by the place of their numbers in the case-folded order, found once for all of them.
class Ranks {
 public:
  explicit Ranks(const TrackTable& table) : ranks_(table.texts(), 0) {
    std::vector<bool> used(table.texts(), false);
    for (TrackId id = 0; id < table.rows(); ++id) {
      const Track& row = table.row(id);
      if (!row.present) continue;
      for (const auto text : {row.title, row.artist, row.album, row.folder, row.file}) used[text] = true;
    }
    std::vector<std::pair<std::string, StringPool::Id>> order;
    for (StringPool::Id id = 0; id < used.size(); ++id) {
      if (used[id]) order.emplace_back(base::LowerCase(table.text(id)), id);
    }
    std::sort(order.begin(), order.end(), [&](const auto& left, const auto& right) {
      return std::tie(left.first) < std::tie(right.first) ||
             (left.first == right.first && table.text(left.second) < table.text(right.second));
    });
    for (std::uint32_t place = 0; place < order.size(); ++place) ranks_[order[place].second] = place + 1;
  }

  [[nodiscard]] auto key(const Track& row) const {
    return std::array<std::uint32_t, 7>{ranks_[row.artist], ranks_[row.album],  row.disc,        row.track,
                                        ranks_[row.title],  ranks_[row.folder], ranks_[row.file]};
  }

 private:
  std::vector<std::uint32_t> ranks_;
};

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
  std::vector<std::pair<std::array<std::uint32_t, 7>, TrackId>> order;
  order.reserve(table_.count());
  const Ranks ranks(table_);
  for (TrackId id = 0; id < table_.rows(); ++id) {
    if (table_.row(id).present) order.emplace_back(ranks.key(table_.row(id)), id);
  }
  std::sort(order.begin(), order.end());
  auto ids = std::make_shared<std::vector<TrackId>>();
  ids->reserve(order.size());
  for (const auto& entry : order) ids->push_back(entry.second);
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
