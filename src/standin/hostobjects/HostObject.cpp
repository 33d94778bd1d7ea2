#include "standin/hostobjects/HostObject.hpp"

#include <memory>
#include <utility>

#include "base/MemberWords.hpp"
#include "standin/hostobjects/HostDevices.hpp"
#include "standin/hostobjects/HostSettings.hpp"
#include "standin/hostobjects/UrlFetcher.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/house/Quotas.hpp"

namespace standin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

constexpr int kUsualPort = 80;

/// Whom to ask for a page. The services of covers are the house's own where its machine is named and no port:
/// then it is where the house listens.
std::string Fetched(const House& house, HostWaits& waits, const std::string& host, const std::string& page,
                    int port) {
  const WebAddress address = ReadAddress(host);
  const std::string path = address.path + page;
  const bool here = address.host == "localhost" || address.host == "[::1]" ||
                    address.host.starts_with("127.") ||
                    (!house.webHost.empty() && address.host == house.webHost);
  const bool service = path.starts_with("/redir/GetMDRCD.asp?") || path.starts_with("/cover/");
  if (port != kUsualPort || !here || !service || !address.port.empty() || address.scheme == "https")
    return waits.fetch(host, page, port, {});
  const std::string& own = house.webHost.empty() ? address.host : house.webHost;
  const char* scheme = house.webCertificate.empty() ? "http://" : "https://";
  return waits.fetch(scheme + own + ":" + std::to_string(house.webPort) + address.path, page, house.webPort,
                     house.webCertificate);
}

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

std::vector<Member> Sundries(House& house, HostWaits& waits, const base::ObjectRef& system) {
  return {
      Operation("Version", {}, Type::kText, [&house] { return house.version; }),
      Constant("System", Type::kObject, system),
      Operation("GetAppPath", {}, Type::kText, [&house] { return house.folder.string(); }),
      Command("Launch", {Text("url")},
              [&house](Args& args) {
                const std::string url = TextAt(args, 0);
                house.log.write("Info", "Open " + url);
                house.live.tell("launch", Dump(url));
              }),
      Operation("WEBLoggedInUser", {}, Type::kText, [&house] { return house.webUser; }),
      Command("RegisterEventCB", {Short("mask"), Reference("plugin")},
              [&house](Args& args) {
                base::Deref(args[1]);
                house.addEventSink({ShortAt(args, 0), ReferenceAt(args, 1)});
              }),
      Command("RegisterLink", {Reference("page")},
              [&house](Args& args) {
                base::Object& page = base::Deref(args[0]);
                PageLink link{base::ToText(page.get("Link")), base::ToText(page.get("LinkText")),
                              base::ToText(page.get("Page_Title")), ReferenceAt(args, 0)};
                house.addLink(std::move(link));
              }),
      Command("WriteLog", {Text("type"), Text("text"), Text("more", "")},
              [&house](Args& args) { house.log.write(TextAt(args, 0), TextAt(args, 1) + TextAt(args, 2)); }),
      Command("Speak", {Text("text"), Flag("wait", false)},
              [&waits](Args& args) {
                waits.speak(Bounded(TextAt(args, 0), kLongestPlainText), FlagAt(args, 1));
              }),
      Operation("Say", {Text("text")}, Type::kText,
                [&house](Args& args) {
                  CheckLength("What is to be said", TextAt(args, 0));
                  return house.onSay(TextAt(args, 0));
                }),
      Operation("TriggerEvent", {Text("name")}, Type::kBoolean,
                [&house](Args& args) { return house.onScriptTrigger(TextAt(args, 0)); }),
      Command("WaitEvents", {}, [&waits] { waits.pendingEvents(); }),
      Command("WaitSecs", {Short("seconds")}, [&waits](Args& args) { waits.seconds(ShortAt(args, 0)); }),
      Operation("GetUrl", {Text("host"), Text("page"), Flag("strip_tags", false), Number("port", 80)},
                Type::kText,
                [&waits, &house](Args& args) {
                  for (const std::size_t part : {0U, 1U})
                    CheckLength("The address of a page", TextAt(args, part));
                  // A port above 32767 comes as the negative number of the same bits.
                  const auto port = static_cast<std::uint16_t>(NumberAt(args, 3));
                  const std::string body = Fetched(house, waits, TextAt(args, 0), TextAt(args, 1), port);
                  return FlagAt(args, 2) ? StripTags(body) : body;
                }),
  };
}

MemberTable HostTable(House& house, HouseObjects& objects, HostWaits& waits, const base::ObjectRef& system) {
  return {"Host", Joined(Sundries(house, waits, system), SettingsMembers(house),
                         DeviceMembers(house, objects), EventMembers(house, objects))};
}

MemberTable CallbackTable(House& house, const base::ObjectRef& host) {
  return {
      "HostCallback",
      {Constant("GetVXIface", Type::kObject, host),
       Command("writesplash", {Text("text")},
               [&house](Args& args) {
                 house.splash = Bounded(TextAt(args, 0), kLongestPlainText);
                 house.live.tell("frame", "{}");
               }),
       Command("registermenu", {Text("section"), Text("item")},
               [&house](Args& args) {
                 house.menu.add(TextAt(args, 0), TextAt(args, 1));
                 house.live.tell("frame", "{}");
               }),
       Operation("checktrigger", {Text("trigger")}, Type::kBoolean,
                 [&house](Args& args) {
                   const std::string trigger = TextAt(args, 0);
                   house.log.write("Trigger", Readable(trigger));
                   return house.onTrigger(trigger);
                 }),
       Command("forcefront", {Number("window")}, [] {}),
       Operation("GetNextFreeIOCode", {}, Type::kInt16, [&house] { return house.devices.freeHouseCode(); })}};
}

MemberTable SystemTable(House& house) {
  return {"System",
          {Field(
              "LastVoiceCommand", Type::kText, [&house] { return house.lastVoiceCommand; },
              [&house](const Value& value) {
                std::string said = base::ToText(value);
                CheckLength("What was said", said);
                house.lastVoiceCommand = std::move(said);
              })}};
}

}  // namespace

SystemObject::SystemObject(House& house) : TableObject(SystemTable(house)) {}

HostObject::HostObject(House& house, HouseObjects& objects, HostWaits& waits, const base::ObjectRef& system)
    : TableObject(HostTable(house, objects, waits, system)) {}

CallbackObject::CallbackObject(House& house, const base::ObjectRef& host)
    : TableObject(CallbackTable(house, host)) {}

}  // namespace standin
