#include "engine/playlists/PlaylistFolder.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "base/Attempt.hpp"
#include "engine/common/Config.hpp"

namespace engine::testing {
namespace {

Config LibraryIn(const std::string& root, std::vector<std::string> musicFolders) {
  Config config;
  config.musicFolders = std::move(musicFolders);
  config.dataFolder = root + "/data";
  return config;
}

}  // namespace

std::string FileContent(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void WriteText(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::vector<M3uItem> ItemsOf(const std::string& text) {
  const M3uText list(text);
  std::vector<M3uItem> items;
  for (std::size_t i = 0; i < list.count(); ++i) items.push_back(list.item(i, "/folder"));
  return items;
}

std::vector<std::string> Addresses(player::Playlist& list) {
  std::vector<std::string> addresses;
  for (std::int32_t i = 0; i < list.count(); ++i) addresses.push_back(list.item(i)->sourceURL());
  return addresses;
}

PlaylistDisc PatientDisc() {
  return {.reach = [] {}, .patience = [](base::Milliseconds) { return std::chrono::minutes(2); }};
}

PlaylistFolder::PlaylistFolder(const std::string& root, files::WriteCall write,
                               std::vector<std::string> musicFolders, std::size_t mostItems,
                               PlaylistDisc disc)
    : folder(root + "/playlists"),
      library(loop, LibraryIn(root, std::move(musicFolders)), {[] {}, [](const std::string&) {}, [] {}}),
      lists(loop, folder, library,
            {[this] { ++changes; }, [this] { ++contents; },
             [this](const std::string& line) { messages.push_back(line); }},
            std::move(write), mostItems, std::move(disc)) {}

player::PlaylistRef PlaylistFolder::named(const std::string& name) {
  const auto found = lists.getByName(name);
  return found->count() > 0 ? found->item(0) : nullptr;
}

player::PlaylistRef PlaylistFolder::make(const std::string& name, const std::vector<std::string>& addresses) {
  auto list = lists.newPlaylist(name);
  for (const std::string& address : addresses) list->appendItem(media(address));
  return list;
}

std::vector<std::string> PlaylistFolder::names() {
  std::vector<std::string> all;
  const auto array = lists.getAll();
  for (std::int32_t i = 0; i < array->count(); ++i) all.push_back(array->item(i)->name());
  return all;
}

int FailureOf(const std::function<void()>& step) {
  base::Attempt attempt;
  attempt(step);
  return attempt.number();
}

}  // namespace engine::testing
