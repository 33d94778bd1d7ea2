#include "pages/WebSetupForm.hpp"

#include "base/Attempt.hpp"
#include "base/MemberWords.hpp"
#include "base/Text.hpp"
#include "pages/UnknownArgument.hpp"
#include "web/Concatenate.hpp"
#include "web/HtmlFields.hpp"

namespace pages {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Attempt;

namespace {

constexpr const char* kLink = "WMP_Setup";
constexpr const char* kLineEnd = "\r\n";

/// One of the choices of what to do while the house speaks. A setting that is empty counts as the first.
std::string Choice(const std::string& value, const std::string& chosen) {
  const bool checked =
      base::SameText(chosen, value) || (chosen.empty() && base::SameText(value, "No Action"));
  return R"(<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE=")" + value + "\"" + (checked ? "CHECKED" : "") +
         ">" + value;
}

}  // namespace

WebSetupForm::WebSetupForm(const SetupParts& parts)
    : in_(parts), page_(kLink, web::SetupPageLog(parts.host, "WebSetupForm")) {
  setTable(table());
}

MemberTable WebSetupForm::table() {
  return {"WebSetupForm",
          {TextField("Link", Link_), TextField("LinkText", LinkText_), TextField("Page_Title", Page_Title_),
           Operation("GenPage", {Text("lnk")}, Type::kText,
                     [this](Args& args) { return GenPage(TextAt(args, 0)); }),
           Operation("PagePut", {Text("data")}, Type::kText,
                     [this](Args& args) { return PagePut(TextAt(args, 0)); })}};
}

void WebSetupForm::Form_Load() {
  Link_ = kLink;
  LinkText_ = "Player Setup";
  Page_Title_ = "Vantorix Media Player";
  in_.host.RegisterLink(shared_from_this());
}

std::string WebSetupForm::GenPage(const std::string& /*lnk: there is one page*/) {
  std::string page;
  Attempt step;
  step([&] {
    if (base::LowerCase(in_.host.WEBLoggedInUser()) == "guest")
      page = "<p><b>Guests are not authorized to access the Media Player setup</b></p>";
    else
      page = BuildSetupPage();
  });
  return page;
}

std::string WebSetupForm::BuildSetupPage() {
  return page_.Logged("BuildSetupPage", [&] {
    web::StringAccumulator text;
    web::ConcatInit(text);
    web::ConcatAdd(text, page_.PageHeader("Media Player Setup", "Setup_Page"));
    web::ConcatAdd(text, "<p>While Speaking:");
    for (const char* value : {"No Action", "Pause", "Mute"})
      web::ConcatAdd(text, Choice(value, in_.state.WhileSpeaking));
    web::ConcatAdd(text, std::string("<br>") + kLineEnd);
    for (const SetupBox& box : SetupBoxes()) {
      const bool ticked = box.ticked(in_.state, in_.settings);
      const char* attributes = ticked && box.greyedWhenTicked ? "DISABLED" : "";
      web::ConcatAdd(text, web::FormCheckBox(box.label, box.name, ticked, attributes) + "<br>" + kLineEnd);
    }
    web::ConcatAdd(text, std::string("</p>") + kLineEnd);
    web::ConcatAdd(text, "<p>" + web::FormSubmit("button", "Update", "") + "</p>" + kLineEnd);
    web::ConcatAdd(text, std::string("<BR clear=all><hr noshade></form>") + kLineEnd);
    return web::ConcatResult(text);
  });
}

std::string WebSetupForm::MyPagePut(const std::string& data) {
  return page_.Logged("MyPagePut", [&]() -> std::string {
    SetupPost post;
    for (const auto& [name, value] : page_.Posted(data))
      if (!TakeArgument(post, name, value)) LogUnknownArgument(in_.host, name, value);
    if (base::SameText(post.button, "update")) return UpdateConfig(post);
    if (base::SameText(post.button, "none")) return BuildSetupPage();
    return {};
  });
}

// The order counts: each option acts and is stored before the next one is looked at.
std::string WebSetupForm::UpdateConfig(const SetupPost& post) {
  if (!base::SameText(post.page, "setup_page") || !base::SameText(post.button, "update"))
    return BuildSetupPage();
  plugin::PluginState& state = in_.state;
  plugin::Settings& settings = in_.settings;
  Attempt step;
  state.WhileSpeaking = post.WhileSpeaking;
  step([&] { settings.save("WhileSpeaking", post.WhileSpeaking); });
  in_.calls.SetAlwaysOnTop(post.AlwaysOnTop);
  // Unticking doesn't undo an earlier tick.
  if (post.RecreateDevices) step([&] { settings.save("HouseCodeSet", "-1"); });
  step([&] { settings.save("UpdateMediaEvents", post.UpdateQuickPlay); });
  step([&] { settings.save("SpeakPlaybackErrors", post.SpeakErrors); });
  step([&] { settings.save("TrayIcon", post.TrayIcon); });
  state.TrayIcon = post.TrayIcon;
  step([&] { in_.desktop.ShowTrayIcon(post.TrayIcon); });
  step([&] { settings.save("RefreshActions", post.RefreshActions); });
  state.RefreshActions = post.RefreshActions;
  in_.calls.SetFullScreenVideo(post.FullScreenVideo);
  // These two lay out the window, so they are changed together or not at all.
  if (post.CoverArt != state.ShowCoverArt || post.Visualizations != state.ShowVisualizations) {
    in_.calls.SetShowCoverArt(post.CoverArt);
    in_.calls.SetShowVisualizations(post.Visualizations);
  }
  state.VRCategoryRequired = post.VRCategoryRequired;
  step([&] { settings.save("VRCategoryRequired", post.VRCategoryRequired); });
  state.DebugMessages = post.DebugMessages;
  step([&] { settings.save("DebugMessages", post.DebugMessages); });
  return BuildSetupPage();
}

}  // namespace pages
