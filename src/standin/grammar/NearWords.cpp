#include "standin/grammar/NearWords.hpp"

#include <algorithm>

namespace standin {
namespace {

constexpr int kMostDiffering = 4;
constexpr std::size_t kShortestPart = 3;
/// Names that hold what was said stand behind those that are nearly the same.
constexpr int kHolding = 100;

}  // namespace

NearWords::NearWords(std::string said, std::size_t most)
    : said_(std::move(said)),
      most_(most),
      limit_(std::min(kMostDiffering, static_cast<int>(said_.size() / 3))) {}

void NearWords::look(std::uint32_t number, std::string_view name) {
  int distance = differing(name, limit_);
  if (distance > limit_) {
    if (!holds(name)) return;
    distance = kHolding + static_cast<int>(std::min<std::size_t>(name.size(), 10000) - said_.size());
  }
  const auto same =
      std::find_if(best_.begin(), best_.end(), [&](const auto& each) { return each.first == number; });
  if (same != best_.end()) {
    if (same->second <= distance) return;
    best_.erase(same);
  }
  const auto place = std::upper_bound(best_.begin(), best_.end(), distance,
                                      [](int value, const auto& each) { return value < each.second; });
  best_.insert(place, {number, distance});
  if (best_.size() > most_) best_.pop_back();
}

bool NearWords::holds(std::string_view name) const {
  if (said_.size() < kShortestPart) return false;
  for (std::size_t at = name.find(said_); at != std::string_view::npos; at = name.find(said_, at + 1)) {
    const std::size_t end = at + said_.size();
    if ((at == 0 || name[at - 1] == ' ') && (end == name.size() || name[end] == ' ')) return true;
  }
  return false;
}

int NearWords::differing(std::string_view name, int limit) {
  const auto rows = static_cast<int>(said_.size());
  const auto columns = static_cast<int>(name.size());
  if (limit == 0 || std::abs(rows - columns) > limit) return limit + 1;
  // Only what lies within `limit` of the diagonal can be near enough.
  const int far = limit + 1;
  row_.assign(static_cast<std::size_t>(columns) + 1, far);
  for (int j = 0; j <= std::min(columns, limit); ++j) row_[static_cast<std::size_t>(j)] = j;
  for (int i = 1; i <= rows; ++i) {
    const int first = std::max(1, i - limit);
    const int last = std::min(columns, i + limit);
    int diagonal = row_[static_cast<std::size_t>(first) - 1];
    row_[static_cast<std::size_t>(first) - 1] = first == 1 && i <= limit ? i : far;
    int least = row_[static_cast<std::size_t>(first) - 1];
    for (int j = first; j <= last; ++j) {
      int& here = row_[static_cast<std::size_t>(j)];
      const int above = j == i + limit ? far : here;
      const int changed =
          diagonal +
          (said_[static_cast<std::size_t>(i) - 1] == name[static_cast<std::size_t>(j) - 1] ? 0 : 1);
      diagonal = here;
      here = std::min({changed, above + 1, row_[static_cast<std::size_t>(j) - 1] + 1, far});
      least = std::min(least, here);
    }
    if (least >= far) return far;
  }
  return row_[static_cast<std::size_t>(columns)];
}

}  // namespace standin
