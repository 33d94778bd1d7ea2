#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Browser.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

class DevicesPage : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    browser.keepMessages();
    browser.open(house.address());
  }
  static std::string card(const std::string& device) { return "//article[.//h2[text()='" + device + "']]"; }
  static std::string button(const std::string& device, const std::string& caption) {
    return card(device) + "//button[text()='" + caption + "']";
  }
  /// Waits until the page itself shows the device's text.
  bool shows(const std::string& device, const std::string& text) {
    return browser.eventually(
        "return [...document.querySelectorAll('article')].some(a => a.querySelector('h2').textContent === "
        "arguments[0] && a.querySelector('.status').textContent.trim() === arguments[1])",
        {device, text});
  }
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
  support::Browser browser;
};

}  // namespace

TEST_F(DevicesPage, APressedButtonChangesTheDeviceWithoutAReload) {
  browser.run("window.kept = true");
  browser.click(button("Status", "Restart"));
  EXPECT_TRUE(shows("Status", "Playing"));
  EXPECT_TRUE(shows("Title", "One"));
  browser.click(button("Status", "Next"));
  EXPECT_TRUE(shows("Title", "Two"));
  browser.click(button("Status", "Pause"));
  EXPECT_TRUE(shows("Status", "Paused"));
  browser.click(button("Mute", "Mute toggle"));
  EXPECT_TRUE(shows("Mute", "Muted"));
  browser.click(button("Loop Mode", "Loop toggle"));
  EXPECT_TRUE(shows("Loop Mode", "Loop"));
  EXPECT_EQ(browser.run("return window.kept === true"), true);
}

TEST_F(DevicesPage, ButtonsSayWhatTheyDoAndWhatTheyHaveDone) {
  const auto toasts = [&](const std::string& words) {
    return browser.eventually(
        "return [...document.querySelectorAll('.toast')].some(t => t.textContent === arguments[0])", {words});
  };
  browser.click(button("Title", "Add to PlayList"));
  EXPECT_TRUE(toasts("Nothing was added: choose something of the library to play first"));
  ASSERT_EQ(house.post("/api/play", {{"category", "Album"}, {"name", "Counting"}}), 200);
  ASSERT_TRUE(shows("Status", "Playing"));
  ASSERT_TRUE(shows("Title", "One"));
  // The title stays while the rest is tried.
  browser.click(button("Status", "Pause"));
  ASSERT_TRUE(shows("Status", "Paused"));
  browser.click(button("Mute", "Vol Up"));
  EXPECT_TRUE(toasts("Volume 60"));
  browser.click(button("Mute", "Vol Down"));
  EXPECT_TRUE(toasts("Volume 50"));
  const auto title =
      browser.run("return document.querySelector('.now-title').textContent").get<std::string>();
  browser.click(button("Title", "Add to PlayList"));
  EXPECT_TRUE(toasts("Added " + title + " to Vantorix"));
  browser.click(button("Status", "Resume"));
  EXPECT_TRUE(shows("Status", "Playing"));
  browser.click("//nav//a[text()='Menu']");
  browser.click("//button[text()='Pause']");
  browser.click("//button[text()='Resume']");
  EXPECT_TRUE(browser.eventually(
      "return [...document.querySelectorAll('.menu-item')].some(b => b.textContent === 'Pause')"));
}

TEST_F(DevicesPage, TheVoiceBoxTakesAPhrase) {
  browser.type("//input[@id='say']", "shuffle please");
  browser.click("//form//button[text()='Say']");
  EXPECT_TRUE(shows("Shuffle Mode", "Shuffle"));
}

TEST_F(DevicesPage, ShowsTheIconAndExecutesNothingOfADevicesText) {
  EXPECT_TRUE(browser.eventually(
      "const i = document.querySelector('.status img'); return !!i && i.complete && i.naturalWidth === 16"));
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const auto host = connection.proxy("org.vantorix.Host", "/host");
  host->invoke("SetDeviceStringByName", "Media Player Title",
               "<script>window.evil=1</script><img src=x onerror=\"window.evil=1\">harmless", true);
  EXPECT_TRUE(browser.eventually(
      "return [...document.querySelectorAll('.status')].some(s => s.textContent.includes('harmless'))"));
  EXPECT_EQ(browser.run("return window.evil === undefined"), true);
}

TEST_F(DevicesPage, TheMenuHoldsTheTenItemsInOrder) {
  browser.click("//nav//a[text()='Menu']");
  EXPECT_TRUE(browser.eventually(
      "return [...document.querySelectorAll('#page button, #page li')].map(b => b.textContent.trim())"
      ".join('|').includes('Show/Hide Popup Controls')"));
  const auto page = browser.run("return document.querySelector('#page').textContent").get<std::string>();
  std::size_t at = 0;
  for (const char* item :
       {"Show/Hide Popup Controls", "PlayList Editor", "Pause/Resume", "Stop", "Mute toggle", "Next",
        "Previous", "Restart", "Setup", "Vantorix Media Player plug-in version: 1.0.23"}) {
    at = page.find(item, at);
    ASSERT_NE(at, std::string::npos) << item;
  }
}

TEST_F(DevicesPage, TheLogShowsNewLinesAsTheyCome) {
  browser.click("//nav//a[text()='Log']");
  EXPECT_TRUE(browser.eventually(
      "return document.querySelector('#page').textContent.includes('background initialization completed')"));
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  connection.proxy("org.vantorix.Host", "/host")->invoke("WriteLog", "Info", "A line for the browser");
  EXPECT_TRUE(browser.eventually(
      "return document.querySelector('#page').textContent.includes('A line for the browser')"));
}

TEST(APhone, ShowsThePageWithoutASidewaysScroll) {
  const support::SmallMusic music(1);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  support::Browser phone(360, 740);
  phone.open(house.address());
  ASSERT_TRUE(phone.eventually("return document.querySelectorAll('article').length === 14"));
  EXPECT_EQ(phone.run("return window.innerWidth"), 360);
  EXPECT_EQ(phone.run("return document.documentElement.scrollWidth <= window.innerWidth"), true);
}
