// The plug-in's dialogs, opened, filled in and submitted by browsers.
#include <algorithm>

#include "standin/dialogs/DialogHouse.hpp"

namespace {

using nlohmann::json;
using support::DialogHouse;
using support::Eventually;
using support::LivePage;
using support::WebClient;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kBlue =
    "Media Player\x02Media Player Actions\x02Play: Album\x02\x02"
    "Blue\x02\x02\x02River\x02\x02No Action\x02";

class Dialog : public DialogHouse {
 protected:
  json values(const std::string& action, const std::string& album = {}, const std::string& title = {}) {
    return {{"2", action}, {"6", album}, {"12", title}};
  }
};

}  // namespace

TEST_F(Dialog, OfAnActionIsDescribedFilledInAndChangedByThePlugin) {
  const json opened = open("action", kBlue);
  ASSERT_EQ(status, 200);
  EXPECT_THAT(dialogs->calls(), ElementsAre("ActionUI " + kBlue, "ModifyActionUI 17"));
  const json& form = opened["form"];
  EXPECT_EQ(form["interface"], "Media Player");
  EXPECT_EQ(field(form, 2)["value"], "Play: Album");
  EXPECT_EQ(field(form, 6)["value"], "Blue");
  EXPECT_EQ(field(form, 12)["value"], "River");
  EXPECT_EQ(field(form, 12)["width"], 7000);
  EXPECT_LT(field(form, 16)["width"], 7000);
}

TEST_F(Dialog, IsSubmittedAsThePluginReadsItAndRunsNothing) {
  const json opened = open("action");
  const json done =
      ask("submit", {{"dialog", opened["dialog"]}, {"values", values("Play: Album", "Blue", "River")}});
  EXPECT_EQ(status, 200);
  EXPECT_EQ(done["stored"], kBlue);
  EXPECT_EQ(done["words"], "in words");
  EXPECT_THAT(dialogs->calls(), ElementsAre("ActionUI ", "ModifyActionUI 17", "ValidateActionUI " + kBlue,
                                            "ActionUIFormat " + kBlue));
  ask("submit", {{"dialog", opened["dialog"]}, {"values", json::object()}});
  EXPECT_EQ(status, 410);
}

TEST_F(Dialog, StaysOpenWithTheMessageBesideTheFieldThatItMeans) {
  const json opened = open("action");
  dialogs->message = "Please select an Album to play!";
  const json body{{"dialog", opened["dialog"]}, {"values", values("Play: Album")}};
  const json refused = ask("submit", body);
  EXPECT_EQ(status, 422);
  EXPECT_EQ(refused["error"], "Please select an Album to play!");
  EXPECT_EQ(refused["fields"], json({{"6", "Please select an Album to play!"}}));
  dialogs->message = "Something else";
  EXPECT_THAT(ask("submit", body)["fields"], IsEmpty());
  EXPECT_EQ(status, 422);
  dialogs->message = "";
  ask("submit", body);
  EXPECT_EQ(status, 200);
}

TEST_F(Dialog, OfATriggerAndOfConditionsIsSubmittedToo) {
  json opened = open("trigger");
  EXPECT_EQ(field(opened["form"], 2)["label"], "Trigger:");
  json done = ask("submit", {{"dialog", opened["dialog"]}, {"values", {{"2", "Playback Ended"}}}});
  EXPECT_EQ(readable(done["stored"]), "Media Player|Media Player Triggers|Playback Ended");
  opened = open("condition 1", "Media Player\x02Media Player Status\x02Muted\x02No");
  EXPECT_EQ(field(opened["form"], 2)["value"], "Muted");
  EXPECT_EQ(field(opened["form"], 4)["value"], "No");
  done = ask("submit", {{"dialog", opened["dialog"]}, {"values", {{"4", "Yes"}}}});
  EXPECT_EQ(readable(done["stored"]), "Media Player|Media Player Status|Muted|Yes");
  EXPECT_THAT(dialogs->calls(), Contains("ConditionUI 1"));
  open("condition 2");
  EXPECT_THAT(dialogs->calls(), Contains("ConditionUI 2"));
  open("condition 3");
  EXPECT_EQ(status, 400);
}

TEST_F(Dialog, ItsButtonHasThePluginChangeTheForm) {
  const json opened = open("action");
  const json form = ask("press", {{"dialog", opened["dialog"]},
                                  {"field", 17},
                                  {"values", {{"2", "Play: Album"}, {"4", "Party"}, {"6", "Blue"}}}});
  ASSERT_EQ(status, 200);
  EXPECT_EQ(field(form, 12)["options"], json({"", "River of Blue", "Carey of Blue"}));
  EXPECT_EQ(field(form, 12)["value"], "River of Blue");
  EXPECT_EQ(field(form, 4)["value"], "");
  EXPECT_EQ(field(form, 2)["value"], "Play: Album");
  ask("press", {{"dialog", opened["dialog"]}, {"field", 12}, {"values", json::object()}});
  EXPECT_EQ(status, 400);
}

TEST_F(Dialog, OfManyOptionsIsReadInPages) {
  dialogs->titles.assign(3000, "Song");
  const json opened = open("action");
  const json form =
      ask("press", {{"dialog", opened["dialog"]}, {"field", 17}, {"values", values("Play: Album", "Blue")}});
  EXPECT_EQ(field(form, 12)["count"], 3001);
  EXPECT_EQ(field(form, 12)["options"].size(), 200U);
  const std::string from = "/api/dialog/options?field=12&dialog=" + id(opened);
  EXPECT_EQ(web->json(from + "&from=2999&count=100")["options"].size(), 2U);
  EXPECT_EQ(web->json(from + "&from=0&count=1&search=BLUE%20song")["count"], 3000);
  EXPECT_EQ(web->get("/api/dialog/options?field=3&count=1&dialog=" + id(opened))->status, 410);
}

TEST_F(Dialog, IsToldLiveWhatThePluginChangesByItself) {
  LivePage page(*server);
  const json opened = open("action");
  plugin->withHost([&](base::Object&, base::Object&) {
    dialogs->control(6)->invoke("AddItem", "Hejira");
    dialogs->control(17)->put("Left", 7220);
  });
  EXPECT_TRUE(page.hears(R"("changed":true)"));
  const json form = look(opened)["form"];
  EXPECT_THAT(field(form, 6)["options"], Contains("Hejira"));
  EXPECT_EQ(field(form, 17)["left"], 7220);
}

TEST_F(Dialog, BelongsToOneBrowserUntilAnotherTakesIt) {
  LivePage page(*server);
  const json first = open("action");
  WebClient other(*server);
  const json held = ask(other, "open", {{"what", "trigger"}, {"stored", ""}});
  EXPECT_EQ(status, 409);
  EXPECT_EQ(held["error"], "Another browser has the player's form open");
  EXPECT_THAT(held["who"], testing::MatchesRegex(".+, since [0-9][0-9]:[0-9][0-9]"));
  const json second = ask(other, "open", {{"what", "trigger"}, {"stored", ""}, {"take", true}});
  EXPECT_EQ(status, 200);
  EXPECT_TRUE(page.hears(R"("taken":true)"));
  EXPECT_THAT(page.heard(), HasSubstr(id(first)));
  ask("submit", {{"dialog", first["dialog"]}, {"values", json::object()}});
  EXPECT_EQ(status, 410);
  EXPECT_EQ(web->get("/api/dialog?dialog=" + id(first))->status, 410);
  ask(other, "close", {{"dialog", second["dialog"]}});
  open("action");
  EXPECT_EQ(status, 200);
}

TEST_F(Dialog, OpensAnewForTheBrowserThatHasIt) {
  const json first = open("action");
  const json second = open("trigger");
  EXPECT_EQ(status, 200);
  EXPECT_NE(first["dialog"], second["dialog"]);
  ask("close", {{"dialog", first["dialog"]}});  // comes late, and is nobody's
  EXPECT_EQ(look(second)["form"]["title"], "Media Player Triggers");
}

TEST_F(Dialog, SaysThatThePluginHasGoneAndOpensAgainWithTheSameValues) {
  LivePage page(*server);
  const json opened = open("action");
  losePlugin();
  EXPECT_TRUE(page.hears(R"("gone":true)"));
  const json body{{"dialog", opened["dialog"]}, {"values", values("Play: Album", "Blue", "River")}};
  ask("submit", body);
  EXPECT_EQ(status, 502);
  ask("press", {{"dialog", opened["dialog"]}, {"field", 17}, {"values", body["values"]}});
  EXPECT_EQ(status, 502);
  open("action");
  EXPECT_EQ(status, 502);
  startPlugin();
  ASSERT_TRUE(becomes("ready"));
  ask("submit", body);
  EXPECT_EQ(status, 410) << "a form of the plug-in before";
  const json again = open("action");
  EXPECT_EQ(ask("submit", {{"dialog", again["dialog"]}, {"values", body["values"]}})["stored"], kBlue);
}

TEST_F(Dialog, ThatIsOddIsShownAllTheSameAndToldInTheLog) {
  dialogs->action = "<b>Title</b>\t5\t12\tHelp\t\r\t\t9\t0\tA <i>slider</i>\r\t\t1\r\t\t2\t0\tName\tx";
  const json opened = open("action");
  ASSERT_EQ(status, 200);
  EXPECT_EQ(opened["form"]["title"], "<b>Title</b>");
  EXPECT_EQ(opened["form"]["notes"], json({"A <i>slider</i>"}));
  EXPECT_EQ(field(opened["form"], 2)["value"], "x");
  EXPECT_THAT(web->get("/api/log")->body, HasSubstr("row 3 has too few fields"));
}

TEST_F(Dialog, OfNothingIsShownAndCannotBeSubmitted) {
  dialogs->trigger = "";
  const json opened = open("trigger");
  ASSERT_EQ(status, 200);
  EXPECT_THAT(opened["form"]["fields"], IsEmpty());
  const json refused = ask("submit", {{"dialog", opened["dialog"]}, {"values", json::object()}});
  EXPECT_EQ(status, 422);
  EXPECT_EQ(refused["error"], "The player's form has nothing to fill in");
}

TEST_F(Dialog, TakesNoValueThatWouldBreakTheStoredString) {
  const json opened = open("action");
  const json refused = ask("submit", {{"dialog", opened["dialog"]},
                                      {"values",
                                       {{"14",
                                         "a\x02"
                                         "b"}}}});
  EXPECT_EQ(status, 422);
  EXPECT_TRUE(refused["fields"].contains("14"));
  ask("submit", {{"dialog", opened["dialog"]}, {"values", {{"14", std::string(70'000, 'x')}}}});
  EXPECT_EQ(status, 422);
  for (const json& wrong : {json("text"), json({{"2", 5}}), json(), json::array()}) {
    ask("submit", {{"dialog", opened["dialog"]}, {"values", wrong}});
    EXPECT_EQ(status, 400);
  }
}

TEST_F(Dialog, StaysGoodWhenThePluginFailsAtTheButton) {
  const json opened = open("action");
  dialogs->titles = {std::string(70'000, 'x')};  // a line that no list takes
  ask("press", {{"dialog", opened["dialog"]}, {"field", 17}, {"values", values("Play: Album", "Blue")}});
  EXPECT_EQ(status, 502);
  dialogs->titles = {"River"};
  const json form =
      ask("press", {{"dialog", opened["dialog"]}, {"field", 17}, {"values", values("Play: Album", "Blue")}});
  EXPECT_EQ(status, 200);
  EXPECT_EQ(field(form, 12)["options"], json({"", "River of Blue"}));
}
