// Events of the house, with the real server, the real plug-in and a player that plays into silence.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::ElementsAre;

namespace {

using Json = nlohmann::json;

constexpr const char* kEnded = "Media Player\2Media Player Triggers\2Playback Ended";
constexpr const char* kStarted = "Media Player\2Media Player Triggers\2Playback Started";
constexpr const char* kIsPlaying = "Media Player\2Media Player Status\2Playing\2Yes";

/// The plug-in's action text for an action without further fields.
std::string ActionText(const std::string& action) { return "Media Player\2Media Player Actions\2" + action; }
std::string PlayAlbum(const std::string& album) {
  return "Media Player\2Media Player Actions\2Play: Album\2\2" + album + "\2\2\2\2\2\2";
}

class Events : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    connection = std::make_unique<bus::Connection>(loop, house.busAddress());
    script = connection->proxy("org.vantorix.vxif_WMP9", "/scriptclass");
    player = base::ToObject(script->get("WMPObject"));
  }
  /// What a post answers; the status is in it where it is no success.
  Json answer(const std::string& path, const Json& body) {
    const auto given =
        house.client().Post(path, {{"Origin", house.url()}}, support::TextOf(body), "application/json");
    if (!given) return {{"status", -1}};
    Json json = support::JsonOf(given->body);
    if (given->status != 200) json["status"] = given->status;
    return json;
  }
  /// Makes an event; answers its number.
  std::int32_t make(const std::string& name, Json trigger, const Json& actions,
                    const Json& conditions = Json::array()) {
    const Json given = answer("/api/event/save", {{"name", name},
                                                  {"group", "Tests"},
                                                  {"on", true},
                                                  {"triggers", Json::array({std::move(trigger)})},
                                                  {"any", false},
                                                  {"conditions", conditions},
                                                  {"actions", actions},
                                                  {"again", "leave"}});
    EXPECT_TRUE(given.contains("id")) << given;
    return given.value("id", 0);
  }
  Json history(std::int32_t id) {
    return support::JsonOf(house.get("/api/event/history?id=" + std::to_string(id)))["evaluations"];
  }
  /// Waits for the event's newest evaluation to have ended, and answers it.
  Json ended(std::int32_t id) {
    Json last;
    EXPECT_TRUE(support::Eventually([&] {
      const Json all = history(id);
      if (all.empty() || all[0]["outcome"] == "running") return false;
      last = all[0];
      return true;
    })) << history(id);
    return last;
  }
  void play() {
    ASSERT_EQ(house.press("Status", "Restart"), 200);
    ASSERT_TRUE(house.textBecomes("Status", "Playing"));
    ASSERT_TRUE(house.textBecomes("Title", "One"));
  }
  std::int32_t volume() { return base::ToInt32(script->get("Volume")); }
  std::string current() {
    const base::ObjectRef media = base::ToObject(player->get("currentMedia"));
    return media ? base::ToText(media->get("name")) : std::string();
  }
  support::SmallMusic music{60};
  support::RealHouse house{{.music = music.path()}};
  bus::PollLoop loop;
  std::unique_ptr<bus::Connection> connection;
  base::ObjectRef script;
  base::ObjectRef player;
};

}  // namespace

TEST_F(Events, RunWhenPlaybackEndsAndHistorySaysWhatTheySaw) {
  const std::int32_t mute = house.device("Mute").value("ref", 0);
  const std::int32_t id = make(
      "Silence", {{"kind", "plugin"}, {"stored", kEnded}},
      {{{"kind", "plugin"}, {"stored", ActionText("Mute")}}, {{"kind", "speak"}, {"text", "Good night"}}},
      {{{"kind", "plugin"}, {"stored", kIsPlaying}, {"not", true}},
       {{"kind", "device"}, {"ref", mute}, {"field", "status"}, {"is", "equals"}, {"value", "3"}}});
  play();
  house.press("Status", "Stop");
  const Json run = ended(id);
  EXPECT_EQ(run["outcome"], "failed") << "nothing can speak here: " << run;
  ASSERT_EQ(run["conditions"].size(), 2U);
  EXPECT_EQ(run["conditions"][0]["saw"], "no");
  EXPECT_EQ(run["conditions"][0]["holds"], true);
  EXPECT_EQ(run["conditions"][1]["saw"], "off");
  ASSERT_EQ(run["actions"].size(), 2U);
  EXPECT_EQ(run["actions"][0]["failure"], "");
  EXPECT_EQ(run["actions"][1]["failure"], "There is no sound device");
  EXPECT_TRUE(house.textBecomes("Mute", "Muted")) << run << house.text("Mute") << house.log();
  EXPECT_TRUE(house.logHas("Speech: Good night"));
}

TEST_F(Events, AreLeftWhereTheyWereByAConditionThatSaysNo) {
  const std::int32_t id = make("Never", {{"kind", "plugin"}, {"stored", kStarted}},
                               {{{"kind", "plugin"}, {"stored", ActionText("Stop")}}},
                               {{{"kind", "plugin"}, {"stored", kIsPlaying}, {"not", true}}});
  play();
  const Json run = ended(id);
  EXPECT_EQ(run["outcome"], "refused") << run;
  EXPECT_EQ(run["conditions"][0]["saw"], "yes");
  EXPECT_EQ(house.text("Status"), "Playing");
}

TEST_F(Events, AnswerThePluginWhetherAnyHasTheTrigger) {
  const base::ObjectRef callback = connection->proxy("org.vantorix.Host", "/callback");
  const auto told = [&] {
    return base::ToBoolean(callback->invoke("checktrigger", "Media Player\2*\2Transitioning"));
  };
  EXPECT_FALSE(told());
  const std::int32_t id = make("Any", {{"kind", "plugin"}, {"stored", "Media Player\2x\2Transitioning"}},
                               {{{"kind", "plugin"}, {"stored", ActionText("Stop")}}});
  EXPECT_TRUE(told());
  EXPECT_EQ(ended(id)["outcome"], "done");
  EXPECT_EQ(answer("/api/event/switch", {{"id", id}, {"on", false}}).contains("version"), true);
  EXPECT_FALSE(told());
}

TEST_F(Events, AreTriggeredByScriptsAndDevices) {
  const std::int32_t mute = house.device("Mute").value("ref", 0);
  const std::int32_t byScript =
      make("From a script", {{"kind", "script"}}, {{{"kind", "plugin"}, {"stored", ActionText("Mute")}}});
  const std::int32_t byDevice =
      make("From a device",
           {{"kind", "device"}, {"ref", mute}, {"field", "status"}, {"is", "equals"}, {"value", "2"}},
           {{{"kind", "wait"}, {"seconds", 1}}});
  const base::ObjectRef host = connection->proxy("org.vantorix.Host", "/host");
  EXPECT_EQ(host->invoke("TriggerEvent", "FROM A SCRIPT"), base::Value(true));
  EXPECT_EQ(host->invoke("TriggerEvent", "From a device"), base::Value(false));
  EXPECT_EQ(host->invoke("TriggerEvent", "Nobody"), base::Value(false));
  EXPECT_EQ(ended(byScript)["outcome"], "done");
  EXPECT_EQ(ended(byDevice)["outcome"], "done");
}

TEST_F(Events, PressButtonsAndRunScriptsOneAfterTheOther) {
  const std::int32_t status = house.device("Status").value("ref", 0);
  ASSERT_EQ(house.post("/api/script", {{"name", "hello"}, {"text", "print('hello')"}}), 200);
  const std::int32_t id =
      make("Both", {{"kind", "script"}},
           {{{"kind", "device"}, {"ref", status}, {"command", "press"}, {"caption", "Restart"}},
            {{"kind", "script"}, {"name", "hello"}},
            {{"kind", "script"}, {"name", "there is none"}},
            {{"kind", "device"}, {"ref", 9999}, {"command", "on"}}});
  answer("/api/event/run", {{"id", id}});
  const Json run = ended(id);
  EXPECT_EQ(run["outcome"], "failed") << run;
  EXPECT_EQ(run["actions"][0]["failure"], "");
  EXPECT_EQ(run["actions"][1]["failure"], "");
  EXPECT_EQ(run["actions"][2]["failure"], "There is no script “there is none”");
  EXPECT_EQ(run["actions"][3]["failure"], "There is no such device");
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
}

TEST_F(Events, FadeToAStopAndGiveTheVolumeBack) {
  play();
  const std::int32_t before = volume();
  ASSERT_GT(before, 0);
  const std::int32_t id =
      make("Sleep", {{"kind", "script"}}, {{{"kind", "fade"}, {"to", 0}, {"seconds", 6}, {"then", "stop"}}});
  answer("/api/event/run", {{"id", id}});
  EXPECT_TRUE(support::Eventually([&] { return volume() < before; }));
  EXPECT_EQ(ended(id)["outcome"], "done");
  EXPECT_TRUE(house.textBecomes("Status", "Stopped"));
  EXPECT_EQ(volume(), before);
}

TEST_F(Events, WakeByTheFirstChoiceThatIsHeardAndPutBackWhatWasThere) {
  engine::TrackTags birds;
  birds.title = "Birds";
  birds.artist = "Nature";
  birds.album = "Morning";
  birds.track = 1;
  music.add("Birds", 60, birds);
  const auto albums = [&] {
    const base::Value all = script->invoke("GetCategoryList", "album");
    return all.array().size();
  };
  ASSERT_TRUE(support::Eventually([&] { return albums() == 2; })) << "the new album is in the library";
  house.post("/api/voice", {{"text", "player no shuffle"}});
  script->invoke("Play", "Album", "Counting");
  ASSERT_TRUE(house.textBecomes("Title", "One"));
  house.press("Status", "Next");
  ASSERT_TRUE(house.textBecomes("Title", "Two"));
  const std::int32_t before = volume();
  const std::int32_t id = make("Wake up", {{"kind", "script"}},
                               {{{"kind", "wake"},
                                 {"choices", {PlayAlbum("No such album"), PlayAlbum("Morning")}},
                                 {"words", "Good morning"},
                                 {"volume", 30},
                                 {"seconds", 1}}});
  answer("/api/event/run", {{"id", id}});
  ASSERT_TRUE(house.textBecomes("Title", "Birds"));
  const Json run = ended(id);
  EXPECT_EQ(run["outcome"], "done") << run;
  EXPECT_EQ(volume(), 30);
  house.press("Status", "Stop");
  EXPECT_TRUE(support::Eventually([&] { return current() == "Two"; })) << current();
  EXPECT_TRUE(support::Eventually([&] { return volume() == before; }));
  EXPECT_NE(house.text("Status"), "Playing") << "nothing begins to sound by itself";
}

TEST_F(Events, SayTheWordsWhereNothingIsHeard) {
  const std::int32_t id = make("Wake up", {{"kind", "script"}},
                               {{{"kind", "wake"},
                                 {"choices", {PlayAlbum("No such album")}},
                                 {"words", "Good morning"},
                                 {"volume", 30},
                                 {"seconds", 1}}});
  answer("/api/event/run", {{"id", id}});
  EXPECT_TRUE(house.logHas("Speech: Good morning"));
  EXPECT_EQ(ended(id)["outcome"], "failed");
}
