#include "standin/player/LibrarySearch.hpp"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "standin/text/Folding.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kGood = std::chrono::seconds(30);
// Between two pieces others get their turn with the player.
constexpr std::size_t kPiece = 4000;
constexpr const char* kTitles = "Media Library";
constexpr std::array kCategories{"Artist", "Album", kTitles, "Genre", "PlayList"};

bool HoldsAll(const Title& title, const std::vector<std::string>& words) {
  SearchTable table;
  table.add({title.name, title.artist, title.albumArtist, title.album});
  return !table.find(words).empty();
}

}  // namespace

struct LibrarySearch::Gathering {
  Query query;
  FoundAll found;
  std::vector<Group> groups{};
};

void LibrarySearch::everywhere(const Query& query, FoundAll found) {
  gather(std::make_shared<Gathering>(Gathering{query, std::move(found)}));
}

void LibrarySearch::gather(const std::shared_ptr<Gathering>& gathering) {
  if (gathering->groups.size() == kCategories.size())
    return gathering->found(std::move(gathering->groups), {});
  const std::string category = kCategories.at(gathering->groups.size());
  const Query& query = gathering->query;
  const auto take = [this, gathering](Group group, const Failed& failed) {
    if (!failed.text.empty()) return gathering->found({}, failed);
    gathering->groups.push_back(std::move(group));
    gather(gathering);
  };
  if (category == kTitles) return titles(query, take);
  library_.list(category, query.fresh,
                [take, query, category](const std::shared_ptr<const NameList>& list, const Failed& failed) {
                  if (!list) return take({}, failed);
                  NameList::Page page = list->page(query.sought, query.offset, query.limit);
                  take({category, page.total, std::move(page.names), std::move(page.places)}, {});
                });
}

void LibrarySearch::titles(const Query& query, Found found) {
  prepare(query.fresh, [this, query, found = std::move(found)](const Failed& failed) {
    if (!table_) return found({}, failed);
    show(query, true, found);
  });
}

void LibrarySearch::show(const Query& query, bool again, const Found& found) {
  const std::vector<std::string> words = SoughtWords(query.sought);
  const std::vector<std::uint32_t> all = table_->find(words);
  Group group{kTitles, all.size()};
  for (std::size_t i = query.offset; i < all.size() && group.places.size() < query.limit; ++i)
    group.places.push_back(all[i]);
  const std::vector<std::size_t> places = group.places;
  library_.titlesAt(kTitles, {}, places,
                    [this, query, again, found, words, group = std::move(group)](
                        std::vector<Title> titles, const Failed& failed) mutable {
                      if (!failed.text.empty()) return found({}, failed);
                      const bool asFound = std::all_of(titles.begin(), titles.end(), [&](const Title& each) {
                        return !each.source.empty() && HoldsAll(each, words);
                      });
                      // The library is another by now.
                      if (!asFound && again)
                        return prepare(true, [this, query, found](const Failed& late) {
                          if (!table_) return found({}, late);
                          show(query, false, found);
                        });
                      for (const Title& each : titles) group.names.push_back(each.name);
                      group.titles = std::move(titles);
                      found(std::move(group), {});
                    });
}

void LibrarySearch::prepare(bool fresh, const Ready& ready) {
  const bool none = !table_ || fresh;
  if (!none && loop_.now() - since_ < kGood) return ready({});
  if (none) waiting_.push_back(ready);
  if (!reading_) {
    reading_ = true;
    readOn(std::make_shared<SearchTable>());
  }
  if (!none) ready({});
}

void LibrarySearch::readOn(std::shared_ptr<SearchTable> table) {
  std::vector<std::size_t> places(kPiece);
  std::iota(places.begin(), places.end(), table->size());
  library_.titlesAt(kTitles, {}, std::move(places),
                    [this, table = std::move(table)](const std::vector<Title>& titles, const Failed& failed) {
                      if (!failed.text.empty()) return prepared(nullptr, failed);
                      for (const Title& each : titles) {
                        if (each.source.empty()) return prepared(table, {});
                        table->add({each.name, each.artist, each.albumArtist, each.album});
                      }
                      readOn(table);
                    });
}

void LibrarySearch::prepared(std::shared_ptr<SearchTable> table, const Failed& failed) {
  if (table) {
    table_ = std::move(table);
    since_ = loop_.now();
  }
  reading_ = false;
  for (const Ready& each : std::exchange(waiting_, {})) each(failed);
}

}  // namespace standin
