// The library on devices: what is chosen there plays, in a real house.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using support::RealHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class QuickPlay : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    // The first look at the music folder goes on beside the start, and the names come by themselves behind
    // it.
    // What can be said is written last.
    ASSERT_TRUE(support::Eventually([&] {
      return !names("Quick Album").empty() && !vcmd("Album VR").empty();
    })) << house.log();
  }
  void restart() {
    house.server().signal(SIGTERM);
    ASSERT_EQ(house.server().wait(), 0);
    ASSERT_TRUE(house.startReady()) << house.server().output();
  }
  /// The HTTP status.
  int choose(const std::string& device, int value) {
    const RealHouse::Json body{
        {"ref", house.device(device).value("ref", 0)}, {"command", "value"}, {"value", value}};
    const auto answer = house.client().Post("/api/command", {{"Origin", house.url()}}, support::TextOf(body),
                                            "application/json");
    said = answer ? answer->body : "";
    return answer ? answer->status : -1;
  }
  /// The names to choose from, behind the blank and the entry that reads them anew.
  std::vector<std::string> names(const std::string& device) {
    std::vector<std::string> all;
    const auto answer = RealHouse::Json::parse(
        house.get("/api/values?q=&ref=" + std::to_string(house.device(device).value("ref", 0))));
    for (const auto& entry : answer["values"])
      if (entry["value"] != "0" && entry["value"] != "1") all.push_back(entry["name"]);
    return all;
  }
  /// Does something with the house's own object, as any program on its bus may.
  template <class Work>
  auto withHost(const Work& work) {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    return work(base::Deref(connection.proxy("org.vantorix.Host", "/host")));
  }
  /// The house only deletes all devices of an interface.
  void deleteDevice(const std::string& name) {
    withHost([&](base::Object& host) {
      base::Deref(host.invoke("GetDeviceEx", "Media Player " + name)).put("interface", "Nobody");
      host.invoke("DeleteIODevices", "Nobody");
    });
  }
  std::int32_t refOf(const std::string& name) {
    const RealHouse::Json device = house.device(name);
    return device.is_object() ? device.value("ref", 0) : 0;
  }
  /// The devices that an event is for, by their numbers.
  std::vector<std::int32_t> devicesOf(const std::string& event) {
    return withHost([&](base::Object& host) {
      const base::Value named = host.invoke("GetEventEx", event);
      const base::Value entries = base::Deref(named).get("ev_devices");
      base::Object& list = base::Deref(entries);
      std::vector<std::int32_t> refs;
      for (std::int32_t i = 1; i <= base::ToInt32(list.get("Count")); ++i)
        refs.push_back(base::ToInt32(base::Deref(list.invoke("item", i)).get("devid")));
      return refs;
    });
  }
  base::Value script(const std::string& operation, const std::string& argument) {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    return connection.proxy("org.vantorix.vxif_WMP9", "/scriptclass")->invoke(operation, argument);
  }
  std::string vcmd(const std::string& event) {
    return withHost([&](base::Object& host) {
      return base::ToText(base::Deref(host.invoke("GetEventEx", event)).get("vcmd"));
    });
  }

  support::SmallMusic music;
  RealHouse house{{.music = music.path()}};
  std::string said;
};

}  // namespace

TEST_F(QuickPlay, ANameThatIsChosenPlaysAndTheListFallsBack) {
  EXPECT_THAT(names("Quick Album"), ElementsAre("Counting"));
  EXPECT_EQ(choose("Quick Album", 2), 200) << said;
  EXPECT_TRUE(house.textBecomes("Title", "One"));
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
  EXPECT_EQ(house.device("Quick Album")["value"], 0);
  EXPECT_EQ(house.text("Quick Album"), "Play an Album");
}

TEST_F(QuickPlay, AlbumsPlayInOrderAndArtistsShuffled) {
  ASSERT_EQ(choose("Quick Artist", 1), 200) << said;
  ASSERT_THAT(names("Quick Artist"), ElementsAre("The Testers"));
  EXPECT_EQ(choose("Quick Artist", 2), 200) << said;
  EXPECT_TRUE(house.textBecomes("Shuffle Mode", "Shuffle"));
  EXPECT_TRUE(house.textBecomes("Artist", "The Testers"));
  EXPECT_EQ(choose("Quick Album", 2), 200) << said;
  EXPECT_TRUE(house.textBecomes("Shuffle Mode", "No Shuffle"));
}

TEST_F(QuickPlay, WhatCantBePlayedIsSaidSo) {
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const std::string address = house.device("Quick Album")["address"];
  connection.proxy("org.vantorix.Host", "/host")
      ->invoke("DeviceValuesAdd", address,
               "Gone\2"
               "3",
               true);
  EXPECT_EQ(choose("Quick Album", 3), 409);
  EXPECT_THAT(said, HasSubstr("Cannot 'Play': Album 'Gone' does not exist"));
  EXPECT_EQ(house.device("Quick Album")["value"], 0);
  EXPECT_EQ(choose("Quick Album", 4), 404);
  EXPECT_THAT(said, HasSubstr("The device has no such value"));
}

TEST_F(QuickPlay, AScriptBringsTheListsUpToDate) {
  EXPECT_EQ(script("RefreshLists", "genre"), base::Value(true));
  EXPECT_THAT(names("Quick Genre"), ElementsAre("Numbers"));
  EXPECT_EQ(vcmd("Genre VR"), "Play Genre (Numbers)");
  EXPECT_EQ(script("RefreshLists", "media library"), base::Value(false));
}

TEST_F(QuickPlay, TheNextStartKnowsTheLibrary) {
  restart();
  EXPECT_THAT(names("Quick Album"), ElementsAre("Counting"));
  EXPECT_THAT(names("Quick Artist"), ElementsAre("The Testers"));
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Counting)");
  EXPECT_THAT(vcmd("Controls VR"), HasSubstr("(Play|Player) [No] (Stop|Next|"));
}

TEST_F(QuickPlay, TheControlsOwnPatternSurvivesAndAClearedOneComesBack) {
  const std::string usual = vcmd("Controls VR");
  ASSERT_NE(usual, "");
  for (const std::string own : {"Music (on|off)", ""}) {
    withHost(
        [&](base::Object& host) { base::Deref(host.invoke("GetEventEx", "Controls VR")).put("vcmd", own); });
    restart();
    EXPECT_EQ(vcmd("Controls VR"), own.empty() ? usual : own);
  }
}

TEST_F(QuickPlay, OfDeletedDevicesTheStatusAndTheListsAreMadeAnewAndNoOthers) {
  const std::int32_t status = refOf("Status");
  const std::int32_t album = refOf("Quick Album");
  const std::int32_t title = refOf("Title");
  for (const char* name : {"Status", "Display Controls", "Quick Album"}) deleteDevice(name);
  restart();
  EXPECT_THAT(names("Quick Album"), ElementsAre("Counting"));
  EXPECT_EQ(support::TextOf(house.device("Status")["buttons"]),
            R"(["Pause","Stop","Next","Prev","Restart"])");
  EXPECT_EQ(refOf("Display Controls"), 0);
  EXPECT_EQ(refOf("Title"), title);
  EXPECT_NE(refOf("Status"), status);
  EXPECT_NE(refOf("Quick Album"), album);
  EXPECT_THAT(devicesOf("Controls VR"), ElementsAre(status, refOf("Status")));
  EXPECT_THAT(devicesOf("Album VR"), ElementsAre(album, refOf("Quick Album")));
  EXPECT_EQ(house.say("play album counting"), 200);
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
}

TEST_F(QuickPlay, WithoutPlaylistsTheDeviceSaysWhatToDo) {
  EXPECT_THAT(names("Quick PlayList"), IsEmpty());
  EXPECT_EQ(house.text("Quick PlayList"), "Create PlayLists before using this feature");
  EXPECT_EQ(vcmd("PlayList VR"), "");
}

TEST_F(QuickPlay, ANameMayBeSaid) {
  EXPECT_EQ(house.say("play album counting"), 200);
  EXPECT_TRUE(house.textBecomes("Title", "One"));
}

namespace {

/// A library with names that no value and no spoken command can carry as they are.
class QuickPlayOfOddNames : public QuickPlay {
 protected:
  QuickPlayOfOddNames() {
    for (const char* album : {"!!!", "Blue!", "Blue?", "1984", "1984 Live", "1984 Remix", "AC/DC", "Gold",
                              "Gold Best Of", "Live 99", "Live 99 Remix"}) {
      engine::TrackTags tags;
      tags.title = "Title of " + std::string(album);
      tags.artist = "The Testers";
      tags.album = album;
      tags.track = 1;
      music.add("file " + std::to_string(++files), 20, tags);
    }
  }
  int files = 0;
};

}  // namespace

TEST_F(QuickPlayOfOddNames, TheyStandAsKeysAndPlayAsWhatTheLibraryHas) {
  EXPECT_THAT(names("Quick Album"),
              ElementsAre("1984", "1984 Live", "1984 Remix", "AC DC", "Blue", "Blue", "Counting", "Gold",
                          "Gold Best Of", "Live 99", "Live 99 Remix"));
  EXPECT_EQ(vcmd("Album VR"),
            "Play Album (1984|AC DC|Blue|Blue|Counting|Gold|Gold Best Of|Live 99|Live 99 Remix)");
  EXPECT_TRUE(house.logHas("Warning: The Album names '1984' and '1984 Live' are ambiguous."));
  EXPECT_TRUE(house.logHas("Warning: The Album names '1984' and '1984 Remix' are ambiguous."));
  EXPECT_EQ(choose("Quick Album", 5), 200) << said;
  EXPECT_TRUE(house.textBecomes("Title", "Title of AC/DC"));
  EXPECT_EQ(choose("Quick Album", 3), 200) << said;
  EXPECT_TRUE(house.textBecomes("Title", "Title of 1984 Live"));
}

namespace {

/// A library whose only genre has no letter in it.
class QuickPlayOfPunctuation : public QuickPlay {
 protected:
  QuickPlayOfPunctuation() {
    for (const auto& entry : std::filesystem::directory_iterator(music.path()))
      std::filesystem::remove(entry.path());
    engine::TrackTags tags;
    tags.title = "One";
    tags.album = "Counting";
    tags.genre = "!!!";
    tags.track = 1;
    music.add("file", 20, tags);
  }
};

}  // namespace

TEST_F(QuickPlayOfPunctuation, ItHasNoValueAndNothingToBeSaid) {
  EXPECT_THAT(names("Quick Genre"), IsEmpty());
  EXPECT_EQ(house.device("Quick Genre")["values"], 2) << "the blank and the entry that reads them anew";
  EXPECT_EQ(house.text("Quick Genre"), "Play a Genre");
  EXPECT_EQ(vcmd("Genre VR"), "Play Genre )");
  EXPECT_EQ(house.say("play genre"), 404);
  EXPECT_THAT(names("Quick Album"), ElementsAre("Counting"));
}
