#include "standin/covers/PlayingCover.hpp"

#include "standin/covers/DecoderTurn.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {

PlayingCover::PlayingCover(const Parts& parts)
    : gate_(parts.gate),
      covers_(parts.covers),
      now_(parts.now),
      house_(parts.house),
      // The plug-in writes its own finding into the text of the album's device.
      devices_(parts.house.hearDevices([this, &plugin = parts.plugin](const Device& device) {
        if (plugin.name().empty() || device.interface != plugin.name() ||
            !device.fullName().ends_with(" Album"))
          return;
        if (house_.live.readers() > 0)
          want();
        else
          now_.forgetPicture();
      })) {
  now_.onPictureWanted = [this] { want(); };
  finder_ = std::thread([this] { findAll(); });
}

PlayingCover::~PlayingCover() {
  now_.onPictureWanted = [] {};
  gate_.close();
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  changed_.notify_all();
  finder_.join();
}

void PlayingCover::want() {
  {
    const std::lock_guard lock(mutex_);
    wanted_ = true;
  }
  changed_.notify_all();
}

/// False at the end.
bool PlayingCover::waitForWish() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return wanted_ || ended_; });
  wanted_ = false;
  return !ended_;
}

void PlayingCover::findAll() {
  while (waitForWish()) {
    Covers::Cover cover;
    try {
      cover = covers_.keyOf({.playing = true});
    } catch (const DecodersBusy&) {
      want();  // that has taken some seconds
      continue;
    }
    gate_.run([&](const auto& done) {
      found(cover);
      done();
    });
  }
}

void PlayingCover::found(const Covers::Cover& cover) {
  now_.picture({cover.item, cover.album, cover.artist, cover.key});
  if (cover.key == told_) return;
  told_ = cover.key;
  house_.live.tell("cover", Dump({{"key", told_}}));
}

}  // namespace standin
