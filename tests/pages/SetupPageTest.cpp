#include "support/PagesHouse.hpp"

using base::Value;
using support::kSetupFoot;
using support::kSetupHead;
using support::Page;
using support::PagesHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class SetupPage : public PagesHouse {
 protected:
  /// The page as the host asks for it by name.
  std::string page() { return base::ToText(plugin.setupForm->invoke("GenPage", "WMP_Setup")); }

  void allOff() {
    plugin::PluginState& state = plugin.state;
    state.AlwaysOnTop = state.ShowCoverArt = state.TrayIcon = state.RefreshActions = false;
    host->settings = {
        {"housecodeset", "81"}, {"updatemediaevents", "False"}, {"speakplaybackerrors", "False"}};
  }
};

}  // namespace

TEST_F(SetupPage, ShowsWhatIsStoredAfterAFirstStart) {
  EXPECT_EQ(
      page(),
      Page(
          std::string(kSetupHead) +
          R"(<p>While Speaking:<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE="No Action">No Action<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE="Pause"CHECKED>Pause<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE="Mute">Mute<br>
<input type="CheckBox" name="AlwaysOnTop" value="TRUE"  CHECKED>Player Controls stay Always On Top<br>
<input type="CheckBox" name="RecreateDevices" value="TRUE" DISABLED CHECKED>Recreate All Devices at next startup<br>
<input type="CheckBox" name="UpdateQuickPlay" value="TRUE"  CHECKED>Update Quick Play &amp; VR Events on startup<br>
<input type="CheckBox" name="SpeakErrors" value="TRUE"  CHECKED>Speak Playback Error Messages<br>
<input type="CheckBox" name="CoverArt" value="TRUE"  CHECKED>Show Album Cover Art<br>
<input type="CheckBox" name="Visualizations" value="TRUE" >Show Visualizations (CPU intensive)<br>
<input type="CheckBox" name="FullScreenVideo" value="TRUE" >Show Video Full Screen<br>
<input type="CheckBox" name="TrayIcon" value="TRUE"  CHECKED>Show Tray Icon<br>
<input type="CheckBox" name="RefreshActions" value="TRUE"  CHECKED>Always Refresh Media Player Event Actions (Slow with large media libraries)<br>
<input type="CheckBox" name="VRCategoryRequired" value="TRUE" >Require Category for Voice Recognition<br>
<input type="CheckBox" name="DebugMessages" value="TRUE" >Verbose Logging (debugging)<br>
)" + kSetupFoot));
}

TEST_F(SetupPage, ShowsEveryBoxOffWhenEveryOptionIs) {
  allOff();
  plugin.state.WhileSpeaking = "MUTE";
  EXPECT_EQ(
      page(),
      Page(
          std::string(kSetupHead) +
          R"(<p>While Speaking:<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE="No Action">No Action<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE="Pause">Pause<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE="Mute"CHECKED>Mute<br>
<input type="CheckBox" name="AlwaysOnTop" value="TRUE" >Player Controls stay Always On Top<br>
<input type="CheckBox" name="RecreateDevices" value="TRUE" >Recreate All Devices at next startup<br>
<input type="CheckBox" name="UpdateQuickPlay" value="TRUE" >Update Quick Play &amp; VR Events on startup<br>
<input type="CheckBox" name="SpeakErrors" value="TRUE" >Speak Playback Error Messages<br>
<input type="CheckBox" name="CoverArt" value="TRUE" >Show Album Cover Art<br>
<input type="CheckBox" name="Visualizations" value="TRUE" >Show Visualizations (CPU intensive)<br>
<input type="CheckBox" name="FullScreenVideo" value="TRUE" >Show Video Full Screen<br>
<input type="CheckBox" name="TrayIcon" value="TRUE" >Show Tray Icon<br>
<input type="CheckBox" name="RefreshActions" value="TRUE" >Always Refresh Media Player Event Actions (Slow with large media libraries)<br>
<input type="CheckBox" name="VRCategoryRequired" value="TRUE" >Require Category for Voice Recognition<br>
<input type="CheckBox" name="DebugMessages" value="TRUE" >Verbose Logging (debugging)<br>
)" + kSetupFoot));
}

TEST_F(SetupPage, TicksEachBoxByItsOwnOption) {
  const auto ticked = [this] {
    std::vector<std::string> names;
    const std::string text = page();
    const std::string field = "<input type=\"CheckBox\" name=\"";
    for (std::size_t at = text.find(field); at != std::string::npos; at = text.find(field, at + 1)) {
      const std::string box = text.substr(at + field.size(), text.find('>', at) - at - field.size());
      if (box.find("CHECKED") != std::string::npos) names.push_back(box.substr(0, box.find('"')));
    }
    return names;
  };
  using State = plugin::PluginState;
  allOff();
  ASSERT_THAT(ticked(), IsEmpty());
  const std::pair<bool State::*, const char*> held[] = {{&State::AlwaysOnTop, "AlwaysOnTop"},
                                                        {&State::ShowCoverArt, "CoverArt"},
                                                        {&State::ShowVisualizations, "Visualizations"},
                                                        {&State::FullScreenVideo, "FullScreenVideo"},
                                                        {&State::TrayIcon, "TrayIcon"},
                                                        {&State::RefreshActions, "RefreshActions"},
                                                        {&State::VRCategoryRequired, "VRCategoryRequired"},
                                                        {&State::DebugMessages, "DebugMessages"}};
  for (const auto& [flag, name] : held) {
    plugin.state.*flag = true;
    EXPECT_THAT(ticked(), ElementsAre(name));
    plugin.state.*flag = false;
  }
  const std::tuple<const char*, const char*, const char*> stored[] = {
      {"housecodeset", "-1", "RecreateDevices"},
      {"updatemediaevents", "True", "UpdateQuickPlay"},
      {"speakplaybackerrors", "-1", "SpeakErrors"}};
  for (const auto& [key, on, name] : stored) {
    allOff();
    host->settings[key] = on;
    EXPECT_THAT(ticked(), ElementsAre(name));
  }
}

TEST_F(SetupPage, AsksTheHostForWhatItDoesntHold) {
  host->silent.clear();
  page();
  EXPECT_THAT(journal.lines(),
              ElementsAre("WEBLoggedInUser()",
                          "GetINISetting(\"Settings\", \"HouseCodeSet\", \"-1\", \"vxif_WMP.ini\")",
                          "GetINISetting(\"Settings\", \"UpdateMediaEvents\", True, \"vxif_WMP.ini\")",
                          "GetINISetting(\"Settings\", \"SpeakPlaybackErrors\", True, \"vxif_WMP.ini\")"));
}

TEST_F(SetupPage, ChoosesNoActionWhereNothingIsSetAndNothingForAWordOfAnotherKind) {
  plugin.state.WhileSpeaking = "";
  EXPECT_THAT(page(), HasSubstr("VALUE=\"No Action\"CHECKED>No Action<INPUT"));
  plugin.state.WhileSpeaking = "no ACTION";
  EXPECT_THAT(page(), HasSubstr("VALUE=\"No Action\"CHECKED>No Action<INPUT"));
  plugin.state.WhileSpeaking = "Whistle";
  EXPECT_THAT(page(), Not(HasSubstr("\"CHECKED>")));
}

TEST_F(SetupPage, TurnsGuestsAway) {
  for (const char* name : {"guest", "Guest", "GUEST"}) {
    host->webUser = name;
    EXPECT_EQ(page(), "<p><b>Guests are not authorized to access the Media Player setup</b></p>");
  }
  for (const char* name : {"GUESTS", "", "admin", " guest"}) {
    host->webUser = name;
    std::set<std::string> ticked = support::kTickedAtFirst;
    ticked.insert("RecreateDevices");
    EXPECT_EQ(page(), support::WholeSetupPage("Pause", ticked));
  }
}

TEST_F(SetupPage, IsEmptyWhenTheHostCantNameTheUser) {
  host->failing = {"WEBLoggedInUser"};
  EXPECT_EQ(page(), "");
  EXPECT_THAT(journal.lines(), ElementsAre("WEBLoggedInUser()"));
}

TEST_F(SetupPage, IsEmptyWhenASettingCantBeReadAndTheLogSaysWhy) {
  host->failing = {"GetINISetting"};
  EXPECT_EQ(page(), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player: Could not complete procedure WebSetupForm/BuildSetupPage Error # 57: "
                     "Input or output failed"));
  host->failing.clear();
  host->settings["updatemediaevents"] = "perhaps";
  EXPECT_EQ(page(), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player: Could not complete procedure WebSetupForm/BuildSetupPage Error # 13: "
                     "Type mismatch in the setting UpdateMediaEvents"));
}

namespace {
class SetupLink : public support::House {
 protected:
  SetupLink() : House(Pages::kOwn) {}
};
}  // namespace

TEST_F(SetupLink, IsRegisteredByStartUpBehindTheEditorsOwn) {
  std::vector<base::ObjectRef> links;
  std::vector<std::string> texts;
  host->answers["RegisterLink"] = [&](base::Args& args) {
    links.push_back(base::ToObject(args.at(0)));
    texts.push_back(base::ToText(links.back()->get("Link")) + ", " +
                    base::ToText(links.back()->get("LinkText")) + ", " +
                    base::ToText(links.back()->get("Page_Title")));
    return Value();
  };
  EXPECT_EQ(plugin.setupForm->get("Link"), Value(""));
  connect();
  ASSERT_EQ(initIO(), "");
  EXPECT_THAT(links, ElementsAre(plugin.vxif(), plugin.setupForm));
  EXPECT_THAT(texts, ElementsAre("WMP_PListEdit, PlayList Editor, Vantorix Media Player",
                                 "WMP_Setup, Player Setup, Vantorix Media Player"));
}

TEST_F(SetupLink, IsRegisteredOnceHoweverOftenTheStartBegins) {
  std::vector<base::ObjectRef> links;
  bool refuses = true;
  host->answers["RegisterLink"] = [&](base::Args& args) -> Value {
    const base::ObjectRef link = base::ToObject(args.at(0));
    if (refuses && link == plugin.setupForm) throw base::Failure(base::number::kDeviceIo);
    links.push_back(link);
    return {};
  };
  connect();
  EXPECT_EQ(initIO(), "Input or output failed");
  refuses = false;
  ASSERT_EQ(initIO(), "");  // the form is not loaded yet
  ASSERT_EQ(initIO(), "");  // it is, and the plug-in is not ready yet
  EXPECT_THAT(links, ElementsAre(plugin.vxif(), plugin.vxif(), plugin.setupForm, plugin.vxif()));
}

TEST_F(SetupLink, ThatCantBeRegisteredFailsTheStart) {
  int links = 0;
  host->answers["RegisterLink"] = [&](base::Args&) -> Value {
    if (++links == 2) throw base::Failure(base::number::kDeviceIo);
    return {};
  };
  connect();
  EXPECT_EQ(initIO(), "Input or output failed");
  EXPECT_FALSE(plugin.lifecycle.StartInitialization().enabled());
}

TEST_F(SetupLink, BelongsToAnObjectWithItsPageOperations) {
  std::vector<std::string> names;
  for (const base::Member& member : plugin.setupForm->members()->list()) names.push_back(member.name);
  EXPECT_THAT(names, ElementsAre("Link", "LinkText", "Page_Title", "GenPage", "PagePut"));
  plugin.setupForm->put("LinkText", "Another");
  EXPECT_EQ(plugin.setupForm->get("linktext"), Value("Another"));
}
