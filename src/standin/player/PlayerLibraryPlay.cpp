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

/// Leaves in the list what the artist has in it; a list that answers a question belongs to who has asked.
void KeepOnly(PlayerList& list, const std::string& artist) {
  const std::vector<Title> titles = list.titles(0, list.count());
  for (auto at = static_cast<std::int32_t>(titles.size()) - 1; at >= 0; --at)
    if (!IsBy(titles[static_cast<std::size_t>(at)], artist)) list.removeAt(at);
}

}  // namespace

// The plug-in looks a title up by its name's letters and digits, and takes the first of those; where the
// title lies says which is meant.
void PlayerLibrary::play(const TitleAddress& title, Played played) {
  ask(
      [title](PlayerLists& lists) {
        const PlayerList list = groupOf(lists, title.category, title.group);
        PlaySource(lists.script(), title.name, list.sourceAt(list.placeOf(title)));
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

void PlayerLibrary::volume(Heard heard) {
  const auto volume = std::make_shared<std::int32_t>(0);
  plugin_.command(
      [this, volume](base::Object&) { *volume = base::ToInt32(script()->get("Volume")); },
      [volume, heard = std::move(heard)](const std::string& failure) { heard(*volume, {failure}); });
}

}  // namespace standin
