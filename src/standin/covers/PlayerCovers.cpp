#include "standin/covers/PlayerCovers.hpp"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace standin {
namespace {

constexpr const char* kShownCover = "WMPCoverSmall.jpg";  ///< in the text of the album's device
constexpr std::int32_t kMostTitles = 200;                 ///< of an album, to look for its picture in
constexpr int kMostPictures = 20;

std::string InfoOf(base::Object& media, const char* attribute) {
  return base::ToText(media.invoke("getItemInfo", attribute));
}

std::vector<std::string> MarksOf(const PlayerList& album) {
  std::vector<std::string> marks;
  const base::Value told =
      base::Deref(album.object()).invoke("readItems", base::Array{"pictureMark"}, 0, kMostTitles);
  for (const base::Value& mark : told.array()) marks.push_back(base::ToText(mark));
  return marks;
}

/// True when the looking has come to its end: with this picture.
bool Takes(const base::ObjectRef& media, const std::string& mark, const PlayerCovers::Known& known,
           FoundCover& found) {
  if (mark.empty()) return false;
  const std::optional<std::string> key = known(mark);
  if (key && key->empty()) return false;
  found.mark = mark;
  if (key)
    found.key = *key;
  else
    found.bytes = base::ToText(base::Deref(media).get("pictureBytes"));
  return true;
}

}  // namespace

PlayerCovers::PlayerCovers(bus::Connection& connection, PluginKeeper& plugin, House& house,
                           PluginKeeper::Address address)
    : connection_(connection), plugin_(plugin), house_(house), address_(std::move(address)) {}

void PlayerCovers::find(const CoverWish& wish, Known known, Found found) {
  const auto result = std::make_shared<FoundCover>();
  result->album = wish.album;
  result->artist = wish.artist;
  // Who waits for a plug-in that hangs keeps a place that others need.
  if (plugin_.state() != PluginPhase::kReady || plugin_.stuck()) return found(std::move(*result));
  plugin_.command(
      [this, wish, known = std::move(known), result](base::Object&) { look(wish, known, *result); },
      [result, found = std::move(found)](const std::string& failure) {
        if (!failure.empty()) result->mark.clear();
        found(std::move(*result));
      });
}

void PlayerCovers::look(const CoverWish& wish, const Known& known, FoundCover& found) {
  PlayerLists lists(connection_.proxy(address_.name, "/scriptclass"));
  if (wish.playing) {
    const base::ObjectRef player = base::ToObject(lists.script().get("WMPObject"));
    const base::ObjectRef media = base::ToObject(base::Deref(player).get("currentMedia"));
    if (!media) return;
    found.title = base::ToText(media->get("name"));
    found.item = MarkOf(found.title, base::ToText(media->get("sourceURL")));
    found.album = InfoOf(*media, "Album");
    found.artist = InfoOf(*media, "WM/AlbumArtist");
    if (Takes(media, base::ToText(media->get("pictureMark")), known, found)) return;
    const auto& devices = house_.devices.all();
    found.elsewhere = std::any_of(devices.begin(), devices.end(), [&](const auto& each) {
      const Device& device = each.second;
      return device.interface == plugin_.name() && device.fullName().ends_with(" Album") &&
             device.text.find(kShownCover) != std::string::npos;
    });
    return;
  }
  const std::optional<PlayerList> album = lists.group("Album", wish.album);
  if (!album || !album->object()) return;
  const std::vector<Title> titles = album->titles(0, kMostTitles);
  const std::vector<std::string> marks = MarksOf(*album);
  const std::size_t count = std::min(titles.size(), marks.size());
  const auto fits = [&](std::size_t at) { return wish.artist.empty() || IsBy(titles[at], wish.artist); };
  bool any = false;
  for (std::size_t at = 0; at < count && !any; ++at) any = fits(at);
  int seen = 0;
  std::string last;
  for (std::size_t at = 0; at < count && seen < kMostPictures; ++at) {
    // An artist who isn't there is no reason to show nothing of the album.
    if ((any && !fits(at)) || marks[at] == last) continue;
    last = marks[at];
    ++seen;
    if (Takes(album->mediaAt(static_cast<std::int32_t>(at)), last, known, found)) return;
  }
}

std::filesystem::path PlayerCovers::lastFound() const {
  return house_.htmlFolder() / "images" / "Media Player" / "WMPCoverLarge.jpg";
}

}  // namespace standin
