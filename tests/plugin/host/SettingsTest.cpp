#include "support/House.hpp"

using support::House;

namespace {
class Settings : public House {
 protected:
  void SetUp() override {
    connect();
    journal.clear();
  }
};
}  // namespace

TEST_F(Settings, AreReadAndWrittenThroughTheHostOnly) {
  plugin.settings.save("Volume", 7);
  EXPECT_EQ(plugin.settings.number("Volume", 50), 7);
  EXPECT_THAT(journal.lines(),
              ::testing::ElementsAre("SaveINISetting(\"Settings\", \"Volume\", 7, \"vxif_WMP.ini\")",
                                     "GetINISetting(\"Settings\", \"Volume\", 50, \"vxif_WMP.ini\")"));
}

TEST_F(Settings, AMissingKeyGivesTheDefaultUnchanged) {
  EXPECT_TRUE(plugin.settings.flag("TrayIcon", true));
  EXPECT_EQ(plugin.settings.text("WhileSpeaking", "Pause"), "Pause");
  EXPECT_EQ(plugin.settings.number("Volume", 50), 50);
}

TEST_F(Settings, AFlagIsAWordOrANumber) {
  host->settings["trayicon"] = "TRUE";
  EXPECT_TRUE(plugin.settings.flag("TrayIcon", false));
  host->settings["trayicon"] = "0";
  EXPECT_FALSE(plugin.settings.flag("TrayIcon", true));
  host->settings["trayicon"] = "maybe";
  EXPECT_THROW((void)plugin.settings.flag("TrayIcon", true), base::Failure);
}

TEST_F(Settings, WhatIsNotWhatItIsMeantToBeIsAFailureThatNamesTheSetting) {
  const auto failure = [](const std::function<void()>& reading) -> std::string {
    try {
      reading();
    } catch (const base::Failure& thrown) {
      return thrown.description();
    }
    return "none";
  };
  host->settings["trayicon"] = "maybe";
  EXPECT_EQ(failure([&] { (void)plugin.settings.flag("TrayIcon", true); }),
            "Type mismatch in the setting TrayIcon");
  host->settings["volume"] = "-3000000000";
  EXPECT_EQ(failure([&] { (void)plugin.settings.wholeNumber("Volume", 50); }),
            "Overflow in the setting Volume");
  EXPECT_EQ(plugin.settings.number("Volume", 50), -3e9);
  host->answers["GetINISetting"] = [](base::Args&) { return base::Value(base::Array{}); };
  EXPECT_EQ(failure([&] { (void)plugin.settings.number("Volume", 50); }),
            "Type mismatch in the setting Volume");
  EXPECT_EQ(failure([&] { (void)plugin.settings.text("WhileSpeaking", ""); }),
            "Type mismatch in the setting WhileSpeaking");
}

TEST_F(Settings, BooleansAreHandedOverAsBooleans) {
  base::Value saved;
  host->answers["SaveINISetting"] = [&](base::Args& args) {
    saved = args[2];
    return base::Value();
  };
  plugin.settings.save("AlwaysOnTop", true);
  EXPECT_EQ(saved, base::Value(true));
}
