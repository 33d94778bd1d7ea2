// The library on devices: what is chosen there plays, in a real house.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    ASSERT_TRUE(support::Eventually([&] { return !names("Quick Genre").empty(); })) << house.log();
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
  base::Value script(const std::string& operation, const std::string& argument) {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    return connection.proxy("org.vantorix.vxif_WMP9", "/scriptclass")->invoke(operation, argument);
  }
  std::string vcmd(const std::string& event) {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    const auto host = connection.proxy("org.vantorix.Host", "/host");
    return base::ToText(base::Deref(host->invoke("GetEventEx", event)).get("vcmd"));
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
  house.server().signal(SIGTERM);
  ASSERT_EQ(house.server().wait(), 0);
  ASSERT_TRUE(house.startReady());
  EXPECT_THAT(names("Quick Album"), ElementsAre("Counting"));
  EXPECT_THAT(names("Quick Artist"), ElementsAre("The Testers"));
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Counting)");
  EXPECT_THAT(vcmd("Controls VR"), HasSubstr("(Play|Player) [No] (Stop|Next|"));
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
    for (const char* album : {"!!!", "Blue!", "Blue?", "1984", "1984 Live", "AC/DC"}) {
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
  EXPECT_THAT(names("Quick Album"), ElementsAre("1984", "1984 Live", "AC DC", "Blue", "Blue", "Counting"));
  EXPECT_EQ(vcmd("Album VR"), "Play Album (1984|AC DC|Blue|Blue|Counting)");
  EXPECT_TRUE(house.logHas("Warning: The Album names '1984' and '1984 Live' are ambiguous."));
  EXPECT_EQ(choose("Quick Album", 4), 200) << said;
  EXPECT_TRUE(house.textBecomes("Title", "Title of AC/DC"));
  EXPECT_EQ(choose("Quick Album", 3), 200) << said;
  EXPECT_TRUE(house.textBecomes("Title", "Title of 1984 Live"));
}
