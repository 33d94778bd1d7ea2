#include "standin/fakes/FakeScript.hpp"

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"
#include "support/BusPeer.hpp"

namespace support {
namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

/// A raw player that has the same titles as the script object.
std::shared_ptr<FakePlaylists> RawPlayerOf(const FakeLibrary& library) {
  auto raw = library.playlists ? library.playlists : std::make_shared<FakePlaylists>();
  for (const auto& [group, names] : library.groups) {
    if (raw->groups.count(group) != 0) continue;
    const std::string album = group.substr(group.find('/') + 1);
    for (const std::string& name : names)
      raw->groups[group].push_back({name,
                                    album + "/" + name,
                                    {{"Artist", "Joni"},
                                     {"WM/AlbumArtist", "Joni"},
                                     {"Album", album},
                                     {"Genre", "Folk"},
                                     {"Duration", "214.5"}}});
  }
  return raw;
}

Value TextsOf(const std::vector<std::string>& names) {
  return Value(base::Array(names.begin(), names.end()));
}

/// What is known by that key; nothing where it isn't.
Value Known(const std::map<std::string, std::vector<std::string>>& all, const std::string& key) {
  const auto found = all.find(key);
  return found == all.end() ? TextsOf({}) : TextsOf(found->second);
}

std::string GroupIn(const Args& args) { return TextAt(args, 0) + "/" + TextAt(args, 1); }

}  // namespace

base::ObjectRef MakeFakeScript(const FakeLibrary& library, std::function<void(const std::string&)> note) {
  const auto categories = [library, note](const Args& args) {
    const std::string category = TextAt(args, 0);
    note("GetCategoryList " + category);
    if (category == "PlayList" && library.playlists) return TextsOf(library.playlists->lists());
    if (library.playlists && library.playlists->categories.contains(category))
      return TextsOf(library.playlists->categories.at(category));
    return Known(library.categories, category);
  };
  const auto titles = [library, note](const Args& args) {
    note("GetByCategory " + GroupIn(args));
    if (library.playlists && TextAt(args, 0) == "PlayList")
      return TextsOf(library.playlists->names(TextAt(args, 1)));
    return Known(library.groups, GroupIn(args));
  };
  const auto albums = [library, note](const Args& args) {
    note("GetAlbumsByCategory " + GroupIn(args));
    return library.playlists ? Known(library.playlists->albums, GroupIn(args)) : TextsOf({});
  };
  const auto play = [library, note](const Args& args) {
    const std::string group = GroupIn(args);
    const std::string name = TextAt(args, 1);
    note("Play " + group + "/" + TextAt(args, 2));
    const bool list = group == "PlayList/" + name && library.playlists && library.playlists->has(name);
    const bool known = list || group == "URL/" || library.groups.contains(group);
    return std::int32_t{known ? 0 : -1};
  };
  const auto facts = [](const Args& args) {
    return base::Record{
        {"Artist", Value("Joni")}, {"Album", args[1]}, {"Genre", Value("Folk")}, {"Duration", Value(214.5)}};
  };
  const auto volume = std::make_shared<std::int16_t>(std::int16_t{50});
  const auto raw = RawPlayerOf(library);
  const std::vector<Param> group{Text("CatType"), Text("CategoryName")};
  return ObjectOf(
      "ScriptClass",
      {Operation("GetCategoryList", {Text("CatType")}, Type::kTextList, categories),
       Operation("GetByCategory", {Text("CatType"), Text("CategoryName", "")}, Type::kTextList, titles),
       Operation("GetAlbumsByCategory", group, Type::kTextList, albums),
       Operation("GetMediaInfo", {Text("CategoryType"), Text("CategoryName"), Text("Title")}, Type::kRecord,
                 facts),
       Operation("Play", {Text("CategoryType"), Text("CategoryName"), Text("Title", "")}, Type::kInt32, play),
       Command("Fail", {}, [] { throw base::Failure(35601, "Element not found"); }),
       ReadField("WMPObject", Type::kObject, [raw, player = raw->player()] { return player; }),
       ReadField("Title", Type::kText, [] { return "River"; }),
       ReadField("artist", Type::kText, [] { return "Joni"; }),
       ReadField("Album", Type::kText, [] { return "Blue"; }),
       ReadField("PlayerStatus", Type::kText, [] { return "Playing"; }),
       Field(
           "Volume", Type::kInt16, [volume] { return *volume; },
           [volume, note](const Value& value) {
             *volume = base::ToInt16(value);
             note("Volume " + base::ToText(value));
           })});
}

}  // namespace support
