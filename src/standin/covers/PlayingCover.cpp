#include "standin/covers/PlayingCover.hpp"

#include <exception>

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
    try {
      const Covers::Cover cover = covers_.keyOf({.playing = true});
      gate_.run([&](const auto& done) {
        found(cover);
        done();
      });
    } catch (const DecodersBusy&) {
      want();  // that has taken some seconds
    } catch (const std::exception&) {
      // The bus has gone, or there is no memory for a picture: the next wish may have more luck. Pages ask
      // for the picture by what plays until then.
      notFound();
    }
  }
}

void PlayingCover::notFound() {
  try {
    gate_.run([&](const auto& done) {
      found({});
      done();
    });
  } catch (const std::exception&) {  // nobody is left to be told
  }
}

void PlayingCover::found(const Covers::Cover& cover) {
  now_.picture({cover.item, cover.album, cover.artist, cover.key});
  if (cover.key == told_) return;
  told_ = cover.key;
  house_.live.tell("cover", Dump({{"key", told_}}));
}

}  // namespace standin
