#include <algorithm>
#include <array>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "script/ScriptClass.hpp"

// What the script object's longer operations do; its table is in ScriptClass.cpp.
namespace script {

using base::Attempt;
using base::Value;

namespace {

/// The words that an operation takes, in the system's own spelling. Answers that of `word`, or null.
template <std::size_t N>
const char* OneOf(const std::array<const char*, N>& words, const std::string& word) {
  const auto* found = std::find_if(words.begin(), words.end(),
                                   [&](const char* known) { return base::SameText(known, word); });
  return found == words.end() ? nullptr : *found;
}

constexpr std::array kNamed{"PlayList", "Genre", "Artist", "Album"};
constexpr std::array kListed{"Media Library", "Artist", "Album", "Genre", "PlayList"};
constexpr std::array kWithAlbums{"Artist", "Album", "PlayList"};

player::MediaRef Member(const player::Playlist& playlist, std::int32_t index) {
  player::MediaRef media = playlist.item(index);
  if (!media) throw base::Failure(base::number::kObjectMissing);
  return media;
}

std::int32_t CountOf(const player::PlaylistRef& playlist) {
  std::int32_t count = 0;
  Attempt step;
  step([&] { count = playlist ? playlist->count() : 0; });
  return count;
}

Value TextsOf(const base::TextList& list) { return base::Array(list.begin(), list.end()); }

}  // namespace

std::int32_t ScriptClass::Play(const std::string& CategoryType, const std::string& CategoryName,
                               const std::string& Title) {
  constexpr std::int32_t kNoSuchCategory = -1;
  if (OneOf(kNamed, CategoryType) != nullptr) return in_.library.WMPPlay(CategoryType, CategoryName, Title);
  if (base::SameText(CategoryType, "URL")) return in_.library.WMPPlay("URL", "", Title);
  if (base::SameText(CategoryType, "Media Library")) return in_.library.WMPPlay("Media Library", "", Title);
  return kNoSuchCategory;
}

Value ScriptClass::GetCategoryList(const std::string& CatType) {
  auto list = std::make_shared<base::TextList>();
  Attempt step;
  if (OneOf(kListed, CatType) != nullptr)
    in_.catalogue.GetGroupList(CatType, list, "");
  else
    step([&] {
      in_.host.WriteLog(
          "Error",
          "Media Player : GetCategoryList argument must be: Media Library, Artist, Album, Genre, "
          "PlayList");
    });
  return TextsOf(*list);
}

Value ScriptClass::GetByCategory(const std::string& CatType, const std::string& CategoryName) {
  base::Array titles;
  player::PlaylistRef playlist;
  if (in_.catalogue.GetGroupItems(CatType, CategoryName, playlist) != catalogue::kDone) return titles;
  Attempt step;
  const std::int32_t count = CountOf(playlist);
  for (std::int32_t i = 0; i < count; ++i) {
    step([&] { titles.emplace_back(Member(*playlist, i)->name()); });
    if (catalogue::YieldsAt(i)) step([&] { in_.host.WaitEvents(); });
  }
  return titles;
}

base::Record ScriptClass::GetMediaInfo(const std::string& CategoryType, const std::string& CategoryName,
                                       std::string Title) {
  player::PlaylistRef playlist;
  player::MediaRef item;
  in_.catalogue.GetGroupItems(CategoryType, CategoryName, playlist);
  in_.catalogue.GetMediaItem(Title, playlist, item);
  return MediaInfoOf(item);
}

base::Record ScriptClass::MediaInfoOf(const player::MediaRef& item) {
  base::Record record;
  Attempt step;
  const auto add = [&](const char* key, auto&& read) {
    Value value = "";
    step([&] {
      if (!item) throw base::Failure(base::number::kObjectMissing);
      value = read();
    });
    record.emplace_back(key, std::move(value));
  };
  for (const char* key : {"Artist", "Album", "Genre"}) add(key, [&] { return item->getItemInfo(key); });
  add("Duration", [&] { return item->duration(); });
  return record;
}

bool ScriptClass::RefreshLists(const std::string& CatType) {
  const char* category = OneOf(kNamed, CatType);
  if (category == nullptr) return false;
  Attempt step;
  step([&] { in_.mediaEvents.UpdateMediaEvents(category); });
  return true;
}

Value ScriptClass::GetAlbumsByCategory(const std::string& CatType, const std::string& CategoryName) {
  player::PlaylistRef playlist;
  if (OneOf(kWithAlbums, CatType) != nullptr) in_.catalogue.GetGroupItems(CatType, CategoryName, playlist);
  base::TextList albums;
  std::string last;  // saves the work for runs of one album
  Attempt step;
  const std::int32_t count = CountOf(playlist);
  for (std::int32_t i = 0; i < count; ++i) {
    std::string album;
    step([&] { album = Member(*playlist, i)->getItemInfo("WM/AlbumTitle"); });
    if (album.empty() || album == last) continue;
    // Its key turns a later repeat away.
    step([&] { albums.add(album, album); });
    last = album;
  }
  return TextsOf(albums);
}

Value ScriptClass::AddToPlayList(const std::string& sPlayListName) {
  return in_.calls.IsPlaying() ? in_.library.AddMediaToPlayList(sPlayListName) : Value();
}

Value ScriptClass::CurrentPlaylist() {
  const player::PlaylistRef playlist = in_.form.wmp9().currentPlaylist();
  if (!playlist) throw base::Failure(base::number::kObjectMissing);
  return playlist->name();
}

}  // namespace script
