#include "script/ScriptClass.hpp"

#include "player/ByName.hpp"
#include "script/ScriptTable.hpp"

// The table of the object; what its longer operations do is in ScriptClassLibrary.cpp.
namespace script {

using base::Args;
using base::Member;
using base::Param;
using base::Type;
using base::Value;

namespace {

constexpr const char* kHousePlayList = "Vantorix";
constexpr std::int16_t kVolumeStep = 10;

Param Text(const char* name) { return {name, Type::kText}; }
Param Text(const char* name, const char* fallback) { return {name, Type::kText, Value(fallback)}; }
Param Number(const char* name, std::int16_t fallback) { return {name, Type::kInt16, Value(fallback)}; }
std::string TextAt(const Args& args, std::size_t i) { return base::ToText(args[i]); }

}  // namespace

ScriptClass::ScriptClass(const ScriptParts& parts) : in_(parts) { setTable(table()); }

std::string ScriptClass::currentInfo(const char* attribute) {
  return in_.calls.IsPlaying() ? in_.form.currentMedia()->getItemInfo(attribute) : std::string();
}

// In the order of the interface's slots.
base::MemberTable ScriptClass::table() {
  Slots slots(in_.state);
  player::WMPCalls& calls = in_.calls;
  const auto command = [&](const char* name, void (player::WMPCalls::*act)()) {
    return slots.command(name, {}, [&calls, act](Args&) { (calls.*act)(); });
  };
  const auto numbered = [&](const char* name, Param param, void (player::WMPCalls::*act)(std::int16_t)) {
    return slots.command(name, {std::move(param)},
                         [&calls, act](Args& args) { (calls.*act)(base::ToInt16(args[0])); });
  };
  const auto setter = [&calls](void (player::WMPCalls::*set)(const Value&)) {
    return [&calls, set](const Value& value) { (calls.*set)(value); };
  };
  const auto mode = [this](const char* name) {
    return [this, name] { return in_.form.settings().getMode(name); };
  };
  const auto info = [&](const char* attribute) {
    return slots.readField(attribute, Type::kText, [this, attribute] { return currentInfo(attribute); });
  };
  Member artist = info("Artist");
  artist.name = "artist";

  return {
      "ScriptClass",
      {
          slots.operation(
              "Play", {Text("CategoryType"), Text("CategoryName"), Text("Title", "")}, Type::kInt32,
              [this](Args& args) { return Play(TextAt(args, 0), TextAt(args, 1), TextAt(args, 2)); }),
          slots.operation("PlayURL", {Text("URL")}, Type::kInt32,
                          [this](Args& args) { return in_.library.WMPPlay("URL", "", TextAt(args, 0)); }),
          command("PausePlayer", &player::WMPCalls::PauseResume),
          command("ResumePlayer", &player::WMPCalls::ResumePlayback),
          command("StopPlayer", &player::WMPCalls::StopPlayback),
          slots.field(
              "Mute", Type::kAny, [this] { return in_.form.settings().mute(); },
              setter(&player::WMPCalls::SetMute)),
          slots.field("LoopMode", Type::kAny, mode("Loop"), setter(&player::WMPCalls::SetLoopMode)),
          slots.field("ShuffleMode", Type::kAny, mode("Shuffle"), setter(&player::WMPCalls::SetShuffleMode)),
          command("PlayNext", &player::WMPCalls::NextTrack),
          command("PlayPrev", &player::WMPCalls::PreviousTrack),
          command("Restart", &player::WMPCalls::RestartPlayback),
          command("FastForward", &player::WMPCalls::FastForward),
          command("FastReverse", &player::WMPCalls::FastReverse),
          numbered("Eject", Number("Drive", 0), &player::WMPCalls::EjectDrive),
          numbered("VolumeUp", Number("Percent", kVolumeStep), &player::WMPCalls::VolumeUp),
          numbered("VolumeDown", Number("Percent", kVolumeStep), &player::WMPCalls::VolumeDown),
          slots.field(
              "Volume", Type::kInt16, [this] { return in_.form.settings().volume(); },
              [&calls](const Value& value) { calls.SetVolume(base::ToInt16(value)); }),
          slots.collection("GetCategoryList", {Text("CatType")},
                           [this](Args& args) { return GetCategoryList(TextAt(args, 0)); }),
          slots.collection("GetByCategory", {Text("CatType", "Media Library"), Text("CategoryName", "")},
                           [this](Args& args) { return GetByCategory(TextAt(args, 0), TextAt(args, 1)); }),
          slots.readField("PlayerStatus", Type::kText, [this] { return in_.playState.PlayerStatusText(); }),
          slots.readField(
              "Title", Type::kText,
              [this] { return in_.calls.IsPlaying() ? in_.form.currentMedia()->name() : std::string(); }),
          std::move(artist),
          info("Album"),
          info("Genre"),
          slots.readField("Length", Type::kText,
                          [this] {
                            return in_.calls.IsPlaying() ? in_.form.currentMedia()->durationString()
                                                         : std::string("00:00");
                          }),
          slots.field(
              "ShowPopupControls", Type::kAny, [this] { return in_.state.DisplayControlsShown; },
              setter(&player::WMPCalls::SetDisplayControls)),
          slots.operation("AddToPlayList",
                          {Text("Reserved1", ""), Text("Reserved2", ""), Text("Reserved3", ""),
                           Text("sPlayListName", kHousePlayList)},
                          Type::kAny, [this](Args& args) { return AddToPlayList(TextAt(args, 3)); }),
          slots.record(
              "GetMediaInfo", {Text("CategoryType"), Text("CategoryName"), Text("Title")},
              MediaInfoOf(nullptr),
              [this](Args& args) { return GetMediaInfo(TextAt(args, 0), TextAt(args, 1), TextAt(args, 2)); }),
          slots.writeField("FullScreenVideo", Type::kAny, setter(&player::WMPCalls::SetFullScreenVideo)),
          slots.operation("CurrentPlaylist", {}, Type::kAny, [this](Args&) { return CurrentPlaylist(); }),
          slots.readField(
              "CurrentPosition", Type::kDouble,
              [this] { return in_.calls.IsPlaying() ? in_.form.controls().currentPosition() : 0.0; }),
          slots.operation("RefreshLists", {Text("CatType")}, Type::kBoolean,
                          [this](Args& args) { return RefreshLists(TextAt(args, 0)); }),
          slots.readField("WMPObject", Type::kObject,
                          [this] {
                            // The same object every time, so that a script may compare it.
                            if (!wmpObject_) wmpObject_ = player::ShowByName(in_.form.wmp9());
                            return wmpObject_;
                          }),
          Slots::always("Version", {}, Type::kText, [](Args&) { return VANTORIX_VERSION; }),
          Slots::always("GetAlbumsByCategory", {Text("CatType"), Text("CategoryName")}, Type::kTextList,
                        [this](Args& args) { return GetAlbumsByCategory(TextAt(args, 0), TextAt(args, 1)); }),
      }};
}

}  // namespace script
