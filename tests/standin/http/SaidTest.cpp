// What is said to the server, and what can be.
#include <gtest/gtest.h>

#include <string>

#include "standin/fakes/WebHouse.hpp"
#include "standin/http/ServerWithPlugin.hpp"
#include "support/JsonText.hpp"

namespace standin::testing {
namespace {

using nlohmann::json;
using support::Eventually;

class SaidToServer : public Server {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << Server::told(web, server);
  }

  /// Has the only event heed that pattern.
  void pattern(const std::string& text) {
    const json event = support::JsonOf(web.get("/api/voice")->body).at("events")[0];
    ASSERT_EQ(web.post("/api/voice/pattern", {{"event", event.at("id")}, {"pattern", text}}), 200);
  }

  /// A plug-in that also writes down when it has to make room.
  FakePlugin::Manner makingRoom() {
    FakePlugin::Manner manner = furnishing();
    manner.more = {{"VXEvent",
                    base::MemberKind::kOperation,
                    {{"parms", base::Type::kArray}},
                    base::Type::kNone,
                    [this](base::Args& args) {
                      const bool started = args[0].array()[1] == base::Value(true);
                      plugin.note(started ? "makes room" : "comes back");
                      return base::Value();
                    }}};
    return manner;
  }

  FakePlugin plugin{bus.address(), makingRoom()};
  ServerProcess server{bus.address(), data};
  WebClient web{server};
};

TEST_F(SaidToServer, PlayersMakeRoomForWhoSpeaksAndAreBackBeforeTheCommand) {
  const auto calls = [&] {
    std::vector<std::string> all;
    for (const std::string& call : plugin.calls())
      if (call.starts_with("SetIO") || call == "makes room" || call == "comes back") all.push_back(call);
    return all;
  };
  using Calls = std::vector<std::string>;
  ASSERT_EQ(web.post("/api/voice/quiet", {{"on", true}}), 200);
  ASSERT_EQ(web.post("/api/voice", {{"text", "play blue"}}), 200);
  ASSERT_TRUE(Eventually([&] { return calls().size() == 4; }));
  EXPECT_EQ(calls(), (Calls{"makes room", "comes back", "SetIO Quick Album Q 12 13 0 0 0 after Play Blue",
                            "makes room"}))
      << "the button is still held";
  ASSERT_EQ(web.post("/api/voice/quiet", {{"on", false}}), 200);
  EXPECT_EQ(calls().size(), 5U);
  ASSERT_EQ(web.post("/api/voice/quiet", {{"on", true}}), 200);
  ASSERT_EQ(web.post("/api/voice/quiet", {{"on", false}}), 200);
  ASSERT_EQ(web.post("/api/voice/quiet", {{"on", true}}), 200);
  EXPECT_EQ(web.postText("/api/voice/listen", "abcd", "audio/l16;rate=48000", {{"Origin", web.origin()}}),
            415);
  EXPECT_TRUE(Eventually([&] { return calls().size() == 9; }));
  EXPECT_EQ(calls().back(), "comes back") << "a sound that is none ends it, too";
}

TEST_F(SaidToServer, TellsWhatCanBeSaidAndLetsTheOwnerChangeIt) {
  json told = support::JsonOf(web.get("/api/voice")->body);
  ASSERT_EQ(told.at("events").size(), 1U);
  json event = told.at("events")[0];
  EXPECT_EQ(event.at("name"), "Album VR");
  EXPECT_EQ(event.at("devices"), json({"Media Player Quick Album"}));
  EXPECT_EQ(event.at("pattern"), "Play [Album] (Blue|Green Night)");
  EXPECT_EQ(event.at("faults"), json::array());
  EXPECT_EQ(support::TextOf(event.at("tree")),
            R"([[{"say":"Play"},{"count":1,"optional":[[{"say":"Album"}]]},)"
            R"({"choice":[[{"say":"Blue"}],[{"say":"Green Night"}]],"count":2}]])");
  EXPECT_EQ(told.at("listen").at("type"), "audio/l16;rate=16000");
  const std::string id = std::to_string(event.at("id").get<int>());
  EXPECT_EQ(
      support::TextOf(support::JsonOf(web.get("/api/voice/choices?event=" + id + "&at=0.2&q=NIGHT")->body)),
      R"({"names":["Green Night"],"total":1})");
  for (const char* nowhere : {"0", "0.0", "7.1", "0.9", "0.2.5", "x", "0.2x", ""})
    EXPECT_EQ(web.get("/api/voice/choices?event=" + id + "&at=" + nowhere)->status, 404) << nowhere;

  EXPECT_EQ(web.post("/api/voice/pattern", {{"event", event.at("id")}, {"pattern", "Play (Red|Blue"}}), 200);
  EXPECT_EQ(support::JsonOf(web.last).at("faults"), json({"“(” at character 6 is never closed"}));
  EXPECT_EQ(support::JsonOf(web.get("/api/voice/pattern?event=" + id)->body).at("pattern"), "Play (Red|Blue");
  EXPECT_EQ(web.post("/api/voice", {{"text", "play red"}}), 200);
  EXPECT_EQ(web.post("/api/voice/pattern", {{"event", 999}, {"pattern", "x"}}), 404);
}

TEST_F(SaidToServer, AnEventWhosePatternWasClearedStaysAndIsGivenAnother) {
  pattern("");
  const json events = support::JsonOf(web.get("/api/voice")->body).at("events");
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].at("name"), "Album VR");
  EXPECT_EQ(events[0].at("pattern"), "");
  EXPECT_EQ(events[0].at("tree"), json::array());
  EXPECT_EQ(events[0].at("faults"), json::array());
  EXPECT_EQ(web.post("/api/voice", {{"text", "play red"}}), 404);
  pattern("Play Red");
  EXPECT_EQ(web.post("/api/voice", {{"text", "play red"}}), 200);
  EXPECT_EQ(plugin.calls().back(), "SetIO Quick Album Q 12 13 0 0 0 after Play Red");
}

TEST_F(SaidToServer, OfTwoWhoChangeOnePatternTheSecondIsTold) {
  const json event = support::JsonOf(web.get("/api/voice")->body).at("events")[0];
  EXPECT_EQ(event.at("anew"), true);
  const auto put = [&](const json& base, const char* pattern) {
    return web.post("/api/voice/pattern", {{"event", event.at("id")}, {"pattern", pattern}, {"base", base}});
  };
  EXPECT_EQ(put(event.at("version"), "Play Red"), 200);
  const json version = support::JsonOf(web.last).at("version");
  EXPECT_EQ(put(event.at("version"), "Play Green"), 409);
  EXPECT_EQ(support::JsonOf(web.last).at("error"),
            "Somebody else has changed this meanwhile. Yours is kept, but not saved");
  const std::string id = std::to_string(event.at("id").get<int>());
  const json stored = support::JsonOf(web.get("/api/voice/pattern?event=" + id)->body);
  EXPECT_EQ(stored.at("pattern"), "Play Red");
  EXPECT_EQ(stored.at("version"), version);
  EXPECT_EQ(put(version, "Play Green"), 200);
}

TEST_F(SaidToServer, TellsOfAFoolishPatternOnlySoMuch) {
  std::string flat;
  for (int i = 0; i < 50'000; ++i) flat += "[a] ";
  pattern(flat);
  std::string body = web.get("/api/voice")->body;
  EXPECT_LT(body.size(), 20'000U);
  const json sentence = support::JsonOf(body).at("events")[0].at("tree")[0];
  ASSERT_EQ(sentence.size(), 101U);
  EXPECT_EQ(sentence.back(), json({{"more", 49'900}}));

  std::string wide = "a";
  for (int depth = 0; depth < 3; ++depth) {
    std::string all;
    for (int i = 0; i < 30; ++i) all += "[" + wide + "] ";
    wide = all;
  }
  pattern(wide);
  body = web.get("/api/voice")->body;
  EXPECT_LT(body.size(), 500'000U);
  EXPECT_EQ(support::JsonOf(body).at("events")[0].at("tree")[0].at(0).at("optional")[0].size(), 30U);
}

TEST_F(SaidToServer, AsksBackWhereTwoAreMeantAndTakesTheAnswer) {
  const std::string id =
      std::to_string(support::JsonOf(web.get("/api/voice")->body).at("events")[0].at("id").get<int>());
  web.post("/api/voice/pattern",
           {{"event", std::stoi(id)}, {"pattern", "Play (Album|Record) (Night Shift|Night Shirt)"}});
  EXPECT_EQ(web.post("/api/voice", {{"text", "play album night shit"}}), 409);
  const json told = support::JsonOf(web.last);
  EXPECT_EQ(told.at("kind"), "unclear");
  EXPECT_EQ(told.at("says"), "Did you mean “Play Album Night Shift” or “Play Album Night Shirt”?");
  EXPECT_EQ(told.at("choices")[1].at("command"), "Play Album Night Shirt");
  EXPECT_EQ(web.post("/api/voice", {{"text", "The second one!"}}), 200);
  EXPECT_EQ(support::JsonOf(web.last).at("command"), "Play Album Night Shirt");
  EXPECT_EQ(web.post("/api/voice", {{"text", "second"}}), 404) << "nobody has asked";
  EXPECT_EQ(web.post("/api/voice", {{"text", "play album night shit"}}), 409);
  EXPECT_EQ(web.post("/api/voice", {{"text", "no"}}), 200);
  EXPECT_EQ(support::JsonOf(web.last).at("says"), "Nothing was done");
  EXPECT_EQ(plugin.calls().back(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album Night Shirt");
}

TEST_F(SaidToServer, AWordThatMayBeLeftOutIsNotPutIntoAQuestion) {
  pattern("(Play|Player) [No] (Shuffle|Loop)");
  EXPECT_EQ(web.post("/api/voice", {{"text", "player shufle"}}), 409);
  EXPECT_EQ(support::JsonOf(web.last).at("says"), "Did you mean “Player Shuffle”?");
  EXPECT_EQ(web.post("/api/voice", {{"text", "yes"}}), 200);
  EXPECT_EQ(plugin.calls().back(), "SetIO Quick Album Q 12 13 0 0 0 after Player Shuffle");
}

TEST_F(SaidToServer, WhatIsWrittenLetterForLetterIsNotAskedFor) {
  pattern("Play Artist (Beyonc\u00E9|Beyonce)");
  EXPECT_EQ(web.post("/api/voice", {{"text", "play artist beyonce"}}), 409);
  EXPECT_EQ(web.post("/api/voice", {{"text", "second"}}), 200);
  EXPECT_EQ(plugin.calls().back(), "SetIO Quick Album Q 12 13 0 0 0 after Play Artist Beyonce");
  EXPECT_EQ(web.post("/api/voice", {{"text", "Play Artist Beyonc\u00E9"}}), 200)
      << "as a button of a question says it";
  EXPECT_EQ(plugin.calls().back(), "SetIO Quick Album Q 12 13 0 0 0 after Play Artist Beyonc\u00E9");
}

TEST_F(SaidToServer, TellsWhichEventIsTooLongToBeListenedFor) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "[a] ";
  pattern(text + "b");
  EXPECT_EQ(support::JsonOf(web.get("/api/voice")->body).at("events")[0].at("faults"),
            json({"It is too long to be listened for: what it says can only be typed"}));
  pattern("Play Album )");
  EXPECT_EQ(support::JsonOf(web.get("/api/voice")->body).at("events")[0].at("faults"), json::array());
  EXPECT_EQ(web.post("/api/voice", {{"text", "play album"}}), 404) << "there is none";
}

TEST_F(SaidToServer, SoundOfAnotherKindIsRefused) {
  const httplib::Headers from{{"Origin", web.origin()}};
  EXPECT_EQ(web.postText("/api/voice/listen", "abcd", "application/json", from), 415);
  EXPECT_EQ(web.postText("/api/voice/listen", "abcd", "audio/l16;rate=48000", from), 415);
  EXPECT_EQ(support::JsonOf(web.last).at("error"), "The sound has 48000 samples a second; 16000 are needed");
  EXPECT_EQ(
      web.postText("/api/voice/listen", std::string((1U << 20U) + 2, 'x'), "audio/l16;rate=16000", from),
      413);
}

TEST_F(SaidToServer, SoundIsTakenInPieces) {
  const httplib::Headers from{{"Origin", web.origin()}};
  ASSERT_EQ(web.post("/api/voice/listen/begin", json::object()), 200);
  const auto id = support::JsonOf(web.last).at("id").get<int>();
  const auto more = [&](int samples, int at) {
    return web.postText("/api/voice/listen/more?id=" + std::to_string(id) + "&at=" + std::to_string(at),
                        std::string(static_cast<std::size_t>(samples) * 2, '\0'), "audio/l16;rate=16000",
                        from);
  };
  EXPECT_EQ(more(16000, 0), 200) << web.last;
  EXPECT_EQ(more(16000, 16000), 200) << web.last;
  EXPECT_EQ(more((64 << 10) / 2 + 1, 32000), 413);
  EXPECT_EQ(web.postText("/api/voice/listen/more", "abcd", "audio/l16;rate=8000", from), 415);
  EXPECT_EQ(web.post("/api/voice/listen/end", {{"id", id}, {"samples", 32000}}), 404) << web.last;
  EXPECT_EQ(support::JsonOf(web.last).at("kind"), "silence") << "all of it is";
  EXPECT_EQ(web.post("/api/voice/listen/end", {{"id", id}, {"samples", 32000}}), 404);
  EXPECT_EQ(support::JsonOf(web.last).at("error"), "What was being said is forgotten. Say it again");
  EXPECT_EQ(more(10, 32000), 404);
  ASSERT_EQ(web.post("/api/voice/listen/begin", json::object()), 200);
  const json begun = support::JsonOf(web.last);
  EXPECT_EQ(web.post("/api/voice/listen/end", {{"id", begun.at("id")}, {"samples", 1}}), 409);
  EXPECT_EQ(support::JsonOf(web.last).at("error"), "A piece of the sound is missing. Say it again");
}

TEST_F(SaidToServer, AGuestWakesNoEarAndHearsNothingOfTheMachine) {
  ASSERT_EQ(web.post("/api/guests", {{"guests", "open"}}), 200);
  WebClient guest(server.port());
  ASSERT_EQ(guest.post("/api/login", {{"name", "guest"}}), 200);
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(guest.json("/api/voice").at("recogniser"), json({{"state", "off"}})) << "nobody may speak yet";
  EXPECT_EQ(guest.json("/api/voice").at("events").size(), 1U);
  const json owner = web.json("/api/voice").at("recogniser");
  EXPECT_NE(owner.at("state"), "off");
  for (const char* told : {"missing", "stale", "words", "unspoken"})
    EXPECT_TRUE(owner.contains(told)) << told;
  const json known = guest.json("/api/voice").at("recogniser");
  EXPECT_EQ(known.size(), 1U) << known;
}

TEST(SaidByAGuest, IsNotAnsweredAloud) {
  support::WebHouse house;
  house.onLoop([](House& all) {
    all.users.setHash(kGuest, kAdmitted);
    all.settings.save("voice.ini", "Voice", "SayAnswers", "1");
    const std::int32_t event = all.events.create("Lamp VR").id;
    all.events.addDevice(event, all.devices.create("Lamp").ref, kFuncVoice);
    all.events.put(event, &Event::vcmd, std::string("Lamp on"));
  });
  const auto say = [&](const char* user, const char* text) {
    WebClient web(house.port());
    web.cookie = house.sessionOf(user);
    return web.post("/api/voice", {{"text", text}});
  };
  EXPECT_EQ(say(kGuest, "lamp on"), 409) << "there is no plug-in to do it";
  EXPECT_EQ(say(kFirstUser, "hello"), 404);
  ASSERT_TRUE(Eventually([&] { return !house.voice().said().empty(); }));
  EXPECT_EQ(house.voice().said(), std::vector<std::string>{"That was not understood"}) << "to the owner";
}

}  // namespace
}  // namespace standin::testing
