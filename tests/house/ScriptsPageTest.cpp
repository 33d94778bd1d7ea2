// The house's scripts, written and run in a browser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/Browser.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using nlohmann::json;

class ScriptsInABrowser : public testing::Test {
 protected:
  explicit ScriptsInABrowser(std::string limit = "60") : seconds(std::move(limit)) {}
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    browser.open(house.address());
    browser.open(house.url() + "/#scripts");
    ASSERT_TRUE(browser.eventually("return document.querySelectorAll('.script-names button').length === 3"));
    ASSERT_TRUE(
        browser.eventually("return performance.getEntriesByName(location.origin + '/api/state').length > 1"));
    ASSERT_TRUE(browser.eventually("return Boolean(document.querySelector('#script-text')?.value)"));
  }
  void write(const std::string& name, const std::string& text) {
    browser.run(
        "document.querySelector('#script-name').value = arguments[0];"
        "const box = document.querySelector('#script-text'); box.value = arguments[1]; box.dispatchEvent(new "
        "Event('input'))",
        {name, text});
  }
  bool shows(const std::string& part, const std::string& text) {
    return browser.eventually(
        "return document.querySelector(arguments[0]).textContent.includes(arguments[1])", {part, text});
  }
  bool ends(const std::string& words) {
    return browser.eventually(
        "return document.querySelector('.output-head .pill').textContent.includes(arguments[0])", {words});
  }
  std::string output() {
    return browser.run("return document.querySelector('.output').textContent").get<std::string>();
  }

  support::SmallMusic music{60};
  std::string seconds;
  support::RealHouse house{{.music = music.path(), .serverWords = {"--script-seconds", seconds}}};
  support::Browser browser{360, 740};
};

class HastyScriptsInABrowser : public ScriptsInABrowser {
 protected:
  HastyScriptsInABrowser() : ScriptsInABrowser("3") {}
};

}  // namespace

TEST_F(ScriptsInABrowser, AnExampleIsChosenAndRun) {
  browser.click("//button[text()='Albums and their titles']");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('#script-text').value.includes('GetCategoryList')"));
  browser.click("//button[text()='Run now']");
  EXPECT_TRUE(ends("has ended"));
  EXPECT_THAT(output(), testing::HasSubstr("  3  Counting\n1 albums\n"));
  EXPECT_EQ(browser.run("return document.documentElement.scrollWidth <= innerWidth"), true);
}

TEST_F(ScriptsInABrowser, AMistakeIsShownWithItsLine) {
  write("Wrong", "print('<b>before</b>')\n\nlocal x = nothing.field\n");
  browser.click("//button[text()='Run now']");
  EXPECT_TRUE(ends("Wrong failed"));
  EXPECT_EQ(output(), "<b>before</b>\n");
  EXPECT_TRUE(shows(".script-error", "3"));
  browser.click("//button[contains(@class, 'script-error')]");
  EXPECT_EQ(
      browser.run(
          "const box = document.querySelector('#script-text');"
          "return document.activeElement === box && box.value.slice(box.selectionStart, box.selectionEnd)"),
      "local x = nothing.field");
  write("Wrong", "for i = 1, 3 do\n  print(i\nend\n");
  browser.click("//button[text()='Run now']");
  EXPECT_TRUE(shows(".script-error", "3"));  // the line at which the missing bracket shows
}

TEST_F(HastyScriptsInABrowser, OneThatLoopsForEverIsEndedWhileTheHouseGoesOn) {
  write("Endless", "print('begun')\nwhile true do end\n");
  browser.click("//button[text()='Run now']");
  EXPECT_TRUE(shows(".output", "begun"));
  // Somebody else's house goes on meanwhile.
  EXPECT_EQ(house.press("Status", "Restart"), 200);
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
  EXPECT_TRUE(ends("Endless failed"));
  EXPECT_TRUE(shows(".script-error", "took too long"));
}

TEST_F(ScriptsInABrowser, OneThatLoopsForEverIsStopped) {
  write("Endless", "while true do end\n");
  browser.click("//button[text()='Run now']");
  browser.click("//button[text()='Stop' and not(@disabled)]");
  EXPECT_TRUE(shows(".script-error", "was stopped"));
  EXPECT_TRUE(
      browser.eventually("return !document.evaluate(\"//button[text()='Run now']\", document, null, "
                         "9).singleNodeValue.disabled"));
}
