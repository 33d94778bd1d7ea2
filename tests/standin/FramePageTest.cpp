// Pages of a plug-in in the server's frame, as a browser shows them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "FakePlugin.hpp"
#include "ServerProcess.hpp"
#include "WebClient.hpp"
#include "support/Axe.hpp"
#include "support/Browser.hpp"
#include "support/BusDaemon.hpp"
#include "support/Keys.hpp"
#include "support/TempFolder.hpp"

namespace {

using support::Browser;
using support::FakePlugin;
using support::kDown;
using support::kEnter;
using support::kTab;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAddress = "/WMP_PListEdit";

/// A page with every kind of field, as a plug-in writes it. `hostile` stands in each place that takes a name.
std::string pageText(const std::string& hostile, const std::string& message) {
  return "<form method=\"post\">\r\n<p><h3>Edit PlayList<hr noshade></h3></p>\r\n" + message +
         "<input type=\"hidden\" name=\"ref_page\" value=\"WMP_PListEdit\">\r\n"
         "<input type=\"hidden\" name=\"wmp_page\" value=\"" +
         hostile +
         "\">\r\nSelected PlayList<br><select class=\"formdropdown\" name=\"PlayList\" size=\"1\" "
         "onChange=\"form.submit();\" style=\"width: 200\">\r\n<option selected "
         "value=\"First\">First</option>"
         "<option value=\"Second\">Second</option><option value=\"Third\">Third</option><option value=\"" +
         hostile + "\">" + hostile +
         "</option></select>\r\n<br>\r\n<select class=\"formdropdown\" name=\"PlayListItems\" size=\"5\" "
         "style=\"width: 200\">\r\n<option value=\"Blue\">Blue</option></select>\r\n"
         "<input type=\"submit\" class=\"formbutton\" name=\"button\" value=\"Refresh\" >\r\n"
         "<p><input type=\"submit\" class=\"formbutton\" name=\"button\" value=\"New List\" >\r\n&nbsp"
         "<input type=\"text\" name=\"New_PlayList\" value=\"" +
         hostile +
         "\" size=\"20\" class=\"formtext\" >\r\n</p>\r\nTitle<br><select class=\"formdropdown\" "
         "name=\"Title\" "
         "size=\"1\" Disabled><option value=\"\"></option><option value=\"x\">x</option></select>"
         "<p>While Speaking:<INPUT TYPE=Radio NAME=\"WhileSpeaking\" VALUE=\"Pause\"CHECKED>Pause"
         "<INPUT TYPE=Radio NAME=\"WhileSpeaking\" VALUE=\"Mute\">Mute<br>\r\n"
         "<input type=\"CheckBox\" name=\"TrayIcon\" value=\"TRUE\"  CHECKED>Show Tray Icon<br>\r\n"
         "<BR clear=all><hr noshade></form>\r\n";
}

class FramePage : public testing::Test {
 protected:
  explicit FramePage(int width = 1280) : browser(width, 900) {}
  void SetUp() override {
    ASSERT_TRUE(support::Eventually([&] {
      auto state = web.json("/api/state");
      return state.is_object() && state["plugin"]["state"] == "ready";
    })) << server.errors();
    browser.open(url(kAddress));
    ASSERT_TRUE(prepared());
  }
  [[nodiscard]] std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(server.port()) + path;
  }
  bool prepared() { return browser.eventually("return document.querySelectorAll('#nav a').length > 4"); }
  std::vector<std::string> posts() {
    const std::lock_guard lock(mutex);
    return posted;
  }
  bool postsBecome(std::size_t count) {
    return support::Eventually([&] { return posts().size() == count; });
  }
  void focus(const std::string& name) {
    browser.run("document.querySelector(`.plugin-page [name=${arguments[0]}]`).focus()", {name});
  }
  FakePlugin::Manner manner() {
    FakePlugin::Manner made;
    made.init = [](base::Object&, base::Object& host, const base::ObjectRef& self) {
      host.invoke("RegisterLink", self);
      host.invoke("WriteLog", "Startup", "Media Player foreground initialization completed");
    };
    made.genPage = [this](const std::string&) { return text("<b>fresh</b>"); };
    made.pagePut = [this](const std::string& data) {
      const std::lock_guard lock(mutex);
      posted.push_back(data);
      return text("<SPAN style=\"color: red; font-weight: bold\">Error: post " +
                  std::to_string(posted.size()) + "</SPAN><br><br>");
    };
    return made;
  }
  virtual std::string text(const std::string& message) { return pageText("Name", message); }

  std::mutex mutex;
  std::vector<std::string> posted;
  support::BusDaemon bus;
  support::TempFolder folder;
  FakePlugin plugin{bus.address(), manner()};
  support::ServerProcess server{bus.address(), folder.path() / "data"};
  support::WebClient web{server.port()};
  Browser browser;
};

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
  EXPECT_EQ(web.post("/api/password", {{"password", "s3cret"}}), 200);
  browser.click("//input[@value='Refresh']");
  browser.type("//input[@name='password']", "s3cret");
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
  browser.runAsync("setTimeout(arguments[0], 300)");
  EXPECT_EQ(posts().size(), 1U);
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

/// The same page with a name that tries everything.
class HostileNames : public FramePage {
 protected:
  static constexpr std::array kNames{
      "<script>window.evil=1</script>",
      "\"><script>window.evil=1</script><script src=/app.js onload=\"window.evil=1\"></script>",
      "</option></select><img src=x onerror=\"window.evil=1\"><img src=//127.0.0.1:1/foreign>",
      "\"><input autofocus onfocus=\"form.submit();\"><img src=x onerror=\"form.submit();\">",
      "\"></form><form id=f method=post action=/WMP_PListEdit><img src=x onerror=\"form.submit();\">",
      "'><svg onload=window.evil=1><iframe src=//127.0.0.1:1/ srcdoc=\"<script>parent.evil=1</script>\">",
      "<base href=//127.0.0.1:1/><meta http-equiv=refresh content=\"0;url=/gone\"><link rel=stylesheet "
      "href=//127.0.0.1:1/>",
      "<style>body{display:none}</style><object data=//127.0.0.1:1/></object><embed src=//127.0.0.1:1/>",
      "</section></div></main></body><body onload=\"window.evil=1\" data-view=x><div "
      "style=\"position:fixed;inset:0\">",
      "<textarea><!--",
  };
  std::string text(const std::string& message) override { return pageText(name, message + "<p>" + name); }
  std::string name;
};

TEST_F(HostileNames, RunNothingAndLoadNothingFromElsewhere) {
  for (const std::string each : kNames) {
    {
      const std::lock_guard lock(mutex);
      name = each;
    }
    browser.open(url(kAddress));
    ASSERT_TRUE(prepared()) << name;
    // Time for whatever would begin by itself.
    browser.runAsync("setTimeout(arguments[0], 300)");
    EXPECT_EQ(browser.run("return window.evil === undefined"), true) << name;
    EXPECT_EQ(browser.run("return location.pathname"), kAddress) << name;
    EXPECT_EQ(browser.run("return document.baseURI === location.href"), true) << name;
    EXPECT_EQ(
        browser.run("return performance.getEntriesByType('resource')"
                    ".filter(e => !e.name.startsWith(location.origin)).map(e => [e.name, e.responseStatus])"
                    ".filter(([, status]) => status > 0).length"),
        0)
        << name;
    EXPECT_EQ(browser.run("return getComputedStyle(document.body).display"), "block") << name;
    EXPECT_EQ(browser.run("return [...document.body.children].slice(-3).map(n => n.className || n.localName)"
                          ".join()"),
              "main,toasts,footer")
        << name;
    EXPECT_EQ(browser.run("const nav = document.querySelector('#nav a').getBoundingClientRect();"
                          "return document.elementFromPoint(nav.x + 5, nav.y + 5).closest('nav') !== null"),
              true)
        << name;
    EXPECT_THAT(posts(), IsEmpty()) << name;
  }
}

TEST_F(HostileNames, CanNotSendAFormElsewhere) {
  {
    const std::lock_guard lock(mutex);
    name = "</form><form method=post action=\"http://127.0.0.1:1/\"><input type=submit value=Trap></form>";
  }
  browser.open(url(kAddress));
  ASSERT_TRUE(prepared());
  browser.click("//input[@value='Trap']");
  browser.runAsync("setTimeout(arguments[0], 300)");
  EXPECT_EQ(browser.address(), url(kAddress));
}

class FramePageOnAPhone : public FramePage {
 protected:
  FramePageOnAPhone() : FramePage(360) {}
  std::string text(const std::string& message) override {
    return pageText(std::string(120, 'W'), message + "<b>" + std::string(120, 'M') + "</b>");
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
