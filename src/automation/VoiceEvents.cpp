#include "automation/VoiceEvents.hpp"

#include "automation/VoiceFlags.hpp"
#include "base/Attempt.hpp"

// The event of the spoken transport commands, and what it shares with those of the library in
// VoiceEventsMedia.cpp.
namespace automation {

using base::Deref;
using base::Failure;

namespace {

constexpr const char* kControlEvent = "Controls VR";
/// Round brackets with bars are a choice of one, square ones hold a word that may be left out.
constexpr const char* kControlCommand =
    "(Play|Player) [No] (Stop|Next|Previous|Restart|Pause|Resume|Eject|Shuffle|Loop|Mute|UnMute|Volume Up|"
    "Volume Down|Display Controls|Add to PlayList)";

constexpr std::int16_t kTimeField = 7;  // of `ev_abs_time`: what the host wants there of a voice event
constexpr std::int16_t kByVoice = 13;   // of `func`: the host then calls SetIO with this command

}  // namespace

void VoiceEvents::UpdateControlEvent() {
  base::Handled(
      [&] {
        bool made = false;
        const base::ObjectRef event = eventNamed(kControlEvent, made);
        base::Object& fields = Deref(event);
        // What a user has put there stays, and so do the flags beside it.
        if (base::ToText(fields.get("vcmd")).empty()) {
          fields.put("vcmd", kControlCommand);
          AddVoiceFlags(fields);
        }
        place(fields);
        attach(fields, statusRef());
      },
      [&](const Failure& failure) {
        in_.loggers.LogModuleError(failure.number(), failure.description(), "CommonModule",
                                   "UpdateControlEvent");
      });
}

std::int32_t VoiceEvents::statusRef() {
  const std::string name = plugin::DeviceName("Status");
  base::ObjectRef device = in_.host.GetDeviceEx(name);
  if (!device) {
    in_.devices.createStatus();
    device = in_.host.GetDeviceEx(name);
  }
  return base::ToInt32(Deref(device).get("ref"));
}

base::ObjectRef VoiceEvents::eventNamed(const std::string& name, bool& made) {
  base::ObjectRef event = in_.host.GetEventEx(name);
  made = !event;
  return made ? in_.host.GetEvent(in_.host.NewEvent(name)) : event;
}

void VoiceEvents::place(base::Object& event) {
  event.put("ev_abs_time", kTimeField);
  event.put("Group", plugin::kName);
}

void VoiceEvents::attach(base::Object& event, std::int32_t ref) {
  const base::ObjectRef entries = base::ToObject(event.get("ev_devices"));
  base::Object& list = Deref(entries);
  for (std::int32_t i = base::ToInt32(list.get("Count")); i >= 1; --i) {
    const base::ObjectRef entry = base::ToObject(list.invoke("item", i));
    if (base::ToInt32(Deref(entry).get("devid")) == ref) list.invoke("Remove", i);
  }
  const base::ObjectRef entry = in_.host.NewDevFunc();
  Deref(entry).put("devid", ref);
  Deref(entry).put("func", kByVoice);
  list.invoke("Add", entry);
}

}  // namespace automation
