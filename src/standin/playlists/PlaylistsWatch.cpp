// What others change in the playlists that pages show.
#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/playlists/Playlists.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kLease = std::chrono::seconds(15);
constexpr std::size_t kMostWatchers = 64;

}  // namespace

void Playlists::watch(const std::string& page, const std::string& name) {
  if (!watchers_.contains(page) && watchers_.size() >= kMostWatchers) {
    // The one that has been silent for longest.
    watchers_.erase(std::min_element(
        watchers_.begin(), watchers_.end(),
        [](const auto& left, const auto& right) { return left.second.until < right.second.until; }));
  }
  watchers_[page] = {name, loop_.now() + kLease};
  kept(name);  // in use
  if (!timer_->enabled()) timer_->enabled(true);
}

void Playlists::look() {
  std::erase_if(watchers_, [this](const auto& each) { return each.second.until < loop_.now(); });
  if (watchers_.empty()) {
    timer_->enabled(false);
    listed_.reset();
    return;
  }
  if (looking_ || plugin_.state() != PluginPhase::kReady) return;
  looking_ = true;
  ask(
      [this](PlayerLists& lists, Outcome&) {
        std::set<std::string> names;
        for (const auto& [page, watcher] : watchers_) names.insert(watcher.name);
        for (const std::string& name : names) {
          try {
            if (name.empty()) {
              lookAtNames(lists);
            } else {
              lookAt(lists, name);
            }
          } catch (const base::Failure& failure) {
            // One list that can't be read hides no change of the others.
            if (failure.number() == base::number::kHostGone) throw;
          }
        }
      },
      [this](const Outcome&) { looking_ = false; });
}

void Playlists::lookAtNames(PlayerLists& lists) {
  std::vector<std::string> names;
  const base::Value all = lists.script().invoke("GetCategoryList", "PlayList");
  for (const base::Value& each : all.array()) names.push_back(base::ToText(each));
  if (names == listed_) return;
  // At the first look, too: what has been shown may have been read before it.
  listed_ = std::move(names);
  tellCollection();
}

void Playlists::lookAt(PlayerLists& lists, const std::string& name) {
  const Kept* known = kept(name);
  if (known == nullptr || restoring_.contains(base::LowerCase(name))) return;
  const std::string spelling = known->name;
  const std::int64_t revision = known->revision;
  const std::optional<PlayerList> list = lists.find(spelling);
  if (!list) return followMissing(lists, spelling);
  if (list->revision() != revision) {
    const std::int64_t version = kept(name) != nullptr ? kept(name)->version : 0;
    const Kept& now = keepAsItIs(*list);
    if (now.version != version) tellChanged(now);
  } else if (Kept* still = kept(name)) {
    still->seen = loop_.now();
  }
}

}  // namespace standin
