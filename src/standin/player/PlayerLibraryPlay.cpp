// How the page's titles and groups are played, and how loud.
#include <utility>

#include "base/Failure.hpp"
#include "standin/player/PlayerLibrary.hpp"

namespace standin {
namespace {

void PlaySource(base::Object& script, const std::string& name, const std::string& source) {
  const std::int32_t result = base::ToInt32(script.invoke("Play", "URL", "", source));
  if (result != 0)
    throw base::Failure(base::number::kDeviceIo,
                        "The player could not play “" + name + "” (error " + std::to_string(result) + ")");
}

/// What lies outside of the library has its name and artist from the list alone: played by its address it
/// would be called after that, and who adds it to a playlist would add it under that name.
void PlayRow(PlayerLists& lists, const PlayerList& list, std::int32_t at) {
  const ListedItem item = list.at(at);
  const std::string name = list.name();
  if (lists.findsByName(list, at)) {
    // From then on the title's name leads to how this list spells it.
    lists.script().invoke("GetMediaInfo", "PlayList", name, item.name);
    if (base::ToInt32(lists.script().invoke("Play", "PlayList", name, item.name)) == 0) return;
  }
  if (lists.isInLibrary(item)) return PlaySource(lists.script(), item.name, item.source);
  // What is added to a playlist from now on is looked for in this one.
  lists.script().invoke("Play", "PlayList", name);
  lists.play(list.mediaAt(at));
}

std::int32_t LengthOf(const std::optional<PlayerList>& list) { return list ? list->count() : 0; }

/// Leaves in the list what the artist has in it; a list that answers a question belongs to who has asked.
void KeepOnly(PlayerList& list, const std::string& artist) {
  const std::vector<Title> titles = list.titles(0, list.count());
  std::vector<std::int32_t> others;
  for (std::size_t at = 0; at < titles.size(); ++at)
    if (!IsBy(titles[at], artist)) others.push_back(static_cast<std::int32_t>(at));
  if (!others.empty()) list.removeAll(others);
}

}  // namespace

// The plug-in looks a title up by its name's letters and digits, and takes the first of those; where the
// title lies says which is meant.
void PlayerLibrary::play(const TitleAddress& title, Played played) {
  ask(
      [title](PlayerLists& lists) {
        const PlayerList list = groupOf(lists, title.category, title.group);
        const std::int32_t at = list.placeOf(title);
        if (title.category == "PlayList") return PlayRow(lists, list, at);
        PlaySource(lists.script(), title.name, list.sourceAt(at));
      },
      std::move(played));
}

// The group comes from the plug-in, which remembers it for those who add it to a playlist; that it begins
// with another title is the raw player's doing.
void PlayerLibrary::playOn(const TitleAddress& title, const std::string& by, Played played) {
  ask(
      [title, by](PlayerLists& lists) {
        PlayerList list = groupOf(lists, title.category, title.group);
        if (!by.empty() && title.category != "PlayList") KeepOnly(list, by);
        const std::int32_t at = list.placeOf(title);
        if (title.category != "Media Library") lists.script().invoke("Play", title.category, title.group);
        lists.playFrom(list, at);
      },
      std::move(played));
}

// The plug-in is asked in any case, as it remembers what was played last for those who add it to a playlist.
// Where it has taken the name for another's, or only a part was meant, the right titles follow at once.
void PlayerLibrary::play(const std::string& category, const std::string& group, const std::string& by,
                         Played played) {
  ask(
      [category, group, by](PlayerLists& lists) {
        PlayerList list = groupOf(lists, category, group);
        if (list.count() == 0)
          throw base::Failure(base::number::kElementNotFound, "“" + group + "” has no titles");
        const bool itself = by.empty() && !lists.sharesKey(category, group);
        if (!by.empty() && category != "PlayList") KeepOnly(list, by);
        const std::int32_t result = base::ToInt32(lists.script().invoke("Play", category, group));
        if (!itself || result != 0) lists.play(list);
      },
      std::move(played));
}

// The plug-in adds what was chosen to be played, and says only to the log what has become of it. So the list
// itself is looked at.
void PlayerLibrary::addition(const std::string& list, PluginKeeper::Command work, Added added) {
  const auto title = std::make_shared<std::optional<std::string>>();
  plugin_.command(
      [this, list, title, work = std::move(work)](base::Object& vxif) {
        PlayerLists lists(script());
        const std::int32_t before = LengthOf(lists.find(list));
        work(vxif);
        const std::optional<PlayerList> now = lists.find(list);
        if (const std::int32_t after = LengthOf(now); after > before) *title = now->nameAt(after - 1);
      },
      [this, title, added = std::move(added)](const std::string& failure) {
        if (*title) forget("PlayList");
        added(*title, {failure});
      });
}

void PlayerLibrary::volume(Heard heard) {
  const auto volume = std::make_shared<std::int32_t>(0);
  plugin_.command(
      [this, volume](base::Object&) { *volume = base::ToInt32(script()->get("Volume")); },
      [volume, heard = std::move(heard)](const std::string& failure) { heard(*volume, {failure}); });
}

}  // namespace standin
