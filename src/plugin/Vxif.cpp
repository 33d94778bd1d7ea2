#include "plugin/Vxif.hpp"

#include <algorithm>
#include <iterator>

#include "base/Attempt.hpp"
#include "base/Text.hpp"

namespace plugin {

using base::Args;
using base::Attempt;
using base::Member;
using base::MemberKind;
using base::Param;
using base::Type;
using base::Value;

namespace {

Param In(const char* name, Type type) { return {name, type}; }

/// An operation that always gives the same.
Member Constant(const char* name, std::vector<Param> params, Type result, Value value) {
  return {name, MemberKind::kOperation, std::move(params), result,
          [value = std::move(value)](Args&) { return value; }};
}

}  // namespace

Vxif::Vxif(Lifecycle& lifecycle, Dispatch& dispatch, HostServices& host, const PluginState& state,
           base::Platform& platform, WebForms& web, const EventParts& events)
    : lifecycle_(lifecycle), dispatch_(dispatch), host_(host), state_(state), platform_(platform), web_(web) {
  setTable(table(events));
}

base::MemberTable Vxif::table(const EventParts& events) {
  PublicFields& fields = lifecycle_.fields();
  const auto operation = [](const char* name, std::vector<Param> params, Type result, auto handler) {
    return Member{name, MemberKind::kOperation, std::move(params), result, std::move(handler)};
  };
  const auto text = [](const Args& args, std::size_t i) { return base::ToText(args[i]); };
  const auto number = [](const Args& args, std::size_t i) { return base::ToInt16(args[i]); };
  std::vector<Member> members = {
      base::TextField("Link", fields.Link),
      base::TextField("LinkText", fields.LinkText),
      base::TextField("Page_Title", fields.Page_Title),
      {"Scripting",
       MemberKind::kField,
       {},
       Type::kObject,
       [&fields](Args&) { return Value(fields.Scripting); },
       [&fields](const Value& value) { fields.Scripting = base::ToObject(value); }},
      Constant("Capabilities", {}, Type::kInt32, kCapabilities),
      Constant("Name", {}, Type::kText, kName),
      operation("RegisterCallback", {In("frm", Type::kObject)}, Type::kNone,
                [this](Args& args) {
                  lifecycle_.RegisterCallback(base::ToObject(args[0]));
                  return Value();
                }),
      operation("InterfaceStatus", {}, Type::kInt16,
                [this](Args&) { return Value(std::int16_t(state_.Initialized ? 0 : 2)); }),
      operation("InitIO", {In("port", Type::kInt32)}, Type::kText,
                [this](Args&) { return Value(lifecycle_.InitIO(shared_from_this())); }),
      operation("ShutdownIO", {}, Type::kNone,
                [this](Args&) {
                  lifecycle_.ShutdownIO();
                  return Value();
                }),
      operation("ConfigIO", {}, Type::kNone,
                [this](Args&) {
                  ConfigIO(host_);
                  return Value();
                }),
      operation("SetIO",
                {In("dv", Type::kAny), In("HouseCode", Type::kText), In("DeviceCode", Type::kText),
                 In("Command", Type::kInt16), In("Brightness", Type::kInt16), In("data1", Type::kInt16),
                 In("data2", Type::kInt16)},
                Type::kNone,
                [this, text, number](Args& args) {
                  dispatch_.SetIO(text(args, 1), text(args, 2), number(args, 3), number(args, 4));
                  return Value();
                }),
      Constant("SupportsConfigDevice", {}, Type::kBoolean, false),
      operation("ConfigDevice", {In("hc", Type::kText), In("dc", Type::kText)}, Type::kNone,
                [this, text](Args& args) {
                  ConfigDevice(text(args, 0), text(args, 1));
                  return Value();
                }),
      Constant("SupportsTriggerUI", {}, Type::kBoolean, true),
      Constant("SupportsActionUI", {}, Type::kBoolean, true),
      operation("SelectMenu", {In("menu_name", Type::kText)}, Type::kNone,
                [this, text](Args& args) {
                  dispatch_.SelectMenu(text(args, 0));
                  return Value();
                }),
      operation("ButtonPress", {In("button_name", Type::kText)}, Type::kNone,
                [this, text](Args& args) {
                  dispatch_.ButtonPress(text(args, 0));
                  return Value();
                }),
      operation("GenPage", {In("lnk", Type::kText)}, Type::kText,
                [this, text](Args& args) { return Value(GenPage(text(args, 0))); }),
      operation("PagePut", {In("data", Type::kText)}, Type::kText,
                [this, text](Args& args) { return Value(PagePut(text(args, 0))); }),
      operation("Version", {}, Type::kText, [](Args&) { return Value(ProgramVersion()); }),
  };
  std::vector<Member> ofEvents = EventMembers(events);
  const auto behind = std::find_if(members.begin(), members.end(),
                                   [](const Member& member) { return member.name == "SelectMenu"; });
  members.insert(behind, std::make_move_iterator(ofEvents.begin()), std::make_move_iterator(ofEvents.end()));
  return {"vxif", std::move(members)};
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
