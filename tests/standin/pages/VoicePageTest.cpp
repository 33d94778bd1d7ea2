// The page "Voice": what can be said, what is typed, and what becomes of it.
#include <gmock/gmock.h>

#include "VoiceHouse.hpp"
#include "support/Axe.hpp"
#include "support/Keys.hpp"

namespace {

using nlohmann::json;
using testing::IsEmpty;

class VoicePage : public support::VoiceHouse {
 protected:
  using VoiceHouse::VoiceHouse;
  void asGuest() {
    browser.open(server->address());
    browser.runAsync(
        "const done = arguments[0]; fetch('/api/login', {method: 'POST', headers: {'Content-Type': "
        "'application/json'}, body: '{\"name\":\"guest\"}'}).then(() => done())");
    browser.open("about:blank");
    browser.open(url("#voice"));
    ASSERT_TRUE(has(".said-event"));
  }
  /// Leaves the page and opens it again.
  void comeBack() {
    run("location.hash = '#log'");
    ASSERT_TRUE(has(".log li"));
    run("location.hash = '#voice'");
  }
  void change(const std::string& name) { browser.click("//button[@aria-label='Change " + name + "']"); }
  /// How an event's sentences are read, with what is told only to who can't see it.
  json drawn(int event) {
    return run(
        "return document.querySelectorAll('.said')[arguments[0]].textContent.replace(/\\s+/g, ' ').trim()",
        {event});
  }
  bool editorHolds(const std::string& text) {
    return browser.eventually("return document.querySelector('.pattern-text')?.value === arguments[0]",
                              {text});
  }
};

class VoicePageOfSomeWidth : public VoicePage, public testing::WithParamInterface<int> {
 protected:
  VoicePageOfSomeWidth() : VoicePage(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(Desk, VoicePageOfSomeWidth, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, VoicePageOfSomeWidth, testing::Values(360));

TEST_P(VoicePageOfSomeWidth, ASwitchKeepsItsShapeHoweverLongItsWordsAre) {
  openVoice();
  ASSERT_TRUE(has("[aria-describedby=room-help]"));
  const auto widths = [this](const std::string& style) {
    return run(
        "return [...document.querySelectorAll('.hearing .toggle')].map(toggle => "
        "Math.round(parseFloat(" +
        style + ".width)))");
  };
  EXPECT_EQ(widths("getComputedStyle(toggle, '::before')"), json::array({40, 40}));
  EXPECT_EQ(widths("getComputedStyle(toggle.querySelector('.toggle-knob'))"), json::array({17, 17}));
}

TEST_P(VoicePageOfSomeWidth, HasNoSeriousBarriersLightOrDark) {
  openVoice();
  run("answers['POST /api/voice'] = [409, {kind: 'unclear', heard: 'blue', says: 'Did you mean “Blue” or "
      "“Sky”?',"
      "  choices: [{command: 'Play Blue', label: 'Play Blue'}, {command: 'Play Sky', label: 'Play Sky'}]}];"
      "answers['POST /api/voice/pattern'] = [200, {faults: ['The bracket at character 1 is never closed']}];"
      "answers['GET /api/voice'][1].events[1].pattern = 'Player (stop|pause)('");
  typeIn("blue");
  ASSERT_TRUE(has(".answer-choices button"));
  browser.click("//button[contains(@class, 'said-more')]");
  ASSERT_TRUE(has(".said-names li"));
  change("Control VR");
  ASSERT_TRUE(has(".pattern"));
  browser.type("//textarea", "(");
  browser.click("//form[@class='pattern']//button[text()='Save']");
  ASSERT_TRUE(has(".pattern .pattern-faults"));
  for (const char* scheme : {"light", "dark"}) {
    browser.likes(scheme);
    EXPECT_THAT(support::Barriers(browser), IsEmpty()) << scheme;
    EXPECT_EQ(run("return document.documentElement.scrollWidth <= innerWidth"), true) << scheme;
  }
}

TEST_F(VoicePage, ShowsWhatCanBeSaid) {
  openVoice();
  EXPECT_EQ(
      run("return [...document.querySelectorAll('.said-event h3, .said-to')].map(each => each.textContent)"),
      json({"Album VR", "To Media Player Quick Album", "Control VR", "To Media Player Status"}));
  EXPECT_EQ(drawn(1), "Player (one of: stop or pause)");
  EXPECT_EQ(drawn(0), "Play (if you like: Album) (one of: Album 0 or Album 1 or Album 2 9,997 more)");
}

TEST_F(VoicePage, OfManyNamesAFewAreThereUntilTheyAreSought) {
  openVoice();
  EXPECT_LT(run("return document.querySelectorAll('.said-event *').length").get<int>(), 80);
  browser.click("//button[contains(@class, 'said-more')]");
  ASSERT_TRUE(has(".said-names li"));
  EXPECT_EQ(run("return document.querySelectorAll('.said-names li').length"), 100);
  EXPECT_EQ(run("return document.querySelector('.said-names p').textContent"),
            "9,900 more: type on to find them.");
  browser.type("//div[@class='said-names']//input", "777");
  EXPECT_TRUE(browser.eventually(
      "return [...document.querySelectorAll('.said-names li')].map(each => each.textContent).join() === "
      "'Album 7777'"));
  EXPECT_EQ(run("return sought.at(-1)"), "/api/voice/choices?event=5&at=0.2&q=777");
  browser.click("//button[contains(@class, 'said-more')]");
  EXPECT_TRUE(browser.eventually("return !document.querySelector('.said-names')"));
}

TEST_F(VoicePage, NamesOfEveryKindAreTexts) {
  openVoice();
  run("const evil = '<img src=x onerror=\"window.evil=1\">'; const [, voice] = answers['GET /api/voice'];"
      "voice.recogniser = {state: 'failed', missing: evil, words: 0, unspoken: [evil]};"
      "voice.events = [{id: 7, name: evil, devices: [evil], length: 5, faults: [evil], pattern: evil,"
      "  tree: [[{say: evil}, {choice: Array(20).fill([{say: evil}]), count: 20}]]}];"
      "answers['POST /api/voice'] = [409, {kind: 'unclear', heard: evil, says: evil, choices: [{command: "
      "evil, "
      "label: evil}]}]");
  comeBack();
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('.said-event h3')?.textContent.includes('onerror')"));
  typeIn("anything");
  ASSERT_TRUE(has(".answer-choices button"));
  browser.click("//button[contains(@class, 'said-more')]");
  run("document.querySelector('.said-title button').click()");
  ASSERT_TRUE(has(".pattern"));
  EXPECT_EQ(run("return window.evil === undefined && !document.querySelector('#page img')"), true);
}

TEST_F(VoicePage, TheHouseAnswersInWords) {
  openVoice();
  typeIn("stop");
  EXPECT_TRUE(says("Stopped"));
  EXPECT_EQ(posts().at(0), json({{"path", "/api/voice"}, {"type", "application/json"}, {"text", "stop"}}));
  run("answers['POST /api/voice'] = [404, {kind: 'unknown', heard: 'hm', says: '“hm” was not understood', "
      "choices: []}]");
  typeIn("hm");
  EXPECT_TRUE(says("“hm” was not understood"));
  EXPECT_EQ(
      run("return [...document.querySelectorAll('.answers-before .says')].map(each => each.textContent)"),
      json({"Stopped"}));
  // Who comes back reads it again.
  run("location.hash = '#log'");
  ASSERT_TRUE(has(".log li"));
  browser.back();
  EXPECT_TRUE(says("“hm” was not understood"));
}

TEST_F(VoicePage, AQuestionIsAnsweredByAButtonOrInWords) {
  openVoice();
  run("answers['POST /api/voice'] = [409, {kind: 'unclear', heard: 'blue', says: 'Did you mean “Blue” or "
      "“Sky”?',"
      "  choices: [{command: 'Play Blue', label: 'Blue'}, {command: 'Play Sky', label: 'Sky'}]}]");
  typeIn("blue");
  ASSERT_TRUE(says("Did you mean “Blue” or “Sky”?"));
  run("answers['POST /api/voice'] = [200, {kind: 'done', heard: 'Play Sky', says: 'Playing Sky', choices: "
      "[]}]");
  browser.click("//div[contains(@class, 'answer-choices')]//button[text()='Sky']");
  EXPECT_TRUE(says("Playing Sky"));
  EXPECT_TRUE(browser.eventually("return document.activeElement.className === 'answer-now'"))
      << "the button that had the focus is gone";
  typeIn("first");
  ASSERT_TRUE(postsBecome(3));
  EXPECT_EQ(posts().at(1).at("text"), "Play Sky");
  EXPECT_EQ(posts().at(2).at("text"), "first");
  EXPECT_EQ(run("return document.querySelectorAll('.answer-choices').length"), 0) << "answered already";
}

TEST_F(VoicePage, AGuestSeesItAndTypes) {
  ASSERT_EQ(web->post("/api/guests", {{"guests", "open"}}), 200);
  asGuest();
  EXPECT_EQ(
      run("return document.querySelectorAll('.talk, [type=file], .said-title button, [role=switch]').length"),
      0);
  typeIn("stop");
  EXPECT_TRUE(says("Stopped"));
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
  run("location.hash = '#devices'");
  ASSERT_TRUE(has("#say"));
  EXPECT_EQ(run("return document.querySelectorAll('.talk').length"), 0);
}

TEST_F(VoicePage, WhatIsMissingIsToldAndTypingStillWorks) {
  openVoice();
  run("answers['GET /api/voice'][1].recogniser = {state: 'failed', missing: 'There is no model: apt install "
      "it', "
      "words: 0, unspoken: []}");
  comeBack();
  ASSERT_TRUE(shows("There is no model: apt install it"));
  EXPECT_TRUE(shows("The house tries again by itself"));
  typeIn("stop");
  EXPECT_TRUE(says("Stopped"));
  EXPECT_TRUE(has("[type=file]"));
  // What was missing may be there by now: who speaks is heard.
  pressMouse();
  ASSERT_TRUE(spoken());
  releaseMouse();
  EXPECT_TRUE(postsBecome(2));
}

TEST_F(VoicePage, AnEarThatHearsOnlyWhatItKnewBeforeIsTold) {
  openVoice();
  run("answers['GET /api/voice'][1].recogniser.stale = 'There is no memory left'");
  comeBack();
  EXPECT_TRUE(shows("Ready, but not for what is new"));
  EXPECT_TRUE(shows("There is no memory left"));
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
}

TEST_F(VoicePage, TheHouseSaysItsAnswersAloudIfItIsToldTo) {
  openVoice();
  browser.click("//button[@role='switch']");
  ASSERT_TRUE(browser.eventually("return document.querySelector('[role=switch]').ariaChecked === 'true'"));
  browser.click("//button[@role='switch']");
  ASSERT_TRUE(browser.eventually("return document.querySelector('[role=switch]').ariaChecked === 'false'"));
  EXPECT_EQ(posts().at(0).at("on"), true);
  EXPECT_EQ(posts().at(1).at("on"), false);
}

TEST_F(VoicePage, TheServersOwnMicrophoneIsSwitchedOnAndWhatItHearsIsShown) {
  openVoice();
  const std::string state =
      "return document.querySelector('.hearing [role=status] .pill')?.textContent === arguments[0]";
  ASSERT_TRUE(has("[aria-describedby=room-help]"));
  EXPECT_EQ(run("return document.querySelector('[aria-describedby=room-help]').ariaChecked"), "false");
  browser.click("//button[@aria-describedby='room-help']");
  EXPECT_TRUE(browser.eventually(
      "return document.querySelector('[aria-describedby=room-help]').ariaChecked === 'true'"));
  EXPECT_EQ(posts().at(0), json({{"path", "/api/voice/room"}, {"type", "application/json"}, {"on", true}}));
  EXPECT_TRUE(browser.eventually(state, {"Trying the microphone…"}));

  // The house tells that there is something new.
  const auto becomes = [&](const std::string& told) {
    run("answers['GET /api/voice/room'] = [200, " + told + "]");
    ASSERT_EQ(web->post("/api/voice/room", {{"on", false}}), 200);
  };
  becomes("{on: true, state: 'failed', trouble: 'Plug a microphone in', heard: 0}");
  EXPECT_TRUE(browser.eventually(state, {"Can’t listen in the room"}));
  EXPECT_TRUE(shows("Plug a microphone in"));
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
  browser.click("//button[text()='Try again now']");
  EXPECT_TRUE(postsBecome(2));

  becomes(
      "{on: true, state: 'listening', trouble: '', heard: 1, last: {kind: 'unclear', heard: 'play blue', "
      "command: '', "
      "events: [], says: 'Did you mean “Play Blue”?', choices: [{command: 'Play Blue', label: 'Play "
      "Blue'}]}}");
  EXPECT_TRUE(browser.eventually(state, {"Listening in the room"}));
  EXPECT_TRUE(says("Did you mean “Play Blue”?"));
  EXPECT_TRUE(shows("Heard in the room"));
  EXPECT_TRUE(has(".answer-choices button"));
  EXPECT_EQ(run("return document.querySelector('.answer-now').textContent.includes('Or say')"), false)
      << "the room was asked, and not who looks at the page";
  run("location.hash = '#log'");
  ASSERT_TRUE(has(".log li"));
  browser.back();
  EXPECT_TRUE(says("Did you mean “Play Blue”?"));
  EXPECT_TRUE(browser.eventually(state, {"Listening in the room"}));
  EXPECT_EQ(run("return document.querySelectorAll('.answers-before li').length"), 0) << "it was said once";
}

TEST_F(VoicePage, AnEditedPatternIsThereAgainAfterItWasLeft) {
  openVoice();
  change("Control VR");
  ASSERT_TRUE(editorHolds("Player (stop|pause)"));
  browser.type("//textarea", "|mine");
  EXPECT_TRUE(shows("Not saved yet"));
  run("location.hash = '#log'");
  ASSERT_TRUE(has(".log li"));
  run("location.hash = '#voice'");
  EXPECT_TRUE(editorHolds("Player (stop|pause)|mine"));
  browser.reload();
  EXPECT_TRUE(editorHolds("Player (stop|pause)|mine"));
  browser.click("//button[text()='Discard changes']");
  EXPECT_TRUE(editorHolds("Player (stop|pause)"));
  browser.reload();
  ASSERT_TRUE(has(".said-event"));
  EXPECT_EQ(run("return document.querySelector('.pattern')"), nullptr);
}

TEST_F(VoicePage, FaultsStandBesideTheText) {
  openVoice();
  change("Control VR");
  ASSERT_TRUE(editorHolds("Player (stop|pause)"));
  run("answers['POST /api/voice/pattern'] = [200, {faults: ['The bracket at character 20 closes nothing']}];"
      "answers['GET /api/voice'][1].events[1].pattern = 'Player (stop|pause))'");
  browser.type("//textarea", ")");
  browser.click("//form[@class='pattern']//button[text()='Save']");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.pattern .pattern-faults')?.textContent === "
                         "'The bracket at character 20 closes nothing'"));
  EXPECT_EQ(run("return document.querySelector('.pattern-text').getAttribute('aria-invalid')"), "true");
  EXPECT_EQ(posts().at(0).at("pattern"), "Player (stop|pause))");
  EXPECT_EQ(posts().at(0).at("event"), 6);
  run("answers['POST /api/voice/pattern'] = [200, {faults: []}];"
      "answers['GET /api/voice'][1].events[1].pattern = 'Player (stop|pause)) please'");
  browser.type("//textarea", " please");
  browser.click("//form[@class='pattern']//button[text()='Save']");
  EXPECT_TRUE(browser.eventually("return !document.querySelector('.pattern')"));
  EXPECT_EQ(run("return localStorage.getItem('voice-drafts')"), "{}");
}

TEST_F(VoicePage, WhoHasChangedItMeanwhileIsNotOverwrittenAndNeitherAmI) {
  openVoice();
  change("Control VR");
  ASSERT_TRUE(editorHolds("Player (stop|pause)"));
  run("answers['POST /api/voice/pattern'] = [409, {error: 'Somebody else has changed this meanwhile'}];"
      "Object.assign(answers['GET /api/voice'][1].events[1], {pattern: 'Player (theirs)', version: 'c9'})");
  browser.type("//textarea", "|mine");
  browser.click("//form[@class='pattern']//button[text()='Save']");
  ASSERT_TRUE(has(".pattern-clash"));
  EXPECT_EQ(posts().at(0).at("base"), "c1");
  EXPECT_EQ(run("return document.querySelector('.pattern-theirs').textContent"), "Player (theirs)");
  EXPECT_TRUE(editorHolds("Player (stop|pause)|mine"));
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
  // It is still so after the page was left: what began from the older one does not pass for the newer.
  comeBack();
  ASSERT_TRUE(editorHolds("Player (stop|pause)|mine"));
  browser.click("//form[@class='pattern']//button[text()='Save']");
  ASSERT_TRUE(has(".pattern-clash"));
  EXPECT_EQ(posts().at(1).at("base"), "c1");
  run("answers['POST /api/voice/pattern'] = [200, {faults: [], version: 'c10'}];"
      "Object.assign(answers['GET /api/voice'][1].events[1], {pattern: 'Player (stop|pause)|mine', version: "
      "'c10'})");
  browser.click("//button[text()='Save mine instead']");
  EXPECT_TRUE(browser.eventually("return !document.querySelector('.pattern')"));
  EXPECT_EQ(posts().at(2).at("base"), "c9");
  EXPECT_EQ(run("return localStorage.getItem('voice-drafts')"), "{}");
}

TEST_F(VoicePage, TheirsCanBeTakenInstead) {
  openVoice();
  change("Control VR");
  ASSERT_TRUE(editorHolds("Player (stop|pause)"));
  run("answers['POST /api/voice/pattern'] = [409, {error: 'Somebody else has changed this meanwhile'}];"
      "Object.assign(answers['GET /api/voice'][1].events[1], {pattern: 'Player (theirs)', version: 'c9'})");
  browser.type("//textarea", "|mine");
  browser.click("//form[@class='pattern']//button[text()='Save']");
  ASSERT_TRUE(has(".pattern-clash"));
  browser.click("//button[text()='Take theirs']");
  EXPECT_TRUE(editorHolds("Player (theirs)"));
  EXPECT_EQ(run("return document.querySelector('.pattern-clash')"), nullptr);
}

TEST_F(VoicePage, WhatThePlayerWritesAnewIsSaid) {
  openVoice();
  change("Album VR");
  ASSERT_TRUE(editorHolds("the whole text"));
  EXPECT_TRUE(shows("The player writes this anew whenever its lists are refreshed."));
  browser.click("//form[@class='pattern']//button[text()='Close']");
  change("Control VR");
  ASSERT_TRUE(editorHolds("Player (stop|pause)"));
  EXPECT_EQ(run("return document.querySelector('#page').textContent.includes('writes this anew')"), false);
}

TEST_F(VoicePage, APatternWithoutAnEndIsCutShort) {
  openVoice();
  run("answers['GET /api/voice'][1].events[1].tree = [[{say: 'Player'}, {more: 12345}]]");
  comeBack();
  ASSERT_TRUE(has(".said-event"));
  EXPECT_EQ(drawn(1), "Player … and 12,345 more parts");
}

TEST_F(VoicePage, ALongPatternIsFetchedWhole) {
  openVoice();
  change("Album VR");
  EXPECT_TRUE(editorHolds("the whole text"));
}

TEST_F(VoicePage, IsUsedByTheKeyboardAlone) {
  openVoice();
  const auto walkTo = [&](const std::string& selector) {
    for (int i = 0; i < 60; ++i) {
      if (run("return document.activeElement.matches(arguments[0])", {selector}) == true) return true;
      browser.press({support::kTab});
    }
    return false;
  };
  ASSERT_TRUE(walkTo("#say"));
  browser.press({"s", "t", "o", "p", support::kEnter});
  EXPECT_TRUE(says("Stopped"));
  ASSERT_TRUE(walkTo("[role=switch]"));
  browser.press({support::kSpace});
  EXPECT_TRUE(browser.eventually("return document.querySelector('[role=switch]').ariaChecked === 'true'"));
  ASSERT_TRUE(walkTo(".said-more"));
  browser.press({support::kEnter});
  ASSERT_TRUE(walkTo(".said-names input"));
  ASSERT_TRUE(walkTo("[aria-label='Change Control VR']"));
  browser.press({support::kEnter});
  ASSERT_TRUE(walkTo(".pattern-text"));
}

}  // namespace
