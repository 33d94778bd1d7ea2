#include "standin/hostobjects/HostObject.hpp"

#include <memory>
#include <utility>

#include "standin/hostobjects/HostDevices.hpp"
#include "standin/hostobjects/HostSettings.hpp"
#include "standin/hostobjects/UrlFetcher.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

using base::Args;
using base::Member;
using base::MemberKind;
using base::Type;
using base::Value;

/// A trigger as a line of the log: its fields are separated by control characters.
std::string Readable(const std::string& trigger) {
  std::string out;
  for (const char c : trigger) {
    if (static_cast<unsigned char>(c) < 0x20) {
      if (!out.empty() && !out.ends_with(" | ")) out += " | ";
    } else {
      out += c;
    }
  }
  return out;
}

void Append(std::vector<Member>& table, std::vector<Member> more) {
  for (Member& member : more) table.push_back(std::move(member));
}

std::vector<Member> Sundries(House& house, HostWaits& waits, const base::ObjectRef& system) {
  return {
      {"Version", MemberKind::kOperation, {}, Type::kText, [&house](Args&) { return Value(house.version); }},
      {"System", MemberKind::kOperation, {}, Type::kObject, [system](Args&) { return Value(system); }},
      {"GetAppPath",
       MemberKind::kOperation,
       {},
       Type::kText,
       [&house](Args&) { return Value(house.folder.string()); }},
      {"Launch",
       MemberKind::kOperation,
       {{"url", Type::kText}},
       Type::kNone,
       [&house](Args& args) {
         const std::string url = base::ToText(args[0]);
         house.log.write("Info", "Open " + url);
         house.live.tell("launch", Dump(url));
         return Value();
       }},
      {"WEBLoggedInUser",
       MemberKind::kOperation,
       {},
       Type::kText,
       [&house](Args&) { return Value(house.webUser); }},
      {"RegisterEventCB",
       MemberKind::kOperation,
       {{"mask", Type::kInt16}, {"plugin", Type::kObject}},
       Type::kNone,
       [&house](Args& args) {
         base::Deref(args[1]);
         house.eventSinks.push_back({base::ToInt16(args[0]), base::ToObject(args[1])});
         return Value();
       }},
      {"RegisterLink",
       MemberKind::kOperation,
       {{"page", Type::kObject}},
       Type::kNone,
       [&house](Args& args) {
         base::Object& page = base::Deref(args[0]);
         PageLink link{base::ToText(page.get("Link")), base::ToText(page.get("LinkText")),
                       base::ToText(page.get("Page_Title")), base::ToObject(args[0])};
         house.addLink(std::move(link));
         return Value();
       }},
      {"WriteLog",
       MemberKind::kOperation,
       {{"type", Type::kText}, {"text", Type::kText}, {"more", Type::kText, Value("")}},
       Type::kNone,
       [&house](Args& args) {
         house.log.write(base::ToText(args[0]), base::ToText(args[1]) + base::ToText(args[2]));
         return Value();
       }},
      {"Speak",
       MemberKind::kOperation,
       {{"text", Type::kText}, {"wait", Type::kBoolean, Value(false)}},
       Type::kNone,
       [&waits](Args& args) {
         waits.speak(base::ToText(args[0]), base::ToBoolean(args[1]));
         return Value();
       }},
      {"TriggerEvent",
       MemberKind::kOperation,
       {{"name", Type::kText}},
       Type::kBoolean,
       [&house](Args& args) { return Value(house.onScriptTrigger(base::ToText(args[0]))); }},
      {"WaitEvents",
       MemberKind::kOperation,
       {},
       Type::kNone,
       [&waits](Args&) {
         waits.pendingEvents();
         return Value();
       }},
      {"WaitSecs",
       MemberKind::kOperation,
       {{"seconds", Type::kInt16}},
       Type::kNone,
       [&waits](Args& args) {
         waits.seconds(base::ToInt16(args[0]));
         return Value();
       }},
      {"GetUrl",
       MemberKind::kOperation,
       {{"host", Type::kText},
        {"page", Type::kText},
        {"strip_tags", Type::kBoolean, Value(false)},
        {"port", Type::kInt32, Value(80)}},
       Type::kText,
       [&waits](Args& args) {
         // A port above 32767 comes as the negative number of the same bits.
         const auto port = static_cast<std::uint16_t>(base::ToInt32(args[3]));
         const std::string body = waits.fetch(base::ToText(args[0]), base::ToText(args[1]), port);
         return Value(base::ToBoolean(args[2]) ? StripTags(body) : body);
       }},
  };
}

base::MemberTable HostTable(House& house, HouseObjects& objects, HostWaits& waits,
                            const base::ObjectRef& system) {
  std::vector<Member> members = Sundries(house, waits, system);
  Append(members, SettingsMembers(house));
  Append(members, DeviceMembers(house, objects));
  Append(members, EventMembers(house, objects));
  return {"Host", std::move(members)};
}

base::MemberTable CallbackTable(House& house, const base::ObjectRef& host) {
  return {"HostCallback",
          {{"GetVXIface", MemberKind::kOperation, {}, Type::kObject, [host](Args&) { return Value(host); }},
           {"writesplash",
            MemberKind::kOperation,
            {{"text", Type::kText}},
            Type::kNone,
            [&house](Args& args) {
              house.splash = base::ToText(args[0]);
              house.live.tell("frame", "{}");
              return Value();
            }},
           {"registermenu",
            MemberKind::kOperation,
            {{"section", Type::kText}, {"item", Type::kText}},
            Type::kNone,
            [&house](Args& args) {
              house.menu.add(base::ToText(args[0]), base::ToText(args[1]));
              house.live.tell("frame", "{}");
              return Value();
            }},
           {"checktrigger",
            MemberKind::kOperation,
            {{"trigger", Type::kText}},
            Type::kBoolean,
            [&house](Args& args) {
              const std::string trigger = base::ToText(args[0]);
              house.log.write("Trigger", Readable(trigger));
              return Value(house.onTrigger(trigger));
            }},
           {"forcefront",
            MemberKind::kOperation,
            {{"window", Type::kInt32}},
            Type::kNone,
            [](Args&) { return Value(); }},
           {"GetNextFreeIOCode", MemberKind::kOperation, {}, Type::kInt16, [&house](Args&) {
              return Value(house.devices.freeHouseCode());
            }}}};
}

base::MemberTable SystemTable(House& house) {
  return {"System",
          {{"LastVoiceCommand",
            MemberKind::kField,
            {},
            Type::kText,
            [&house](Args&) { return Value(house.lastVoiceCommand); },
            [&house](const Value& value) { house.lastVoiceCommand = base::ToText(value); }}}};
}

}  // namespace

SystemObject::SystemObject(House& house) : TableObject(SystemTable(house)) {}

HostObject::HostObject(House& house, HouseObjects& objects, HostWaits& waits, const base::ObjectRef& system)
    : TableObject(HostTable(house, objects, waits, system)) {}

CallbackObject::CallbackObject(House& house, const base::ObjectRef& host)
    : TableObject(CallbackTable(house, host)) {}

}  // namespace standin
