#include "player/WMPPlay.hpp"

#include "base/Attempt.hpp"
#include "base/Text.hpp"

namespace player {

using base::Failure;

namespace {

bool WantsSingleTitle(const std::string& title) {
  return !title.empty() && title != PlayRequests::kEntireList;
}

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

}  // namespace

std::int32_t PlayRequests::WMPPlay(const std::string& category, const std::string& name,
                                   const std::string& title) {
  return base::Handled(
      [&] {
        return play({category, name, title});
      },
      [&](const Failure& failure) {
        base::Attempt step;
        step([&] {
          host_.WriteLog("Error", "Media Player: Could not complete procedure WMPCalls/WMPPlay Error # " +
                                      std::to_string(failure.number()) + ": " + failure.description());
        });
        // No status was set by then, so that the caller can't tell this from a success.
        return std::int32_t{0};
      });
}

std::int32_t PlayRequests::play(Request request) {
  target_.PlayTargetMedia.reset();
  target_.PlayTargetPlayList.reset();
  target_.PlayTargetURL.clear();

  const std::string category = base::LowerCase(request.category);
  std::int32_t status = 0;
  if (category == "playlist") {
    status = library_.GetPlayListByName(request.name, target_.PlayTargetPlayList);
  } else if (category == "album" || category == "artist" || category == "genre") {
    status = library_.GetGroupItems(request.category, request.name, target_.PlayTargetPlayList);
  } else if (category == "media library") {
    if (WantsSingleTitle(request.title)) return playLibraryTitle(request);
    status = library_.GetAllMedia(target_.PlayTargetPlayList);
  } else if (category == "url") {
    return playUrl(request.title);
  }
  if (status != 0)
    return refuse("Cannot 'Play': " + request.category + " " + Quoted(request.name) + " is non-existent");
  return playFromGroup(request);
}

std::int32_t PlayRequests::playUrl(const std::string& url) {
  target_.PlayTargetURL = url;
  target_.CurrentSourceURL = url;
  form_.wmp9().URL(url);
  return start();
}

std::int32_t PlayRequests::playLibraryTitle(Request& request) {
  const std::int32_t status =
      library_.GetMediaItem(request.title, target_.PlayTargetPlayList, target_.PlayTargetMedia);
  if (status != 0 || !target_.PlayTargetMedia)
    return refuse("Cannot 'Play': " + Quoted(request.title) + " does not exist in the Media Library");
  target_.CurrentSourceURL = target_.PlayTargetMedia->sourceURL();
  form_.wmp9().currentMedia(target_.PlayTargetMedia);
  return start();
}

std::int32_t PlayRequests::playFromGroup(Request& request) {
  // A category that is none has left no group, which is a failure here and not a message.
  if (!target_.PlayTargetPlayList) throw Failure(base::number::kObjectMissing);
  const std::string group = request.category + " " + Quoted(request.name);
  if (target_.PlayTargetPlayList->count() == 0) return refuse("Cannot 'Play': " + group + " does not exist");
  if (WantsSingleTitle(request.title)) {
    if (library_.GetMediaItem(request.title, target_.PlayTargetPlayList, target_.PlayTargetMedia) != 0)
      return refuse("Cannot 'Play': " + Quoted(request.title) + " in " + group + " does not exist");
    // The one member replaces what the player has; the rest of the group is not queued.
    form_.wmp9().currentMedia(target_.PlayTargetMedia);
  } else {
    form_.wmp9().currentPlaylist(target_.PlayTargetPlayList);
  }
  return start();
}

std::int32_t PlayRequests::start() {
  form_.controls().play();
  return 0;
}

std::int32_t PlayRequests::refuse(const std::string& message) {
  host_.WriteLog("Error", "Media Player: " + message);
  if (settings_.flag("SpeakPlaybackErrors", true)) host_.Speak("Error; " + message, true);
  return -1;
}

}  // namespace player
