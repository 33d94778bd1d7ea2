// Pages of a plug-in in the server's frame, as a browser shows them.
#include "standin/fakes/FramePage.hpp"

#include "standin/fakes/Sites.hpp"
#include "support/Axe.hpp"
#include "support/Keys.hpp"

namespace {

using support::FramePage;
using support::kDown;
using support::kEnter;
using support::kTab;
using support::kUp;
using support::OtherSite;
using support::PageText;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(FramePage, StandsInTheNavigationOfEveryPage) {
  for (const char* page : {"/", "/#log", "/#account", kAddress}) {
    browser.open(url(page));
    EXPECT_TRUE(browser.eventually(
        "return [...document.querySelectorAll('#nav a')].some(a => a.textContent === 'PlayList Editor' && "
        "a.pathname === '/WMP_PListEdit')"))
        << page;
  }
  EXPECT_EQ(browser.run("return document.querySelector('#nav [aria-current]').textContent"),
            "PlayList Editor");
}

TEST_F(FramePage, StandsBehindTheHousesOwnPagesUnderPlugInAndIsNotShownToGuests) {
  const auto links = [&] {
    return browser.run("return [...document.querySelectorAll('#nav a')].map(a => a.textContent).join()");
  };
  EXPECT_EQ(links(), "Devices,Now playing,Library,Events,Voice,Scripts,Log,Account,PlayList Editor");
  EXPECT_EQ(browser.run("const group = document.querySelector('#nav [role=group]');"
                        "return document.getElementById(group.getAttribute('aria-labelledby')).textContent + "
                        "': ' + group.querySelector('a').textContent"),
            "Plug-in: PlayList Editor");
  EXPECT_EQ(
      browser.runAsync("fetch('/api/login', {method: 'POST', headers: {'Content-Type': 'application/json'},"
                       "body: '{\"name\":\"guest\"}'}).then(r => arguments[0](r.status))"),
      200);
  browser.open(url("/#log"));
  browser.reload();
  EXPECT_TRUE(browser.eventually("return document.querySelectorAll('#nav a').length > 2"));
  EXPECT_EQ(links(), "Devices,Now playing,Library,Events,Voice,Log,Account");
}

TEST_F(FramePage, EveryFieldHasItsWords) {
  const auto words = browser.run(
      "return [...document.querySelectorAll('.plugin-page select, .plugin-page input')]"
      ".filter(c => !['hidden', 'submit'].includes(c.type))"
      ".map(c => c.labels[0]?.textContent.trim() || c.getAttribute('aria-label'))");
  EXPECT_THAT(words.get<std::vector<std::string>>(),
              ElementsAre("Selected PlayList", "Playlist items", "New Playlist", "Title", "Pause", "Mute",
                          "Show Tray Icon"));
  EXPECT_EQ(browser.run("const group = document.querySelector('[role=radiogroup]');"
                        "return document.getElementById(group.getAttribute('aria-labelledby')).textContent"),
            "While Speaking:");
  browser.click("//label[contains(., 'Show Tray Icon')]");
  EXPECT_EQ(browser.run("return document.querySelector('[name=TrayIcon]').checked"), false);
}

TEST_F(FramePage, AListSendsItsFormWhenAnEntryIsChosen) {
  browser.click("//select[@name='PlayList']");
  browser.press({kDown, kEnter});
  ASSERT_TRUE(postsBecome(1));
  EXPECT_NE(posts()[0].find("PlayList=Second&"), std::string::npos) << posts()[0];
  EXPECT_EQ(posts()[0].find("button="), std::string::npos) << posts()[0];
}

TEST_F(FramePage, TheArrowKeysReachEveryEntryOfAListThatSendsItsForm) {
  focus("PlayList");
  browser.press({kDown, kDown});
  EXPECT_EQ(browser.run("return document.querySelector('[name=PlayList]').value"), "Third");
  EXPECT_NE(browser.run("return document.querySelector('.hint').textContent"), "");
  EXPECT_THAT(posts(), IsEmpty());
  browser.press({kEnter});
  ASSERT_TRUE(postsBecome(1));
  EXPECT_NE(posts()[0].find("PlayList=Third&"), std::string::npos) << posts()[0];
  ASSERT_TRUE(browser.eventually("return document.querySelector('[role=alert].message') !== null"));
  EXPECT_EQ(browser.run("return document.activeElement.name"), "PlayList");
}

TEST_F(FramePage, AListThatIsBackAtItsOldEntrySendsNothingWhenItIsLeft) {
  focus("PlayList");
  browser.press({kDown, kUp, kTab});
  EXPECT_EQ(browser.run("return document.activeElement.name"), "PlayListItems");
  EXPECT_EQ(browser.run("return document.querySelector('.hint').textContent"), "");
  focus("PlayList");
  browser.press({kDown, kDown, kEnter});
  ASSERT_TRUE(postsBecome(1));
  EXPECT_NE(posts()[0].find("PlayList=Third&"), std::string::npos) << posts()[0];
}

TEST_F(FramePage, AListThatIsLeftSendsItsFormAndTheFocusGoesOn) {
  focus("PlayList");
  browser.press({kDown, kTab});
  ASSERT_TRUE(postsBecome(1));
  EXPECT_NE(posts()[0].find("PlayList=Second&"), std::string::npos) << posts()[0];
  EXPECT_TRUE(browser.eventually(
      "return document.querySelector('.message') && document.activeElement.name === 'PlayListItems'"));
}

TEST_F(FramePage, LoadingAnAnswerAnewPostsNothing) {
  browser.click("//input[@value='Refresh']");
  ASSERT_TRUE(postsBecome(1));
  ASSERT_TRUE(browser.eventually("return document.body.textContent.includes('post 1')"));
  ASSERT_TRUE(prepared());
  browser.reload();
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.plugin-page').textContent.includes('fresh')"));
  browser.click("//input[@value='New List']");
  ASSERT_TRUE(postsBecome(2));
  ASSERT_TRUE(browser.eventually("return document.body.textContent.includes('post 2')"));
  browser.open(url("/#devices"));
  browser.back();
  EXPECT_TRUE(browser.eventually("return document.querySelector('.plugin-page form') !== null"));
  EXPECT_EQ(posts().size(), 2U);
  EXPECT_NE(posts()[1].find("button=New+List"), std::string::npos) << posts()[1];
}

TEST_F(FramePage, AGuestsPostIsRefusedInTheFrame) {
  EXPECT_EQ(
      browser.runAsync("fetch('/api/login', {method: 'POST', headers: {'Content-Type': 'application/json'},"
                       "body: '{\"name\":\"guest\"}'}).then(r => arguments[0](r.status))"),
      200);
  browser.reload();
  browser.click("//input[@value='Refresh']");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('h1')?.textContent === 'This is not allowed'"));
  EXPECT_THAT(posts(), IsEmpty());
  browser.click("//a[text()='Try the page again']");
  EXPECT_TRUE(browser.eventually("return document.querySelector('.plugin-page form') !== null"));
}

TEST_F(FramePage, WhoHasToSignInFirstGetsThePageThen) {
  EXPECT_EQ(web.post("/api/password", {{"password", "s3cret-enough"}}), 200);
  browser.click("//input[@value='Refresh']");
  browser.type("//input[@name='password']", "s3cret-enough");
  browser.click("//button[text()='Sign in']");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.plugin-page form [name=PlayList]') !== null"));
  EXPECT_EQ(browser.run("return location.pathname"), kAddress);
  EXPECT_THAT(posts(), IsEmpty());
}

TEST_F(FramePage, AFormThatIsSentTwiceInAHurryIsPostedOnce) {
  browser.run(
      "const button = document.querySelector('[value=Refresh]'); for (let i = 0; i < 5; i++) button.click()");
  ASSERT_TRUE(browser.eventually("return document.querySelector('.message') !== null"));
  ASSERT_TRUE(prepared());
  // One more, sent when the others would have come, is the second.
  browser.click("//input[@value='Refresh']");
  EXPECT_TRUE(browser.eventually("return document.querySelector('.message').textContent.includes('post 2')"));
  EXPECT_EQ(posts().size(), 2U);
}

TEST_F(FramePage, HasNoBarriersInLightOrDark) {
  for (const char* scheme : {"light", "dark"}) {
    browser.likes(scheme);
    browser.open(url(kAddress));
    ASSERT_TRUE(prepared());
    EXPECT_THAT(support::Barriers(browser), IsEmpty()) << scheme;
    browser.click("//input[@value='Refresh']");
    ASSERT_TRUE(browser.eventually("return document.querySelector('.message') !== null"));
    ASSERT_TRUE(prepared());
    EXPECT_THAT(support::Barriers(browser), IsEmpty()) << scheme;
  }
}

TEST_F(FramePage, IsMadeForAReaderWhoComesFromElsewhereAndNotForAPictureThere) {
  const OtherSite other("<img src=" + url(kAddress) +
                        " onerror=\"window.tried = true\"><a href=" + url(kAddress) + ">in</a>");
  const int before = generated;
  browser.open(other.address());
  ASSERT_TRUE(browser.eventually("return window.tried === true"));
  EXPECT_EQ(generated, before);
  browser.click("//a");
  EXPECT_TRUE(prepared());
  EXPECT_EQ(generated, before + 1);
}

TEST_F(FramePage, APageThatThePlayerOpensIsLookedForHereOnly) {
  // A page that doesn't listen yet misses it, and nothing on it tells when it does.
  ASSERT_TRUE(support::Eventually([&] {
    plugin.withHost([](base::Object&, base::Object& host) {
      host.invoke("Launch", "http://127.0.0.1:8080//evil.example/page?x");
    });
    return browser.run("return document.querySelector('.toast a') !== null") == true;
  }));
  EXPECT_EQ(browser.run("return document.querySelector('.toast a').href"), url("//evil.example/page?x"));
}

class FramePageOnAPhone : public FramePage {
 protected:
  FramePageOnAPhone() : FramePage(360) {}
  std::string text(const std::string& message) override {
    return PageText(std::string(120, 'W'), message + "<b>" + std::string(120, 'M') + "</b>");
  }
};

TEST_F(FramePageOnAPhone, NeedsNoSidewaysScroll) {
  EXPECT_EQ(browser.run("return window.innerWidth"), 360);
  EXPECT_EQ(browser.run("return document.documentElement.scrollWidth <= window.innerWidth"), true);
  EXPECT_EQ(
      browser.run("const p = document.querySelector('.plugin-page'); return p.scrollWidth <= p.clientWidth"),
      true);
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
}

}  // namespace
