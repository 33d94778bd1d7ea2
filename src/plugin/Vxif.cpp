#include "plugin/Vxif.hpp"

#include "base/Attempt.hpp"
#include "base/MemberWords.hpp"
#include "base/Text.hpp"

namespace plugin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Attempt;

Vxif::Vxif(Lifecycle& lifecycle, Dispatch& dispatch, HostServices& host, const PluginState& state,
           base::Platform& platform, WebForms& web, const EventParts& events)
    : lifecycle_(lifecycle), dispatch_(dispatch), host_(host), state_(state), platform_(platform), web_(web) {
  setTable(table(events));
}

// In the order of the interface's slots.
base::MemberTable Vxif::table(const EventParts& events) {
  PublicFields& fields = lifecycle_.fields();
  const std::vector<Member> start{
      TextField("Link", fields.Link),
      TextField("LinkText", fields.LinkText),
      TextField("Page_Title", fields.Page_Title),
      Field(
          "Scripting", Type::kObject, [&fields] { return fields.Scripting; },
          [&fields](const Value& value) { fields.Scripting = base::ToObject(value); }),
      Constant("Capabilities", Type::kInt32, kCapabilities),
      Constant("Name", Type::kText, kName),
      Command("RegisterCallback", {Reference("frm")},
              [this](Args& args) { lifecycle_.RegisterCallback(ReferenceAt(args, 0)); }),
      Operation("InterfaceStatus", {}, Type::kInt16, [this] { return state_.Initialized ? 0 : 2; }),
      Operation("InitIO", {Number("port")}, Type::kText,
                [this] { return lifecycle_.InitIO(shared_from_this()); }),
      Command("ShutdownIO", {}, [this] { lifecycle_.ShutdownIO(); }),
      Command("ConfigIO", {}, [this] { ConfigIO(host_); }),
      Command("SetIO",
              {Any("dv"), Text("HouseCode"), Text("DeviceCode"), Short("Command"), Short("Brightness"),
               Short("data1"), Short("data2")},
              [this](Args& args) {
                dispatch_.SetIO(TextAt(args, 1), TextAt(args, 2), ShortAt(args, 3), ShortAt(args, 4));
              }),
      Constant("SupportsConfigDevice", Type::kBoolean, false),
      Command("ConfigDevice", {Text("hc"), Text("dc")},
              [this](Args& args) { ConfigDevice(TextAt(args, 0), TextAt(args, 1)); }),
      Constant("SupportsTriggerUI", Type::kBoolean, true),
      Constant("SupportsActionUI", Type::kBoolean, true),
  };
  const std::vector<Member> pressed{
      Command("SelectMenu", {Text("menu_name")},
              [this](Args& args) { dispatch_.SelectMenu(TextAt(args, 0)); }),
      Command("ButtonPress", {Text("button_name")},
              [this](Args& args) { dispatch_.ButtonPress(TextAt(args, 0)); }),
      Operation("GenPage", {Text("lnk")}, Type::kText,
                [this](Args& args) { return GenPage(TextAt(args, 0)); }),
      Operation("PagePut", {Text("data")}, Type::kText,
                [this](Args& args) { return PagePut(TextAt(args, 0)); }),
      Operation("Version", {}, Type::kText, [] { return ProgramVersion(); }),
  };
  return {"vxif", Joined(start, EventMembers(events), pressed)};
}

void Vxif::ConfigIO(HostServices& host) {
  Attempt step;
  step([&] {
    const std::string port = base::ToText(host.GetINISetting("Settings", "svrport", "80"));
    host.Launch("http://127.0.0.1:" + port + "/WMP_Setup");
  });
}

void Vxif::ConfigDevice(const std::string& hc, const std::string& dc) {
  platform_.messageBox(base::BoxKind::kPlain, kName, "Configure device " + hc + dc);
}

std::string Vxif::GenPage(const std::string& link) {
  std::string page;
  Attempt step;
  step([&] {
    if (base::LowerCase(host_.WEBLoggedInUser()) == "guest")
      page = "<p><b>Guests are not authorized to edit playlists</b></p>";
    else
      page = web_.GenPage(link);
  });
  return page;
}

std::string Vxif::PagePut(const std::string& data) {
  std::string page;
  Attempt step;
  step([&] { page = web_.PagePut(data); });
  return page;
}

}  // namespace plugin
