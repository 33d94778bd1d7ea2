#include "script/ScriptClass.hpp"

#include "player/ByName.hpp"
#include "script/ScriptTable.hpp"

// The table of the object; what its longer operations do is in ScriptClassLibrary.cpp.
namespace script {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

constexpr const char* kHousePlayList = "Vantorix";
constexpr std::int16_t kVolumeStep = 10;

}  // namespace

ScriptClass::ScriptClass(const ScriptParts& parts) : in_(parts) { setTable(table()); }

std::string ScriptClass::currentInfo(const char* attribute) {
  return in_.calls.IsPlaying() ? in_.form.currentMedia()->getItemInfo(attribute) : std::string();
}

// In the order of the interface's slots.
MemberTable ScriptClass::table() {
  player::WMPCalls& calls = in_.calls;
  const auto transport = [&calls](const char* name, void (player::WMPCalls::*act)()) {
    return Command(name, {}, [&calls, act] { (calls.*act)(); });
  };
  const auto numbered = [&calls](const char* name, Param param, void (player::WMPCalls::*act)(std::int16_t)) {
    return Command(name, {std::move(param)}, [&calls, act](Args& args) { (calls.*act)(ShortAt(args, 0)); });
  };
  const auto setter = [&calls](void (player::WMPCalls::*set)(const Value&)) {
    return [&calls, set](const Value& value) { (calls.*set)(value); };
  };
  const auto mode = [this](const char* name) {
    return [this, name] { return in_.form.settings().getMode(name); };
  };
  const auto info = [this](const char* name, const char* attribute) {
    return ReadField(name, Type::kText, [this, attribute] { return currentInfo(attribute); });
  };
  std::vector<Slot> slots{
      Operation("Play", {Text("CategoryType"), Text("CategoryName"), Text("Title", "")}, Type::kInt32,
                [this](Args& args) { return Play(TextAt(args, 0), TextAt(args, 1), TextAt(args, 2)); }),
      Operation("PlayURL", {Text("URL")}, Type::kInt32,
                [this](Args& args) { return in_.library.WMPPlay("URL", "", TextAt(args, 0)); }),
      transport("PausePlayer", &player::WMPCalls::PauseResume),
      transport("ResumePlayer", &player::WMPCalls::ResumePlayback),
      transport("StopPlayer", &player::WMPCalls::StopPlayback),
      Field(
          "Mute", Type::kAny, [this] { return in_.form.settings().mute(); },
          setter(&player::WMPCalls::SetMute)),
      Field("LoopMode", Type::kAny, mode("Loop"), setter(&player::WMPCalls::SetLoopMode)),
      Field("ShuffleMode", Type::kAny, mode("Shuffle"), setter(&player::WMPCalls::SetShuffleMode)),
      transport("PlayNext", &player::WMPCalls::NextTrack),
      transport("PlayPrev", &player::WMPCalls::PreviousTrack),
      transport("Restart", &player::WMPCalls::RestartPlayback),
      transport("FastForward", &player::WMPCalls::FastForward),
      transport("FastReverse", &player::WMPCalls::FastReverse),
      numbered("Eject", Short("Drive", 0), &player::WMPCalls::EjectDrive),
      numbered("VolumeUp", Short("Percent", kVolumeStep), &player::WMPCalls::VolumeUp),
      numbered("VolumeDown", Short("Percent", kVolumeStep), &player::WMPCalls::VolumeDown),
      Field(
          "Volume", Type::kInt16, [this] { return in_.form.settings().volume(); },
          [&calls](const Value& value) { calls.SetVolume(base::ToInt16(value)); }),
      Collection(Operation("GetCategoryList", {Text("CatType")}, Type::kAny,
                           [this](Args& args) { return GetCategoryList(TextAt(args, 0)); })),
      Collection(Operation("GetByCategory", {Text("CatType", "Media Library"), Text("CategoryName", "")},
                           Type::kAny,
                           [this](Args& args) { return GetByCategory(TextAt(args, 0), TextAt(args, 1)); })),
      ReadField("PlayerStatus", Type::kText, [this] { return in_.playState.PlayerStatusText(); }),
      ReadField("Title", Type::kText,
                [this] { return in_.calls.IsPlaying() ? in_.form.currentMedia()->name() : std::string(); }),
      info("artist", "Artist"),
      info("Album", "Album"),
      info("Genre", "Genre"),
      ReadField("Length", Type::kText,
                [this] {
                  return in_.calls.IsPlaying() ? in_.form.currentMedia()->durationString()
                                               : std::string("00:00");
                }),
      Field(
          "ShowPopupControls", Type::kAny, [this] { return in_.state.DisplayControlsShown; },
          setter(&player::WMPCalls::SetDisplayControls)),
      Operation("AddToPlayList",
                {Text("Reserved1", ""), Text("Reserved2", ""), Text("Reserved3", ""),
                 Text("sPlayListName", kHousePlayList)},
                Type::kAny, [this](Args& args) { return AddToPlayList(TextAt(args, 3)); }),
      Unread(
          Operation(
              "GetMediaInfo", {Text("CategoryType"), Text("CategoryName"), Text("Title")}, Type::kRecord,
              [this](Args& args) { return GetMediaInfo(TextAt(args, 0), TextAt(args, 1), TextAt(args, 2)); }),
          MediaInfoOf(nullptr)),
      WriteField("FullScreenVideo", Type::kAny, setter(&player::WMPCalls::SetFullScreenVideo)),
      Operation("CurrentPlaylist", {}, Type::kAny, [this] { return CurrentPlaylist(); }),
      ReadField("CurrentPosition", Type::kDouble,
                [this] { return in_.calls.IsPlaying() ? in_.form.controls().currentPosition() : 0.0; }),
      Operation("RefreshLists", {Text("CatType")}, Type::kBoolean,
                [this](Args& args) { return RefreshLists(TextAt(args, 0)); }),
      ReadField("WMPObject", Type::kObject,
                [this] {
                  // The same object every time, so that a script may compare it.
                  if (!wmpObject_) wmpObject_ = player::ShowByName(in_.form.wmp9());
                  return wmpObject_;
                }),
      Always(Constant("Version", Type::kText, VANTORIX_VERSION)),
      Always(Operation("GetAlbumsByCategory", {Text("CatType"), Text("CategoryName")}, Type::kTextList,
                       [this](Args& args) { return GetAlbumsByCategory(TextAt(args, 0), TextAt(args, 1)); })),
  };
  return {"ScriptClass", Skipping(in_.state, std::move(slots))};
}

}  // namespace script
