// Forms of the plug-in in a browser, with lists and names that no small library has.
#include <iostream>

#include "standin/dialogs/DialogHouse.hpp"
#include "support/Browser.hpp"
#include "support/Keys.hpp"

namespace {

using support::kDown;
using support::kEnter;

class EventFormPage : public support::DialogHouse {
 protected:
  /// Opens the form of a new action.
  void openForm() {
    browser.open(server->address());
    browser.open("about:blank");
    browser.open("http://127.0.0.1:" + std::to_string(server->port()) + "/#events/new");
    ASSERT_TRUE(
        browser.eventually("return document.querySelector('#event-name') && "
                           "document.querySelector('#plugin-state').textContent === 'Player ready'"));
    press("[aria-labelledby=head-actions] .add-part");
    press("[aria-labelledby=head-actions] .add-menu button");
    ASSERT_TRUE(browser.eventually("return document.querySelector('#form-2:enabled') !== null"));
  }
  void press(const std::string& selector) {
    browser.run(
        "const button = document.querySelector(arguments[0]); button.scrollIntoView({block: 'center'}); "
        "button.click()",
        {selector});
  }
  /// Lets the dialog have these albums.
  void albums(const std::string& names) {
    const std::string few = "\t\tBlue\tClouds\r";
    dialogs->action.replace(dialogs->action.find(few), few.size(), "\t" + names + "\r");
  }
  void seek(const std::string& words) {
    browser.run(
        "const field = document.querySelector('#form-6'); field.scrollIntoView({block: 'center'}); "
        "field.focus();"
        "field.value = arguments[0]; field.dispatchEvent(new Event('input', {bubbles: true}))",
        {words});
  }
  std::vector<std::string> found() {
    return browser
        .run(
            "return [...document.querySelectorAll('.pick-list:not([hidden]) [role=option]')].map(each => "
            "each.textContent)")
        .get<std::vector<std::string>>();
  }
  support::Browser browser;
};

TEST_F(EventFormPage, AHundredThousandNamesAreChosenFrom) {
  std::string names;
  for (int i = 0; i < 100000; ++i) names += "\tAlbum " + std::to_string(i) + (i % 2 == 0 ? " Even" : " Odd");
  albums(names);
  openForm();
  const auto opened = browser.run(
      "const [asked] = performance.getEntriesByName(location.origin + '/api/dialog/open');"
      "return [Math.round(asked.duration), asked.encodedBodySize]");
  seek("77777");
  ASSERT_TRUE(support::Eventually([&] { return found() == std::vector<std::string>{"Album 77777 Odd"}; }));
  const auto sought = browser.run(
      "const [asked] = performance.getEntriesByType('resource').filter(each => "
      "each.name.includes('search=77777'));"
      "return Math.round(asked.duration)");
  std::cout << "a form with 100,000 names: opened in " << opened[0] << " ms (" << opened[1]
            << " bytes), one sought in " << sought << " ms\n";
  browser.press({kEnter});
  EXPECT_EQ(browser.run("return document.querySelector('#form-6').value"), "Album 77777 Odd");
  // Any words, in any order; and of all that fits only what is in sight is there.
  seek("odd 999");
  ASSERT_TRUE(support::Eventually([&] { return found().size() > 5; }));
  for (const std::string& name : found()) EXPECT_NE(name.find("Odd"), std::string::npos) << name;
  EXPECT_LT(found().size(), 40U);
  seek("");
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('.pick-list:not([hidden]) "
                         "[role=option]')?.getAttribute('aria-setsize') === '100001'"));
  browser.run("const list = document.querySelector('.pick-list:not([hidden])'); list.scrollTop = 60000 * 40");
  ASSERT_TRUE(support::Eventually([&] {
    const auto now = found();
    return !now.empty() && now.front().find("Album 59") == 0;
  }));
  EXPECT_LT(found().size(), 40U);
}

TEST_F(EventFormPage, NamesThatLookLikeMarkupAreNames) {
  const std::string evil = "<img src=x onerror=window.evil=1>";
  std::string names = "\t" + evil;
  for (int i = 0; i < 100; ++i) names += "\t" + evil + std::to_string(i);
  albums(names);
  openForm();
  seek("evil");
  // Until it has been sought, all are shown, the one for nothing first.
  ASSERT_TRUE(support::Eventually([&] { return found().size() > 3 && found().front() == evil; }));
  browser.press({kEnter});
  EXPECT_TRUE(browser.eventually("return document.querySelector('#form-6').value === arguments[0]", {evil}));
  EXPECT_EQ(browser.run("return window.evil === undefined && !document.querySelector('#page img')"), true);
}

TEST_F(EventFormPage, TheFormFollowsWhatThePlugInDoesToItsControls) {
  openForm();
  plugin->withHost([&](base::Object&, base::Object&) {
    base::Deref(dialogs->control(4)).invoke("AddItem", "Dinner");
    base::Deref(dialogs->control(4)).put("ListIndex", 2);
    base::Deref(dialogs->control(6)).put("Width", std::int16_t{3000});
  });
  EXPECT_TRUE(browser.eventually("return document.querySelector('#form-4').value === 'Dinner'"));
  EXPECT_EQ(browser.run("return document.querySelector('#form-6').getBoundingClientRect().width"), 200);
}

}  // namespace
