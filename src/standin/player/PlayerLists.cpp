#include "standin/player/PlayerLists.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

/// Names of playlists are one line of plain text.
const std::string kQueue = "\x1Fqueue";

/// The letters and digits of a name, as the plug-in's keys have them.
std::string KeyOf(const std::string& name) {
  std::string key;
  for (const char c : base::LowerCase(name)) {
    const bool kept = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z');
    if (kept || (!key.empty() && key.back() != ' ')) key += kept ? c : ' ';
  }
  if (!key.empty() && key.back() == ' ') key.pop_back();
  return key;
}

std::string WithSingleBlanks(const std::string& name) {
  std::string out;
  for (const char c : name)
    if (c != ' ' || out.empty() || out.back() != ' ') out += c;
  return out;
}

std::int32_t CountOf(const base::ObjectRef& object) {
  return base::ToInt32(base::Deref(object).get("count"));
}

base::ObjectRef ItemOf(const base::ObjectRef& object, std::int32_t at) {
  return base::ToObject(base::Deref(object).invoke("item", at));
}

std::string TextOf(const base::ObjectRef& object, const char* field) {
  return base::ToText(base::Deref(object).get(field));
}

/// As a page shows the name: in one that is no UTF-8 the odd bytes have become a sign.
bool IsShownAs(const std::string& name, const std::string& shown) {
  return name == shown || WithSingleBlanks(name) == shown || base::RepairUtf8(name) == shown;
}

bool MayBeShownAsAnother(const std::string& name) {
  constexpr std::string_view kOddByte = "\uFFFD";
  return name.find(' ') != std::string::npos || name.find(kOddByte) != std::string::npos;
}

std::vector<std::string> TextsOf(const base::Value& value) {
  std::vector<std::string> texts;
  if (!value.is<std::shared_ptr<const base::Array>>()) return texts;
  for (const base::Value& each : value.array()) texts.push_back(base::ToText(each));
  return texts;
}

/// Gives `take` the texts of each item, by the place of the field.
template <class Take>
void ReadItems(const base::ObjectRef& list, const base::Array& fields, std::int32_t from, std::int32_t count,
               Take&& take) {
  constexpr std::int32_t kAtOnce = 2000;
  while (count > 0) {
    const base::Value answer = base::Deref(list).invoke("readItems", fields, from, std::min(count, kAtOnce));
    const base::Array& texts = answer.array();
    const auto read = static_cast<std::int32_t>(texts.size() / fields.size());
    for (std::size_t i = 0; i + fields.size() <= texts.size(); i += fields.size())
      take([&](std::size_t field) { return base::ToText(texts[i + field]); });
    if (read == 0) break;
    from += read;
    count -= read;
  }
}

}  // namespace

std::string QueueName(std::int64_t mark) { return kQueue + (mark == 0 ? "" : " " + std::to_string(mark)); }
bool IsQueue(const std::string& name) { return name.starts_with(kQueue); }

std::string PlayerList::name() const { return called_.empty() ? TextOf(object_, "name") : called_; }
std::int32_t PlayerList::count() const { return CountOf(object_); }
base::ObjectRef PlayerList::mediaAt(std::int32_t at) const { return ItemOf(object_, at); }
std::string PlayerList::nameAt(std::int32_t at) const { return TextOf(mediaAt(at), "name"); }
std::string PlayerList::sourceAt(std::int32_t at) const { return TextOf(mediaAt(at), "sourceURL"); }

ListedItem PlayerList::at(std::int32_t at) const {
  const std::vector<Title> here = at < 0 ? std::vector<Title>() : titles(at, 1);
  if (here.empty()) throw base::Failure(base::number::kIndex);
  return ListedItem(here.front());
}

std::vector<Title> PlayerList::titles(std::int32_t from, std::int32_t count) const {
  std::vector<Title> titles;
  ReadItems(object_,
            {"name", "sourceURL", "Artist", "WM/AlbumArtist", "Album", "Genre", "WM/TrackNumber", "Duration"},
            from, count, [&](const auto& text) {
              titles.push_back({text(0), text(1), text(2), text(3), text(4), text(5),
                                static_cast<std::int32_t>(std::clamp(base::NumericPrefix(text(6)), 0.0, 1e6)),
                                base::NumericPrefix(text(7))});
            });
  return titles;
}

std::vector<std::string> PlayerList::names(std::int32_t from, std::int32_t count) const {
  std::vector<std::string> names;
  ReadItems(object_, {"name"}, from, count, [&](const auto& text) { names.push_back(text(0)); });
  return names;
}

std::int64_t PlayerList::revision() const {
  return static_cast<std::int64_t>(base::ToDouble(base::Deref(object_).get("revision")));
}

void PlayerList::insert(std::int32_t at, const std::vector<ListedItem>& items) {
  base::Array texts;
  for (const ListedItem& item : items) {
    texts.emplace_back(item.source);
    texts.emplace_back(item.name);
    texts.emplace_back(item.artist);
    texts.emplace_back(item.seconds > 0 ? std::to_string(item.seconds) : std::string());
  }
  object_->invoke("insertItems", at, base::Array{"sourceURL", "name", "Artist", "Duration"}, texts);
}

std::int32_t PlayerList::placeOf(const TitleAddress& title) const {
  const auto isIt = [&](const Title& each) { return MarkOf(each.name, each.source) == title.mark; };
  if (title.at >= 0) {
    const std::vector<Title> here = titles(title.at, 1);
    if (!here.empty() && isIt(here.front())) return title.at;
  }
  const auto away = [&](std::int32_t at) { return std::abs(std::int64_t{at} - title.at); };
  const std::vector<Title> all = titles(0, count());
  std::optional<std::int32_t> nearest;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto at = static_cast<std::int32_t>(i);
    if (isIt(all[i]) && (!nearest || away(at) < away(*nearest))) nearest = at;
  }
  if (!nearest)
    throw base::Failure(base::number::kChangedMeanwhile,
                        "“" + title.name + "” is no longer there: the list has changed");
  return *nearest;
}

void PlayerList::removeAll(const std::vector<std::int32_t>& places) {
  object_->invoke("removeItems", base::Array(places.begin(), places.end()));
}

void PlayerList::move(std::int32_t from, std::int32_t to) { object_->invoke("moveItem", from, to); }
void PlayerList::rename(const std::string& name) { object_->put("name", base::Value(name)); }

PlayerLists::PlayerLists(base::ObjectRef script) : script_(std::move(script)) {
  player_ = base::ToObject(script_->get("WMPObject"));
  // Before its library is open the player hands out nothing.
  if (!player_) throw base::Failure(base::number::kObjectMissing, "The player isn't ready yet");
}

base::ObjectRef PlayerLists::playlists() {
  if (!playlists_) playlists_ = base::ToObject(player_->get("playlistCollection"));
  base::Deref(playlists_);
  return playlists_;
}

base::ObjectRef PlayerLists::media() {
  if (!media_) media_ = base::ToObject(player_->get("mediaCollection"));
  base::Deref(media_);
  return media_;
}

base::ObjectRef PlayerLists::part(const char* name) const {
  base::ObjectRef found = base::ToObject(player_->get(name));
  base::Deref(found);
  return found;
}

PlayerList PlayerLists::queue() {
  const auto mark = static_cast<std::int64_t>(base::ToDouble(player_->get("queueMark")));
  return PlayerList(part("queue"), QueueName(mark));
}

std::int32_t PlayerLists::queuePlace() { return base::ToInt32(player_->get("queuePlace")); }

std::optional<PlayerList> PlayerLists::find(const std::string& name) {
  if (IsQueue(name)) {
    PlayerList now = queue();
    if (name == kQueue || name == now.name()) return now;
    return std::nullopt;  // something else has been chosen since
  }
  const base::ObjectRef found = base::ToObject(playlists()->invoke("getByName", name));
  const std::int32_t count = CountOf(found);
  for (std::int32_t i = 0; i < count; ++i) {
    PlayerList list(ItemOf(found, i));
    if (count == 1 || list.name() == name) return list;
  }
  if (count > 0) return PlayerList(ItemOf(found, 0));
  if (!MayBeShownAsAnother(name)) return std::nullopt;
  const base::ObjectRef all = base::ToObject(playlists()->call("getAll"));
  for (std::int32_t i = 0, end = CountOf(all); i < end; ++i) {
    PlayerList list(ItemOf(all, i));
    if (IsShownAs(list.name(), name)) return list;
  }
  return std::nullopt;
}

PlayerList PlayerLists::make(const std::string& name) {
  PlayerList made(base::ToObject(playlists()->invoke("newPlaylist", name)));
  base::Deref(made.object());
  return made;
}

void PlayerLists::remove(const PlayerList& list) { playlists()->invoke("remove", list.object()); }

// The plug-in finds a group by the key of its name, so that of two lists with one key it may mean the other.
bool PlayerLists::sharesKey(const std::string& category, const std::string& name) {
  const std::string key = KeyOf(name);
  const std::vector<std::string> all = TextsOf(script_->invoke("GetCategoryList", category));
  return std::count_if(all.begin(), all.end(), [&](const std::string& each) { return KeyOf(each) == key; }) !=
         1;
}

bool PlayerLists::findsByName(const PlayerList& list, std::int32_t at) {
  const std::vector<std::string> names = list.names(0, list.count());
  const std::string& name = names.at(static_cast<std::size_t>(at));
  // The plug-in doubles quotes in what it looks up, and an empty title means the whole list.
  if (name.empty() || name.find('"') != std::string::npos) return false;
  const std::string key = KeyOf(name);
  const auto taken = [&](const std::string& each) {
    return key.empty() ? base::SameText(each, name) : KeyOf(each) == key;
  };
  return std::count_if(names.begin(), names.end(), taken) == 1 && !sharesKey("PlayList", list.name());
}

bool PlayerLists::isInLibrary(const ListedItem& item) {
  const PlayerList named(base::ToObject(media()->invoke("getByName", item.name)));
  const std::vector<Title> titles = named.titles(0, named.count());
  return std::any_of(titles.begin(), titles.end(),
                     [&](const Title& each) { return each.source == item.source; });
}

std::optional<PlayerList> PlayerLists::group(const std::string& category, const std::string& name) {
  if (base::SameText(category, "PlayList")) return find(name);
  if (base::SameText(category, "Media Library")) return PlayerList(base::ToObject(media()->call("getAll")));
  const auto groupOf = [&](const std::string& value) {
    return PlayerList(base::ToObject(media()->invoke("getByAttribute", category, value)));
  };
  if (PlayerList found = groupOf(name); found.object() && found.count() > 0) return found;
  if (!MayBeShownAsAnother(name)) return std::nullopt;
  // All names in one call: asked for one by one, a name that nobody has would hold up everybody else.
  for (const std::string& value : TextsOf(script_->invoke("GetCategoryList", category)))
    if (value != name && IsShownAs(value, name)) return groupOf(value);
  return std::nullopt;
}

std::vector<std::string> PlayerLists::artistsOf(const std::vector<std::string>& albums) {
  base::Array names(albums.begin(), albums.end());
  std::vector<std::string> artists =
      TextsOf(media()->invoke("readFirst", "Album", names, base::Array{"WM/AlbumArtist", "Artist"}));
  std::vector<std::string> of;
  for (std::size_t i = 0; i + 1 < artists.size(); i += 2)
    of.push_back(std::move(artists[artists[i].empty() ? i + 1 : i]));
  of.resize(albums.size());
  return of;
}

void PlayerLists::play(const PlayerList& list) {
  player_->put("currentPlaylist", list.object());
  base::Deref(player_->get("controls")).call("play");
}

void PlayerLists::playFrom(const PlayerList& list, std::int32_t at) {
  player_->invoke("playFrom", list.object(), at);
}

void PlayerLists::play(const base::ObjectRef& media) {
  player_->put("currentMedia", media);
  base::Deref(player_->get("controls")).call("play");
}

}  // namespace standin
