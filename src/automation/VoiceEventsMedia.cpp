#include <algorithm>
#include <limits>
#include <vector>

#include "automation/VoiceEvents.hpp"
#include "automation/VoiceFlags.hpp"
#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "catalogue/MediaKey.hpp"
#include "web/Concatenate.hpp"

// One category's device, event and menu.
namespace automation {

using base::Attempt;
using base::Deref;
using base::Failure;

namespace {

constexpr std::int16_t kQuickMisc = 16;
/// Between a value's name and its number, and behind each value.
constexpr const char* kNumber = "\2";
constexpr const char* kEnd = "\1";

struct QuickDevice {
  const char* category;
  std::int16_t code;
  const char* text;  ///< the device's, behind the icon
};

constexpr QuickDevice kQuickDevices[] = {
    {"PlayList", 11, "Play a PlayList"},
    {"Album", 12, "Play an Album"},
    {"Artist", 13, "Play an Artist"},
    {"Genre", 14, "Play a Genre"},
};

/// Throws number 5 for what is no category.
const QuickDevice& QuickDeviceOf(const std::string& category) {
  for (const QuickDevice& each : kQuickDevices)
    if (category == each.category) return each;
  throw Failure(base::number::kInvalidArgument);
}

std::string AddressOf(base::Object& device) {
  return base::ToText(device.get("hc")) + base::ToText(device.get("dc"));
}

std::string WithoutLast(std::string text) {
  text.pop_back();
  return text;
}

/// A one-word name that begins with a digit, or with what sorts before one, is taken for the beginning of the
/// name behind it: "1984" and "1984 Remix".
bool IsShadowed(const std::string& name, const std::string& previous) {
  return previous.find(' ') == std::string::npos && (previous.empty() || previous.front() <= '9') &&
         name.starts_with(previous + " ");
}

}  // namespace

/// The two texts that a category's names go into.
class VoiceEvents::Names {
 public:
  Names(const std::string& category, bool required, std::vector<std::string> keys)
      : category(category), keys(std::move(keys)) {
    web::ConcatInit(table_);
    web::ConcatInit(voice_);
    addValue(" ", 0);
    addValue(refresh(), 1);
    // The brackets of a word that may be left out stand where it is required: the word is skipped where it
    // comes, and events that users know keep their form.
    web::ConcatAdd(voice_, required ? "Play [" + category + "] (" : "Play " + category + " (");
  }
  [[nodiscard]] std::string refresh() const { return "*Refresh " + category + "s*"; }
  void addValue(const std::string& name, std::int32_t value) {
    web::ConcatAdd(table_, name + kNumber + std::to_string(value) + kEnd);
  }
  void addSpoken(const std::string& name) { web::ConcatAdd(voice_, name + "|"); }
  // Both texts end with a character too many. Where there are no names it is the opening bracket.
  [[nodiscard]] std::string table() const { return WithoutLast(web::ConcatResult(table_)); }
  [[nodiscard]] std::string voice() const { return WithoutLast(web::ConcatResult(voice_)) + ")"; }

  const std::string& category;
  const std::vector<std::string> keys;  ///< sorted without regard to case

 private:
  web::StringAccumulator table_;
  web::StringAccumulator voice_;
};

void VoiceEvents::UpdateMediaEvents(const std::string& CategoryType) {
  catalogue::ProgressShown shown(in_.progress, "UpdateMediaEvents");
  base::Handled([&] { publish(CategoryType, shown); },
                [&](const Failure& failure) {
                  in_.loggers.LogModuleError(failure.number(), failure.description(), "CommonModule",
                                             "UpdateMediaEvents");
                });
}

base::ObjectRef VoiceEvents::quickDevice(const std::string& category) {
  const QuickDevice& quick = QuickDeviceOf(category);
  const std::string name = "Quick " + category;
  base::ObjectRef device = in_.host.GetDeviceEx(plugin::DeviceName(name));
  if (!device) device = in_.host.GetDevice(in_.devices.InitDevice(name, quick.code, kQuickMisc));
  Deref(device).put("Values", "");
  return device;
}

base::ObjectRef VoiceEvents::mediaEvent(const std::string& category) {
  bool made = false;
  base::ObjectRef event = eventNamed(category + " VR", made);
  // Later a user's change of the flags survives.
  if (made) AddVoiceFlags(Deref(event));
  place(Deref(event));
  return event;
}

void VoiceEvents::publish(const std::string& category, catalogue::ProgressShown& shown) {
  const std::uint64_t tablesBefore = tables_[category];
  const base::ObjectRef device = quickDevice(category);
  const base::ObjectRef event = mediaEvent(category);
  const base::ObjectRef afresh = in_.host.GetDeviceEx(plugin::DeviceName("Quick " + category));
  attach(Deref(event), base::ToInt32(Deref(afresh).get("ref")));

  if (category == "PlayList")
    in_.stale.PlayListsStale = true;
  else
    in_.stale.CategoryStale[category] = true;
  base::TextListRef list;
  if (in_.catalogue.GetGroupList(category, list, "") != catalogue::kDone) {
    in_.host.SetDeviceString(AddressOf(Deref(device)),
                             in_.state.AlbumIconTag + "Create " + category + "s before using this feature");
    Deref(event).put("vcmd", "");
    return;
  }
  std::vector<std::string> keys;
  const auto count = static_cast<std::int64_t>(list->size());
  keys.reserve(list->size());
  for (const std::string& name : *list) {
    shown.update(static_cast<std::int64_t>(keys.size()) + 1, count);
    catalogue::MakeMediaKey(name, keys.emplace_back());
    if (catalogue::YieldsAt(static_cast<std::int64_t>(keys.size()))) in_.host.WaitEvents();
  }
  std::stable_sort(keys.begin(), keys.end(), base::FoldedLess());

  Names names(category, in_.state.VRCategoryRequired, std::move(keys));
  fill(names, shown);
  const std::string address = AddressOf(Deref(device));
  // A run within this one, in a turn of the host, has left its values, and these would come behind them.
  if (tables_[category] != tablesBefore) Deref(device).put("Values", "");
  ++tables_[category];
  in_.host.DeviceValuesAdd(address, names.table(), true);
  in_.host.SetDeviceString(address, in_.state.AlbumIconTag + QuickDeviceOf(category).text);
  Deref(event).put("vcmd", names.voice());
}

void VoiceEvents::fill(Names& names, catalogue::ProgressShown& shown) {
  const auto show = [&](std::int16_t element, const std::string& text) {
    Attempt step;
    step([&] { in_.menus.load(names.category, element); });  // fails where an earlier run has made it
    step([&] { in_.menus.caption(names.category, element, text); });
  };
  show(0, names.refresh());
  const auto count = static_cast<std::int64_t>(names.keys.size());
  std::int16_t value = 0;
  std::string previous;
  // The counter has 16 bits: it overflows behind line 32,767.
  for (std::int16_t i = 0; i < count;) {
    shown.update(std::int64_t{i} + 1, count);
    if (const std::string& name = names.keys[static_cast<std::size_t>(i)]; !name.empty()) {
      names.addValue(name, value + 2);
      if (!IsShadowed(name, previous)) {
        names.addSpoken(name);
        previous = name;
      } else {
        in_.host.WriteLog("Warning", "Media Player detected an illegal voice recognition command");
        std::string line = "The " + names.category;
        line.append(" names '").append(previous).append("' and '").append(name).append("' are ambiguous.");
        in_.host.WriteLog("Warning", line);
      }
      // A menu's elements are counted in 16 bits too.
      if (value == std::numeric_limits<std::int16_t>::max()) throw Failure(base::number::kOverflow);
      show(static_cast<std::int16_t>(value + 1), name);
      ++value;
    }
    if (catalogue::YieldsAt(i)) in_.host.WaitEvents();
    if (i == std::numeric_limits<std::int16_t>::max()) throw Failure(base::number::kOverflow);
    ++i;
  }
}

}  // namespace automation
