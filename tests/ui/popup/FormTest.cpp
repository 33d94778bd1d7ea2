// What the user does to the popup window.
#include "support/PopupHouse.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class Form : public support::PopupHouse {};
}  // namespace

TEST_F(Form, ClosingItByItsFrameHidesItAndTurnsTheDeviceOff) {
  shown();
  EXPECT_TRUE(window.events->Form_QueryUnload(ui::PopupWindowEvents::kByTheUser)) << "it stays";
  EXPECT_THAT(journal.lines(), ElementsAre("window: minimise"));
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  second();
  EXPECT_FALSE(window.isVisible);
  EXPECT_TRUE(journal.has(device("Hide")));
  EXPECT_TRUE(journal.has(R"(SetDeviceStatus("Q10", 3))"));
}

TEST_F(Form, AWindowThatCantBeMinimisedIsToldInTheLogAndStays) {
  shown();
  window.minimiseFailure = base::number::kDeviceIo;
  EXPECT_TRUE(window.events->Form_QueryUnload(ui::PopupWindowEvents::kByTheUser));
  EXPECT_TRUE(logged("Error", "Media Player Error# 57: Input or output failed"));
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
}

TEST_F(Form, MinimisingItHidesIt) {
  shown();
  window.isMinimised = true;
  window.events->Form_Resize();
  second();
  EXPECT_FALSE(window.isVisible);
  plugin.calls.SetDisplayControls("toggle");
  second();
  EXPECT_TRUE(window.isVisible);
  EXPECT_FALSE(window.isMinimised);
}

TEST_F(Form, AnyOtherSizeIsLaidOutAnew) {
  shown();
  window.events->Form_Resize();
  EXPECT_TRUE(journal.has("window: height 1710"));
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
}

TEST_F(Form, NobodyElseIsKeptFromClosingIt) {
  EXPECT_FALSE(window.events->Form_QueryUnload(1));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Form, ItsEndStopsThePlayerAndLetsGoOfTheHost) {
  window.events->Form_Unload();
  EXPECT_THAT(playerCalls(), ElementsAre("player: stop"));
  EXPECT_EQ(plugin.host.Host, nullptr);
  EXPECT_NE(plugin.host.HostCallback, nullptr);
}

TEST_F(Form, BroughtBackByItsUserItIsWanted) {
  plugin.calls.SetDisplayControls(false);
  second();
  window.events->broughtBack();
  second();
  EXPECT_TRUE(window.isVisible);
  EXPECT_TRUE(journal.has(device("Show")));
}

TEST_F(Form, ADoubleClickOnTheCoverTakesItAway) {
  plugin.popup.image("picture");
  plugin.popup.LayoutControls();
  ASSERT_TRUE(window.imageShown);
  window.events->Image1_DblClick();
  EXPECT_FALSE(window.imageShown);
  EXPECT_FALSE(plugin.state.ShowCoverArt);
  window.events->Image1_DblClick();
  EXPECT_FALSE(plugin.state.ShowCoverArt) << "it is no toggle";
}

TEST_F(Form, ADoubleClickOnThePlayerTogglesItsPicture) {
  window.events->wmp9_DoubleClick();
  EXPECT_TRUE(plugin.state.ShowVisualizations);
  window.events->wmp9_DoubleClick();
  EXPECT_FALSE(plugin.state.ShowVisualizations);
}

TEST_F(Form, TheSettingsMenuTogglesWhatItNames) {
  const plugin::PluginState& state = plugin.state;
  const std::vector<std::pair<const char*, const bool*>> flags = {
      {"ShowCoverArt", &state.ShowCoverArt},
      {"ShowVisualizations", &state.ShowVisualizations},
      {"ShowFullScreenVideo", &state.FullScreenVideo},
      {"AlwaysOnTop", &state.AlwaysOnTop},
  };
  for (const auto& [item, flag] : flags) {
    const bool before = *flag;
    EXPECT_EQ(plugin.popupMenus.checked(item), before) << item;
    window.events->menuClick(item);
    EXPECT_NE(*flag, before) << item;
    EXPECT_EQ(plugin.popupMenus.checked(item), *flag) << item;
  }
}

TEST_F(Form, TheModesInItsMenuAreThePlayers) {
  window.events->menuClick("LoopMode");
  EXPECT_TRUE(wmp9->modes["Loop"]);
  EXPECT_TRUE(plugin.popupMenus.checked("LoopMode"));
  window.events->menuClick("ShuffleMode");
  EXPECT_TRUE(plugin.popupMenus.checked("ShuffleMode"));
  window.events->menuClick("ShuffleMode");
  EXPECT_FALSE(plugin.popupMenus.checked("ShuffleMode"));
}

TEST_F(Form, EjectOpensTheFirstDrive) {
  window.events->menuClick("Eject");
  EXPECT_THAT(playerCalls(), ElementsAre("player: eject 0"));
}

TEST_F(Form, AboutIsAPlainBox) {
  window.events->menuClick("About");
  EXPECT_THAT(journal.lines(), ElementsAre(std::string("box Vantorix Media Player: Version: 1.0.23\r\n") +
                                           plugin::kLegalNotice));
}

TEST_F(Form, ItemsWithoutAnActionDoNothing) {
  for (const char* item : {"Play", "AlbumMenu", "ArtistMenu", "GenreMenu", "PlayListMenu", "Settings", "Sep1",
                           "Sep2", "nothing such"})
    window.events->menuClick(item);
  EXPECT_THAT(journal.lines(), IsEmpty());
}
