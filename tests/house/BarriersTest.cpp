// Every page of the house for users of keyboards, screen readers and magnifiers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PageUser.hpp"
#include "support/Axe.hpp"
#include "support/SmallMusic.hpp"

namespace {

using support::PageUser;
using testing::IsEmpty;

class EveryPage : public testing::TestWithParam<int> {
 protected:
  void SetUp() override { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  /// Waits for what the page shows last, then asks the rules, by day and by night.
  void expectNone(PageUser& user, const std::string& where, const std::string& sign) {
    for (const char* scheme : {"light", "dark"}) {
      user.browser.likes(scheme);
      ASSERT_TRUE(user.browser.eventually("return document.querySelector(arguments[0]) !== null", {sign}))
          << where;
      EXPECT_THAT(support::Barriers(user.browser), IsEmpty()) << where << ", " << scheme;
      EXPECT_EQ(user.browser.run("return document.documentElement.scrollWidth <= window.innerWidth"), true)
          << where;
    }
  }
  void tell(PageUser& user, const std::string& path, const std::string& body) {
    EXPECT_EQ(
        user.browser.runAsync("fetch(arguments[0], {method: 'POST', headers: {'Content-Type': "
                              "'application/json'}, body: arguments[1]}).then(r => arguments[2](r.status))",
                              {path, body}),
        200)
        << path;
  }
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
};

INSTANTIATE_TEST_SUITE_P(Desk, EveryPage, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, EveryPage, testing::Values(360));

TEST_P(EveryPage, HasNoSeriousBarriers) {
  PageUser user(house, GetParam());
  house.press("Status", "Restart");
  ASSERT_TRUE(house.textBecomes("Status", "Playing"));
  user.open("/WMP_PListEdit");
  user.enter("New_PlayList", "Evening");
  user.press("New List");
  expectNone(user, "editor with a message", ".message");
  user.press("New List");
  expectNone(user, "editor with an error", ".message-bad");
  user.press("Add Item");
  user.turnTo("Albums", "Counting");
  user.choose("Title", "One");
  user.press("Add Item");
  expectNone(user, "add page", ".message");
  user.press("Return");
  expectNone(user, "editor", "select[name=PlayListItems] option");
  user.open("/WMP_Setup");
  expectNone(user, "setup", ".choices");
  user.open("/nothing/here");
  expectNone(user, "an address without a page", ".ways");

  const std::pair<const char*, const char*> views[] = {{"/#devices", "article .controls button"},
                                                       {"/#menu", ".menu-item"},
                                                       {"/#playing", ".playing-queue button"},
                                                       {"/#log", ".log li"},
                                                       {"/#account", "#page form"},
                                                       {"/#scripts", "#script-text"},
                                                       {"/#voice", ".said-event"},
                                                       {"/#library", ".tile-main"},
                                                       {"/#library/Album/Counting", ".long-row button"},
                                                       {"/#library/Artist", ".long-row button"},
                                                       {"/#library/PlayList", ".long-row button"},
                                                       {"/#library/PlayList/Evening", "#page button"}};
  for (const auto& [path, sign] : views) {
    user.open("/nothing/here");
    user.open(path);
    expectNone(user, path, sign);
  }
  user.open("/nothing/here");
  user.open("/#library/Album/Counting");
  user.browser.click("//button[text()='Add all']");
  expectNone(user, "a dialog", "dialog[open] button");
  user.open("/nothing/here");
  user.open("/#scripts");
  ASSERT_TRUE(user.browser.eventually("return Boolean(document.querySelector('#script-text')?.value)"));
  user.browser.type("//textarea", "error('a line that fails')");
  user.browser.click("//button[text()='Run now']");
  expectNone(user, "a script that fails", ".script-error:not([hidden])");

  tell(user, "/api/password", R"({"password":"s3cret-enough"})");
  tell(user, "/api/guests", R"({"guests":"open"})");
  tell(user, "/api/logout", "{}");
  user.browser.open(house.url() + "/");
  expectNone(user, "sign-in", "input[type=password]");
  tell(user, "/api/login", R"({"name":"guest"})");
  user.open("/WMP_PListEdit");
  expectNone(user, "editor for a guest", ".plugin-page p");
  user.open("/#account");
  expectNone(user, "account for a guest", "#page button");
}

}  // namespace
