#include "standin/player/TitleList.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "base/Text.hpp"
#include "standin/text/Folding.hpp"

namespace standin {
namespace {

bool IsHead(const TitleList::Row& row) { return row.place == TitleList::Row::kHead; }

}  // namespace

TitleList::TitleList(std::vector<Title> titles) : titles_(std::move(titles)) {
  table_.reserve(titles_.size());
  for (const Title& each : titles_) table_.add({each.name, each.artist, each.albumArtist, each.album});
}

std::vector<TitleList::Row> TitleList::rows(const Choice& choice) const {
  std::vector<std::uint32_t> places = table_.find(SoughtWords(choice.sought));
  if (!choice.by.empty())
    std::erase_if(places, [&](std::uint32_t place) { return !IsBy(titles_[place], choice.by); });
  if (choice.byAlbumArtist && areSeveralAlbums()) {
    std::vector<Row> rows = underHeads(places);
    if (!choice.by.empty() && std::count_if(rows.begin(), rows.end(), IsHead) == 1) rows.erase(rows.begin());
    return rows;
  }
  std::vector<Row> rows;
  rows.reserve(places.size());
  for (const std::uint32_t place : places) rows.push_back({.place = static_cast<std::int32_t>(place)});
  return rows;
}

// Titles of one name of an album may be several artists' albums, or one album of several artists that nobody
// has given an album artist: then no number occurs twice.
bool TitleList::areSeveralAlbums() const {
  std::set<std::string> artists;
  std::set<std::int32_t> tracks;
  bool compiled = true;
  for (const Title& each : titles_) {
    artists.insert(base::LowerCase(each.albumArtist));
    compiled =
        compiled && each.track > 0 && each.albumArtist == each.artist && tracks.insert(each.track).second;
  }
  return artists.size() > 1 && !compiled;
}

std::vector<TitleList::Row> TitleList::underHeads(const std::vector<std::uint32_t>& places) const {
  std::map<std::string, std::vector<std::uint32_t>> byArtist;
  for (const std::uint32_t place : places) byArtist[Folded(titles_[place].albumArtist)].push_back(place);
  std::vector<Row> rows;
  for (const auto& [folded, own] : byArtist) {
    rows.push_back({.artist = titles_[own.front()].albumArtist});
    for (const std::uint32_t place : own) rows.push_back({.place = static_cast<std::int32_t>(place)});
  }
  return rows;
}

}  // namespace standin
