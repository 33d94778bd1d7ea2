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

  // What is found is held here first: a look-up calls the host, and a second request that the host lets in
  // meanwhile empties the targets.
  const std::string category = base::LowerCase(request.category);
  PlaylistRef group;
  std::int32_t status = 0;
  if (category == "playlist") {
    status = library_.GetPlayListByName(request.name, group);
  } else if (category == "album" || category == "artist" || category == "genre") {
    status = library_.GetGroupItems(request.category, request.name, group);
  } else if (category == "media library") {
    if (WantsSingleTitle(request.title)) return playLibraryTitle(request);
    status = library_.GetAllMedia(group);
  } else if (category == "url") {
    return playUrl(request.title);
  }
  target_.PlayTargetPlayList = group;
  if (status != 0)
    return refuse("Cannot 'Play': " + request.category + " " + Quoted(request.name) + " is non-existent");
  return playFromGroup(request, group);
}

std::int32_t PlayRequests::playUrl(const std::string& url) {
  target_.PlayTargetURL = url;
  target_.CurrentSourceURL = url;
  form_.wmp9().URL(url);
  return start();
}

std::int32_t PlayRequests::playLibraryTitle(Request& request) {
  PlaylistRef found;
  MediaRef item;
  const std::int32_t status = library_.GetMediaItem(request.title, found, item);
  target_.PlayTargetPlayList = found;
  if (status != 0 || !item)
    return refuse("Cannot 'Play': " + Quoted(request.title) + " does not exist in the Media Library");
  target_.PlayTargetMedia = item;
  target_.CurrentSourceURL = item->sourceURL();
  form_.wmp9().currentMedia(item);
  return start();
}

std::int32_t PlayRequests::playFromGroup(Request& request, PlaylistRef group) {
  // A category that is none has left no group, which is a failure here and not a message.
  if (!group) throw Failure(base::number::kObjectMissing);
  const std::string named = request.category + " " + Quoted(request.name);
  if (group->count() == 0) return refuse("Cannot 'Play': " + named + " does not exist");
  if (WantsSingleTitle(request.title)) {
    MediaRef item;
    const std::int32_t status = library_.GetMediaItem(request.title, group, item);
    if (status != 0)
      return refuse("Cannot 'Play': " + Quoted(request.title) + " in " + named + " does not exist");
    target_.PlayTargetMedia = item;
    // The one member replaces what the player has; the rest of the group is not queued.
    form_.wmp9().currentMedia(item);
  } else {
    form_.wmp9().currentPlaylist(group);
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
