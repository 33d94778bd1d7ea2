// The popup window follows what is wanted of it, and tells what really happened.
#include "support/PopupHouse.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Visibility : public support::PopupHouse {
 protected:
  void want(bool shown) { plugin.calls.SetDisplayControls(shown); }
  std::vector<std::string> savedPlace() {
    return journal.with("SaveINISetting(\"Settings\", \"DisplayControls");
  }
};

constexpr const char* kCode = R"(GetDeviceCode("Media Player Display Controls"))";

}  // namespace

TEST_F(Visibility, AWantedWindowShowsASecondLaterAndThenItsDeviceSaysSo) {
  loop.advance(base::Milliseconds(900));
  EXPECT_THAT(journal.lines(), IsEmpty());
  second();
  EXPECT_THAT(
      journal.lines(),
      ElementsAre(kCode, "window: show", "window: normal", "window: control height 62",
                  "window: Image1 hidden", "window: control top 0", "window: height 1710", "forcefront(55)",
                  "window: SetWindowPos -1 2970 83", device("Show"), R"(SetDeviceStatus("Q10", 2))",
                  R"(SaveINISetting("Settings", "DisplayControls", True, "vxif_WMP.ini"))"));
  EXPECT_FALSE(plugin.popupControls.Visibility().enabled());
}

TEST_F(Visibility, AnUnwantedWindowLeavesItsPlaceAndGoes) {
  shown();
  window.topTwips = 150;
  window.leftTwips = 75.5F;
  want(false);
  EXPECT_TRUE(window.isVisible) << "not within the call";
  second();
  EXPECT_THAT(journal.lines(),
              ElementsAre(kCode, R"(SaveINISetting("Settings", "DisplayControlsTop", 150, "vxif_WMP.ini"))",
                          R"(SaveINISetting("Settings", "DisplayControlsLeft", 75.5, "vxif_WMP.ini"))",
                          "window: hide", device("Hide"), R"(SetDeviceStatus("Q10", 3))",
                          R"(SaveINISetting("Settings", "DisplayControls", False, "vxif_WMP.ini"))"));
  EXPECT_FALSE(plugin.popupControls.Visibility().enabled());
}

TEST_F(Visibility, AWindowAtTheLeftEdgeSavesNoPlace) {
  shown();
  window.topTwips = 150;
  window.leftTwips = 0;
  want(false);
  second();
  EXPECT_FALSE(window.isVisible);
  EXPECT_THAT(savedPlace(),
              ElementsAre(R"(SaveINISetting("Settings", "DisplayControls", False, "vxif_WMP.ini"))"));
}

TEST_F(Visibility, AWindowAboveTheTopEdgeSavesNoPlaceEither) {
  shown();
  window.topTwips = -15;
  window.leftTwips = 75;
  want(false);
  second();
  EXPECT_EQ(savedPlace().size(), 1U);
}

TEST_F(Visibility, BehindAModalWindowItTriesEachSecondUntilItShows) {
  for (const std::int32_t number : {401, 402}) {
    want(true);
    window.isVisible = false;
    window.showFailure = number;
    journal.clear();
    for (int tries = 1; tries <= 3; ++tries) {
      second();
      EXPECT_EQ(journal.count("window: show"), static_cast<std::size_t>(tries)) << number;
    }
    EXPECT_THAT(journal.with("SetDevice"), IsEmpty());
    EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
    window.showFailure = 0;
    second();
    EXPECT_TRUE(window.isVisible);
    EXPECT_TRUE(journal.has(device("Show")));
    journal.clear();
    second();
    EXPECT_THAT(journal.lines(), IsEmpty()) << "it has succeeded";
  }
}

TEST_F(Visibility, AnyOtherFailureIsToldInTheLogAndTriedAgain) {
  window.showFailure = 57;
  second();
  EXPECT_TRUE(logged("Error", "Media Player Error# 57: Input or output failed"));
  EXPECT_THAT(journal.with("SetDevice"), IsEmpty());
  EXPECT_TRUE(plugin.popupControls.Visibility().enabled());
  window.showFailure = 0;
  second();
  EXPECT_TRUE(journal.has(device("Show")));
}

TEST_F(Visibility, ALostHostEndsThePlugIn) {
  host->failing = {"GetDeviceCode"};
  host->failureNumber = base::number::kHostGone;
  second();
  EXPECT_TRUE(platform.ended);
}

TEST_F(Visibility, AWindowThatDoesNotComeIsAskedForAgain) {
  window.obeys = false;
  second();
  EXPECT_THAT(journal.lines(), ElementsAre(kCode, "window: show"));
  EXPECT_TRUE(plugin.popupControls.Visibility().enabled());
  window.obeys = true;
  second();
  EXPECT_TRUE(journal.has(device("Show")));
}

TEST_F(Visibility, AWindowThatDoesNotGoIsAskedToGoAgain) {
  shown();
  window.obeys = false;
  want(false);
  second();
  EXPECT_EQ(journal.lines().back(), "window: hide");
  EXPECT_TRUE(plugin.popupControls.Visibility().enabled());
  window.obeys = true;
  second();
  EXPECT_TRUE(journal.has(device("Hide")));
}

TEST_F(Visibility, WhatIsWantedWhenTheTimeComesCounts) {
  shown();
  want(false);
  want(true);
  second();
  EXPECT_TRUE(window.isVisible);
  EXPECT_FALSE(journal.has("window: hide"));
}

TEST_F(Visibility, WhatIsWantedWhileTheHouseIsToldComesASecondLater) {
  host->answers["SetDeviceString"] = [this, first = true](base::Args& /*args*/) mutable {
    if (std::exchange(first, false)) want(false);
    return base::Value();
  };
  second();
  EXPECT_TRUE(window.isVisible);
  second();
  EXPECT_FALSE(window.isVisible);
  EXPECT_TRUE(journal.has(device("Hide")));
  EXPECT_FALSE(plugin.popupControls.Visibility().enabled());
}

TEST_F(Visibility, AWindowThatIsNotToStayOnTopIsPutBesideTheOthers) {
  plugin.calls.SetAlwaysOnTop(false);
  second();
  EXPECT_TRUE(journal.has("window: SetWindowPos -2 2970 83"));
}

TEST_F(Visibility, AlwaysOnTopIsDoneAtOnceToAWindowThatShows) {
  shown();
  plugin.calls.SetAlwaysOnTop("toggle");
  EXPECT_TRUE(journal.has("window: SetWindowPos -2 2970 83"));
  EXPECT_FALSE(plugin.popupMenus.checked("AlwaysOnTop"));
}

TEST_F(Visibility, ShowingTakesAMinimisedWindowBack) {
  window.isMinimised = true;
  second();
  EXPECT_FALSE(window.isMinimised);
  EXPECT_TRUE(journal.has("window: height 1710")) << "it was laid out behind that";
}

TEST_F(Visibility, WithoutAWindowsHandleNothingIsPutInFront) {
  window.windowHandle = 0;
  second();
  EXPECT_THAT(journal.with("forcefront"), IsEmpty());
  EXPECT_TRUE(journal.has(device("Show")));
}

TEST_F(Visibility, APlugInThatIsGoingDownIsLeftAlone) {
  plugin.host.Host.reset();
  second();
  EXPECT_THAT(journal.lines(), IsEmpty());
  EXPECT_FALSE(platform.ended);
  EXPECT_FALSE(plugin.popupControls.Visibility().enabled());
}

namespace {

/// A machine without a display.
class NoDisplay : public support::House {
 protected:
  NoDisplay() : House(Pages::kFakes, &none) {}
  static inline ui::WindowlessPopup none;
};

}  // namespace

TEST_F(NoDisplay, TheHouseIsToldAllTheSameAndNothingWaits) {
  start();
  loop.advance(base::Milliseconds(1000));
  EXPECT_TRUE(journal.has(R"(SetDeviceStatus("Q10", 2))"));
  EXPECT_THAT(journal.with("forcefront"), IsEmpty());
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
  journal.clear();
  plugin.calls.SetDisplayControls("toggle");
  loop.advance(base::Milliseconds(1000));
  EXPECT_TRUE(journal.has(R"(SetDeviceStatus("Q10", 3))"));
  EXPECT_TRUE(journal.has(R"(SaveINISetting("Settings", "DisplayControls", False, "vxif_WMP.ini"))"));
  journal.clear();
  loop.advance(base::Milliseconds(10'000));
  EXPECT_THAT(journal.lines(), IsEmpty());
}
