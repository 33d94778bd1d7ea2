#include "standin/player/NowPlaying.hpp"

#include <chrono>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

/// The player tells one change by several devices, one after the other.
constexpr base::Milliseconds kTogether = std::chrono::milliseconds(15);
constexpr base::Milliseconds kLookInterval = std::chrono::seconds(1);

}  // namespace

NowPlaying::NowPlaying(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, House& house,
                       PluginKeeper::Address address)
    : loop_(loop),
      connection_(connection),
      plugin_(plugin),
      house_(house),
      address_(std::move(address)),
      soon_(loop.makeTimer(kTogether,
                           [this] {
                             soon_->enabled(false);
                             look();
                           })),
      often_(loop.makeTimer(kLookInterval, [this] { look(); })) {
  devices_ = house_.hearDevices([this](const Device& device) {
    if (!device.interface.empty() && base::SameText(device.interface, plugin_.name())) soon();
  });
  plugin_.onPhase([this](PluginPhase phase) {
    often_->enabled(phase == PluginPhase::kReady);
    if (phase == PluginPhase::kReady) return soon();
    PlayerNow unknown;
    unknown.at = clock();
    tell(unknown);
  });
}

std::int64_t NowPlaying::clock() const { return loop_.now().count(); }

void NowPlaying::soon() {
  if (!soon_->enabled()) soon_->enabled(true);
}

void NowPlaying::look() {
  if (looking_ || house_.live.readers() == 0 || plugin_.state() != PluginPhase::kReady) return;
  looking_ = true;
  ask([this](const PlayerNow&) { looking_ = false; });
}

PlayerNow NowPlaying::read(PlayerLists& lists) const {
  const std::int64_t before = clock();
  const base::Value record = lists.player().call("now");
  // The answer was true at some moment between; what is left of the doubt is half of the way.
  return PlayerNowOf(record, before + (clock() - before) / 2);
}

void NowPlaying::addPicture(PlayerNow& now) {
  if (now.item.empty()) return;
  if (now.item == picture_.item) {
    now.cover = picture_.key;
    return;
  }
  // Most albums have one picture; where that is wrong, it is told soon.
  const bool same =
      !now.album.empty() && now.album == picture_.album && now.albumArtist == picture_.albumArtist;
  now.cover = same ? std::optional(picture_.key) : std::nullopt;
  if (now.item == asked_) return;
  asked_ = now.item;
  onPictureWanted();
}

void NowPlaying::picture(Picture picture) {
  if (picture.item.empty()) picture = {told_.item};  // a player that does not answer
  picture_ = std::move(picture);
  asked_ = picture_.item;
  if (picture_.item != told_.item) return soon();
  PlayerNow now = told_;
  now.at = clock();
  now.position = told_.positionAt(now.at);
  tell(now);
}

void NowPlaying::tell(PlayerNow& now) {
  addPicture(now);
  if (told_.foretells(now)) return;
  told_ = now;
  house_.live.tell("player", Dump(JsonOf(now, clock())));
}

void NowPlaying::ask(Heard heard) {
  act([](PlayerLists&) {},
      [heard = std::move(heard)](const PlayerNow& now, std::int32_t, const std::string&) { heard(now); });
}

void NowPlaying::act(Work work, Done done) {
  struct Act {
    PlayerNow now;
    std::int32_t number = 0;
    std::string failure;
  };
  const auto act = std::make_shared<Act>();
  plugin_.command(
      [this, act, work = std::move(work)](base::Object&) {
        PlayerLists lists(connection_.proxy(address_.name, "/scriptclass"));
        try {
          work(lists);
        } catch (const base::Failure& failure) {
          if (failure.number() == base::number::kHostGone) throw;
          act->number = failure.number();
          act->failure = failure.description();
        }
        act->now = read(lists);
      },
      [this, act, done = std::move(done)](const std::string& failure) {
        if (!failure.empty() && act->failure.empty()) {
          act->number = base::number::kHostGone;
          act->failure = failure;
        }
        if (!act->now.known) act->now.at = clock();
        tell(act->now);
        done(act->now, act->number, act->failure);
      });
}

}  // namespace standin
