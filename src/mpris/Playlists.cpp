#include "mpris/Playlists.hpp"

#include <algorithm>
#include <string_view>

#include "base/Text.hpp"
#include "mpris/session/BusText.hpp"

namespace mpris {

namespace {

constexpr std::string_view kIds = "/org/vantorix/playlist/_";
constexpr const char* kAlphabetical = "Alphabetical";

ListedPlaylist Listed(const std::string& name) { return {{std::string(kIds) + Hex(name)}, BusText(name)}; }

}  // namespace

void Playlists::changed() {
  count_.reset();
  list_.reset();
}

std::uint32_t Playlists::count() {
  if (!count_) count_ = static_cast<std::uint32_t>(std::max(0, player_.playlistCount()));
  return *count_;
}

const std::vector<ListedPlaylist>& Playlists::list() {
  if (list_) return *list_;
  std::vector<std::pair<std::string, std::string>> sorted;
  for (std::string& name : player_.playlistNames()) {
    std::string folded = base::LowerCase(name);
    sorted.emplace_back(std::move(folded), std::move(name));
  }
  std::sort(sorted.begin(), sorted.end());
  auto& made = list_.emplace();
  for (const auto& each : sorted) made.push_back(Listed(each.second));
  return made;
}

std::vector<ListedPlaylist> Playlists::page(std::uint32_t from, std::uint32_t count, const std::string& order,
                                            bool reverse) {
  if (order != kAlphabetical) throw Refusal(kNotSupported, "Playlists are sorted by their names only");
  std::vector<ListedPlaylist> found;
  const auto& all = list();
  for (std::size_t at = from; at < all.size() && found.size() < count; ++at)
    found.push_back(reverse ? all[all.size() - 1 - at] : all[at]);
  return found;
}

ActivePlaylist Playlists::active() {
  const PlayerObject::Played played = player_.played();
  if (!played.stored) return {};
  return {true, Listed(played.name)};
}

void Playlists::activate(const Path& id) {
  const std::string name = id.text.starts_with(kIds) ? FromHex(id.text.substr(kIds.size())) : std::string();
  if (name.empty() || !player_.hasPlaylist(name)) throw Refusal(kInvalidArgs, "There is no such playlist");
  player_.playPlaylist(name);
}

Interface Playlists::table() {
  return {kName,
          {{"ActivatePlaylist",
            {{"PlaylistId", "o"}},
            {},
            [this](const Values& in) {
              activate(At<Path>(in, 0));
              return Values();
            }},
           {"GetPlaylists",
            {{"Index", "u"}, {"MaxCount", "u"}, {"Order", "s"}, {"ReverseOrder", "b"}},
            {{"Playlists", "a(oss)"}},
            [this](const Values& in) {
              return Values{page(At<std::uint32_t>(in, 0), At<std::uint32_t>(in, 1), At<std::string>(in, 2),
                                 At<bool>(in, 3))};
            }}},
          {{"PlaylistCount", "u", Told::kEverybody, [this] { return Value(count()); }},
           Constant("Orderings", Texts{kAlphabetical}),
           {"ActivePlaylist", "(b(oss))", Told::kEverybody, [this] { return Value(active()); }}},
          {{"PlaylistChanged", {{"Playlist", "(oss)"}}}}};
}

}  // namespace mpris
