#include "mpris/Face.hpp"

#include "base/Attempt.hpp"
#include "bus/Paths.hpp"
#include "mpris/Root.hpp"

namespace mpris {

namespace {

constexpr base::Milliseconds kTogether{20};

/// Those of `now` that `before` has otherwise; both have the same names in the same order.
Dict OthersThan(const Dict& before, const Dict& now) {
  Dict others;
  for (std::size_t i = 0; i < now.size(); ++i)
    if (i >= before.size() || !(before[i] == now[i])) others.push_back(now[i]);
  return others;
}

}  // namespace

Face::Face(const Parts& parts)
    : in_(parts),
      player_(parts.script),
      transport_(player_, parts.loop, [this] { changed(); }),
      playlists_(player_),
      exported_(kPath, tables(), [this] { transport_.refresh(); }),
      soon_(parts.loop.makeTimer(kTogether, [this] {
        soon_->enabled(false);
        base::Attempt step;
        step([&] { look(); });
      })) {}

std::vector<Interface> Face::tables() {
  return {RootTable(player_, in_.canRaise), transport_.table(), playlists_.table()};
}

void Face::begin() {
  transport_.begin();
  playlists_.changed();
  told_.clear();
  for (const Interface& each : exported_.interfaces()) told_.push_back(Exported::told(each));
}

void Face::sought() {
  transport_.sought();
  changed();
}

void Face::playlistsChanged() {
  playlists_.changed();
  changed();
}

void Face::look() {
  // What can't be told now is told by the first look behind.
  if (!in_.listening()) return;
  transport_.refresh();
  const auto& interfaces = exported_.interfaces();
  told_.resize(interfaces.size());
  for (std::size_t i = 0; i < interfaces.size(); ++i) {
    const Dict now = Exported::told(interfaces[i]);
    const Dict others = OthersThan(told_[i], now);
    if (others.empty()) continue;
    told_[i] = now;
    in_.emit(bus::kProperties, "PropertiesChanged", {interfaces[i].name, others, Texts()});
  }
  if (const auto position = transport_.jumped()) in_.emit(Player::kName, "Seeked", {*position});
}

}  // namespace mpris
