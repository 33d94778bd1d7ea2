#include "player/ByName.hpp"

#include "base/Attempt.hpp"
#include "player/ByNameLibrary.hpp"
#include "player/Shown.hpp"

namespace player {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

base::ObjectRef ShowControls(Controls& controls) {
  const auto step = [&controls](const char* name, void (Controls::*act)()) {
    return Command(name, {}, [&controls, act] { (controls.*act)(); });
  };
  return Show(
      "Controls",
      {Operation("isAvailable", {Text("step")}, Type::kBoolean,
                 [&controls](Args& args) { return controls.isAvailable(TextAt(args, 0)); }),
       step("play", &Controls::play), step("stop", &Controls::stop), step("pause", &Controls::pause),
       step("fastForward", &Controls::fastForward), step("fastReverse", &Controls::fastReverse),
       step("next", &Controls::next), step("previous", &Controls::previous),
       Field(
           "currentPosition", Type::kDouble, [&controls] { return controls.currentPosition(); },
           [&controls](const Value& seconds) { controls.currentPosition(base::ToDouble(seconds)); })});
}

base::ObjectRef ShowSettings(PlayerSettings& settings) {
  return Show(
      "Settings",
      {Field(
           "autoStart", Type::kBoolean, [&settings] { return settings.autoStart(); },
           [&settings](const Value& value) { settings.autoStart(base::ToBoolean(value)); }),
       Field(
           "mute", Type::kBoolean, [&settings] { return settings.mute(); },
           [&settings](const Value& value) { settings.mute(base::ToBoolean(value)); }),
       Field(
           "volume", Type::kInt32, [&settings] { return settings.volume(); },
           [&settings](const Value& value) { settings.volume(base::ToInt32(value)); }),
       Operation("getMode", {Text("mode")}, Type::kBoolean,
                 [&settings](Args& args) { return settings.getMode(TextAt(args, 0)); }),
       Command("setMode", {Text("mode"), Flag("value")},
               [&settings](Args& args) { settings.setMode(TextAt(args, 0), FlagAt(args, 1)); }),
       ReadField("mediaAccessRights", Type::kText, [&settings] { return settings.mediaAccessRights(); }),
       Operation("requestMediaAccessRights", {Text("rights")}, Type::kBoolean,
                 [&settings](Args& args) { return settings.requestMediaAccessRights(TextAt(args, 0)); })});
}

base::ObjectRef ShowErrors(ErrorQueue& errors) {
  const auto showItem = [](const ErrorItem& item) {
    return Show("ErrorItem", {ReadField("errorCode", Type::kInt32, [code = item.errorCode] { return code; }),
                              ReadField("errorDescription", Type::kText,
                                        [text = item.errorDescription] { return text; })});
  };
  return Show(
      "ErrorQueue",
      {ReadField("errorCount", Type::kInt32, [&errors] { return errors.errorCount(); }),
       Operation("item", {Number("index")}, Type::kObject,
                 [&errors, showItem](Args& args) { return showItem(errors.item(NumberAt(args, 0))); }),
       Command("clearErrorQueue", {}, [&errors] { errors.clearErrorQueue(); })});
}

/// What a page shows of the player, at one moment; what can't be read is empty.
base::Record NowOf(WMP9& control) {
  base::Record record;
  const auto add = [&](const char* key, auto&& read) {
    Value value;
    base::Attempt step;
    step([&] { value = read(); });
    record.emplace_back(key, std::move(value));
  };
  const MediaRef media = control.currentMedia();
  const auto ofMedia = [&](const char* key, auto&& read) {
    add(key, [&] { return media ? Value(read()) : Value(); });
  };
  const auto info = [&](const char* key, const char* attribute) {
    ofMedia(key, [&] { return media->getItemInfo(attribute); });
  };
  add("playState", [&] { return control.playState(); });
  add("position", [&] { return control.controls().currentPosition(); });
  add("volume", [&] { return control.settings().volume(); });
  add("mute", [&] { return control.settings().mute(); });
  for (const char* mode : {"loop", "shuffle"}) add(mode, [&] { return control.settings().getMode(mode); });
  for (const char* step : {"play", "pause", "next", "previous", "currentPosition"})
    add(step, [&] { return control.controls().isAvailable(step); });
  ofMedia("name", [&] { return media->name(); });
  ofMedia("source", [&] { return media->sourceURL(); });
  ofMedia("duration", [&] { return media->duration(); });
  info("artist", "Artist");
  info("album", "Album");
  info("albumArtist", "WM/AlbumArtist");
  info("streamTitle", "StreamTitle");
  add("queueMark", [&] { return static_cast<double>(control.queueMark()); });
  add("place", [&] { return control.queuePlace(); });
  const PlaylistRef queue = control.queue();
  add("queueName", [&] { return queue ? Value(queue->name()) : Value(); });
  add("count", [&] { return queue ? queue->count() : 0; });
  add("revision", [&] { return queue ? static_cast<double>(queue->revision()) : 0.0; });
  return record;
}

}  // namespace

base::ObjectRef ShowByName(WMP9& control) {
  return Show(
      "WMP9",
      {Field(
           "URL", Type::kText, [&control] { return control.URL(); },
           [&control](const Value& url) { control.URL(base::ToText(url)); }),
       ReadField("controls", Type::kObject, [&control] { return ShowControls(control.controls()); }),
       ReadField("settings", Type::kObject, [&control] { return ShowSettings(control.settings()); }),
       Field(
           "currentMedia", Type::kObject, [&control] { return ShowByName(control.currentMedia()); },
           [&control](const Value& media) { control.currentMedia(MediaBehind(media)); }),
       Field(
           "currentPlaylist", Type::kObject, [&control] { return ShowByName(control.currentPlaylist()); },
           [&control](const Value& playlist) { control.currentPlaylist(PlaylistBehind(playlist)); }),
       // Of this system's own: what is played, as a list that may be changed, and all of what is shown of the
       // player in one answer.
       ReadField("queue", Type::kObject, [&control] { return ShowByName(control.queue()); }),
       ReadField("queueMark", Type::kDouble, [&control] { return static_cast<double>(control.queueMark()); }),
       ReadField("queuePlace", Type::kInt32, [&control] { return control.queuePlace(); }),
       Operation("now", {}, Type::kRecord, [&control] { return NowOf(control); }),
       Command("playFrom", {Reference("playlist"), Number("index")},
               [&control](Args& args) { control.playFrom(PlaylistBehind(args[0]), NumberAt(args, 1)); }),
       Command("playItem", {Number("index")},
               [&control](Args& args) { control.playItem(NumberAt(args, 0)); }),
       ReadField("playState", Type::kInt32, [&control] { return control.playState(); }),
       ReadField("status", Type::kText, [&control] { return control.status(); }),
       ReadField("versionInfo", Type::kText, [&control] { return control.versionInfo(); }),
       ReadField("Error", Type::kObject, [&control] { return ShowErrors(control.Error()); }),
       ReadField("cdromCollection", Type::kObject,
                 [&control] { return ShowByName(control.cdromCollection()); }),
       Field(
           "fullScreen", Type::kBoolean, [&control] { return control.fullScreen(); },
           [&control](const Value& value) { control.fullScreen(base::ToBoolean(value)); }),
       ReadField("isOnline", Type::kBoolean, [&control] { return control.isOnline(); }),
       ReadField("mediaCollection", Type::kObject,
                 [&control] { return ShowByName(control.mediaCollection()); }),
       ReadField("playlistCollection", Type::kObject,
                 [&control] { return ShowByName(control.playlistCollection()); })});
}

}  // namespace player
