#pragma once
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "standin/fakes/FakePlaylists.hpp"
#include "support/BusPeer.hpp"

namespace support {

/// A script object with a library of its own.
struct FakeLibrary {
  std::map<std::string, std::vector<std::string>> categories;  ///< the groups of "Album", "Genre" ...
  std::map<std::string, std::vector<std::string>> groups;      ///< the titles of "Album/Blue" ...
  std::shared_ptr<FakePlaylists> playlists{};                  ///< behind the raw player; none without it
};

/// A raw player that has the same titles as the script object.
inline std::shared_ptr<FakePlaylists> RawPlayerOf(const FakeLibrary& library) {
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

/// The public script object as far as the tests need it; `note` writes down what it is asked to play.
inline base::ObjectRef MakeFakeScript(const FakeLibrary& library,
                                      std::function<void(const std::string&)> note) {
  using base::Args;
  using base::Member;
  using base::MemberKind;
  using base::Type;
  using base::Value;
  const auto texts = [](const std::vector<std::string>& names) {
    return Value(base::Array(names.begin(), names.end()));
  };
  const auto volume = std::make_shared<std::int16_t>(std::int16_t{50});
  std::vector<Member> members;
  members.push_back({"GetCategoryList",
                     MemberKind::kOperation,
                     {{"CatType", Type::kText}},
                     Type::kTextList,
                     [library, texts, note](Args& args) {
                       const std::string category = base::ToText(args[0]);
                       note("GetCategoryList " + category);
                       if (category == "PlayList" && library.playlists)
                         return texts(library.playlists->lists());
                       if (library.playlists && library.playlists->categories.count(category) != 0)
                         return texts(library.playlists->categories.at(category));
                       const auto found = library.categories.find(category);
                       return found == library.categories.end() ? texts({}) : texts(found->second);
                     }});
  members.push_back({"GetByCategory",
                     MemberKind::kOperation,
                     {{"CatType", Type::kText}, {"CategoryName", Type::kText, Value("")}},
                     Type::kTextList,
                     [library, texts, note](Args& args) {
                       const std::string group = base::ToText(args[0]) + "/" + base::ToText(args[1]);
                       note("GetByCategory " + group);
                       if (library.playlists && base::ToText(args[0]) == "PlayList")
                         return texts(library.playlists->names(base::ToText(args[1])));
                       const auto found = library.groups.find(group);
                       return found == library.groups.end() ? texts({}) : texts(found->second);
                     }});
  members.push_back({"GetMediaInfo",
                     MemberKind::kOperation,
                     {{"CategoryType", Type::kText}, {"CategoryName", Type::kText}, {"Title", Type::kText}},
                     Type::kRecord,
                     [](Args& args) {
                       return Value(base::Record{{"Artist", Value("Joni")},
                                                 {"Album", args[1]},
                                                 {"Genre", Value("Folk")},
                                                 {"Duration", Value(214.5)}});
                     }});
  members.push_back(
      {"Play",
       MemberKind::kOperation,
       {{"CategoryType", Type::kText}, {"CategoryName", Type::kText}, {"Title", Type::kText, Value("")}},
       Type::kInt32,
       [library, note](Args& args) {
         const std::string group = base::ToText(args[0]) + "/" + base::ToText(args[1]);
         note("Play " + group + "/" + base::ToText(args[2]));
         const std::string name = base::ToText(args[1]);
         const bool list = group == "PlayList/" + name && library.playlists && library.playlists->has(name);
         const bool known = list || group == "URL/" || library.groups.find(group) != library.groups.end();
         return Value(std::int32_t{known ? 0 : -1});
       }});
  members.push_back({"Fail", MemberKind::kOperation, {}, Type::kNone, [](Args&) -> Value {
                       throw base::Failure(35601, "Element not found");
                     }});
  const auto raw = RawPlayerOf(library);
  members.push_back(
      {"WMPObject", MemberKind::kReadField, {}, Type::kObject, [raw, player = raw->player()](Args&) {
         return Value(player);
       }});
  members.push_back({"GetAlbumsByCategory",
                     MemberKind::kOperation,
                     {{"CatType", Type::kText}, {"CategoryName", Type::kText}},
                     Type::kTextList,
                     [library, texts, note](Args& args) {
                       const std::string group = base::ToText(args[0]) + "/" + base::ToText(args[1]);
                       note("GetAlbumsByCategory " + group);
                       if (library.playlists && library.playlists->albums.count(group) != 0)
                         return texts(library.playlists->albums.at(group));
                       return texts({});
                     }});
  members.push_back({"Title", MemberKind::kReadField, {}, Type::kText, [](Args&) { return Value("River"); }});
  members.push_back({"artist", MemberKind::kReadField, {}, Type::kText, [](Args&) { return Value("Joni"); }});
  members.push_back({"Album", MemberKind::kReadField, {}, Type::kText, [](Args&) { return Value("Blue"); }});
  members.push_back(
      {"PlayerStatus", MemberKind::kReadField, {}, Type::kText, [](Args&) { return Value("Playing"); }});
  members.push_back({"Volume",
                     MemberKind::kField,
                     {},
                     Type::kInt16,
                     [volume](Args&) { return Value(*volume); },
                     [volume, note](const Value& value) {
                       *volume = base::ToInt16(value);
                       note("Volume " + base::ToText(value));
                     }});
  return std::make_shared<TableOf>("ScriptClass", std::move(members));
}

}  // namespace support
