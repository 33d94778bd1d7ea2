// Somebody speaks to the house through a browser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "house/player/Listener.hpp"

namespace {

using support::Browser;
using support::PlayerBar;

/// A house with a browser whose microphone says a sentence, once each time it is opened.
class SpokenTo : public PlayerBar {
 protected:
  void openVoice(Browser& browser) {
    browser.open(house.address());
    browser.open("about:blank");
    browser.open(house.url() + "/#voice");
    ASSERT_TRUE(browser.eventually("return document.querySelector('.said-event') !== null"));
  }
  static bool pill(Browser& browser, const std::string& words) {
    return browser.eventually("return document.querySelector('.hearing .pill')?.textContent === arguments[0]",
                              {words});
  }
  /// The process of the server's ear; 0 where there is none.
  pid_t ear() {
    const auto lists =
        std::filesystem::directory_iterator("/proc/" + std::to_string(house.server().id()) + "/task");
    for (const auto& thread : lists) {
      std::ifstream children(thread.path() / "children");
      for (pid_t child = 0; children >> child;) {
        std::string name;
        std::getline(std::ifstream("/proc/" + std::to_string(child) + "/comm"), name);
        if (name == "vantorix-ear") return child;
      }
    }
    return 0;
  }
  /// The arguments of such a browser.
  std::vector<std::string> saying(const std::string& words) {
    const std::string said = (folder_.path() / "said.wav").string();
    const std::string sound = (folder_.path() / "sound.wav").string();
    const std::string command = "espeak-ng -v en-us -s 140 -w '" + said + "' '" + words +
                                "' && ffmpeg -loglevel error -y -i '" + said +
                                "' -af adelay=400,apad=pad_dur=60 -ac 1 -ar 48000 '" + sound + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;  // NOLINT(cert-env33-c): the test's own words
    return {"--use-fake-ui-for-media-stream", "--use-fake-device-for-media-stream",
            "--use-file-for-fake-audio-capture=" + sound + "%noloop"};
  }

 private:
  support::TempFolder folder_;
};

TEST_F(SpokenTo, TheAlbumStartsThatIsNamed) {
  Browser browser(1280, 800, saying("play album counting"));
  openVoice(browser);
  ASSERT_TRUE(pill(browser, "Ready to listen"))
      << browser.run("return document.querySelector('#page').innerText");
  browser.run("document.querySelector('.talk').click()");
  // By the microphone's own clock.
  ASSERT_TRUE(browser.eventually("return parseInt(document.querySelector('.talk-time').textContent) >= 3"));
  browser.run("document.querySelector('.talk').click()");
  ASSERT_TRUE(browser.eventually("return document.querySelector('.answer-now .says') !== null"));
  // Where the ear isn't sure of what a busy machine's microphone has brought, it asks back, and is answered.
  const auto choice =
      browser.run("return document.querySelector('.answer-choices button')?.textContent ?? ''");
  if (choice != "") {
    EXPECT_EQ(choice, "Play Album Counting");
    browser.click("//div[contains(@class, 'answer-choices')]//button");
  }
  EXPECT_TRUE(browser.eventually(
      "return document.querySelector('.answer-good .says')?.textContent.includes('Counting')"))
      << browser.run("return document.querySelector('.talking').innerText");
  EXPECT_TRUE(playerHas("play", "playing")) << player();
  EXPECT_TRUE(house.textBecomes("Album", "Counting"));
}

TEST_F(SpokenTo, AnEarThatHasDiedIsThereAgain) {
  Browser browser(1280, 800);
  openVoice(browser);
  ASSERT_TRUE(pill(browser, "Ready to listen"));
  const pid_t first = ear();
  ASSERT_GT(first, 0);
  // Nobody does anything: who looks at the page is told.
  browser.run(
      "window.seen = []; new MutationObserver(() => seen.push(document.querySelector('.hearing "
      ".pill')?.textContent))"
      ".observe(document.querySelector('.hearing'), {childList: true, characterData: true, subtree: true})");
  ::kill(first, SIGKILL);
  ASSERT_TRUE(browser.eventually("return seen.includes('Can’t listen') && seen.at(-1) === 'Ready to listen'"))
      << browser.run("return seen");
  EXPECT_NE(ear(), first);
  EXPECT_EQ(browser.run("return document.querySelector('.talk').disabled"), false);
  EXPECT_TRUE(browser.run("return document.querySelector('[type=file]') !== null") == true);
  EXPECT_FALSE(house.get("/api/voice").empty());
}

TEST_F(SpokenTo, WhatOthersMakeOfAPatternIsSeenAtOnce) {
  Browser browser(1280, 800);
  openVoice(browser);
  browser.click("//button[@aria-label='Change Album VR']");
  const auto editorHolds = [&](const std::string& text) {
    return browser.eventually("return document.querySelector('.pattern-text')?.value === arguments[0]",
                              {text});
  };
  ASSERT_TRUE(editorHolds("Play Album (Counting)"));
  const auto number = browser.run(
      "return Number(document.querySelector('.said-event:has(.pattern)').dataset.ref.replace('event-', ''))");
  const auto put = [&](const std::string& pattern) {
    return house.post("/api/voice/pattern", {{"event", number}, {"pattern", pattern}});
  };
  ASSERT_EQ(put("Play Album (Counting|Blue)"), 200);
  EXPECT_TRUE(editorHolds("Play Album (Counting|Blue)"));
  browser.type("//textarea", " mine");
  ASSERT_EQ(put("Play Album (Green)"), 200);
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.said-events').textContent.includes('Green')"));
  EXPECT_TRUE(editorHolds("Play Album (Counting|Blue) mine")) << "what somebody has changed stays";
  browser.click("//button[text()='Discard changes']");
  EXPECT_TRUE(editorHolds("Play Album (Green)"));
}

}  // namespace
