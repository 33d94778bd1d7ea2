// Pages of a plug-in in the server's frame, as a browser shows them.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <stdexcept>

#include "files/Descriptor.hpp"
#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
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
using support::kUp;
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
    browser.open(server.address());
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
    made.genPage = [this](const std::string&) {
      ++generated;
      return text("<b>fresh</b>");
    };
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
  std::atomic<int> generated = 0;
  support::BusDaemon bus;
  support::TempFolder folder;
  FakePlugin plugin{bus.address(), manner()};
  support::ServerProcess server{bus.address(), folder.path() / "data"};
  support::WebClient web{server};
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

TEST_F(FramePage, StandsBehindTheHousesOwnPagesUnderPlugInAndIsNotShownToGuests) {
  const auto links = [&] {
    return browser.run("return [...document.querySelectorAll('#nav a')].map(a => a.textContent).join()");
  };
  EXPECT_EQ(links(), "Devices,Library,Scripts,Log,Account,PlayList Editor");
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
  EXPECT_EQ(links(), "Devices,Library,Log,Account");
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

/// A server that nobody should come to: it only knows whether somebody has.
class ForeignServer {
 public:
  ForeignServer() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* name = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_.get(), name, size) != 0 || listen(socket_.get(), 16) != 0 ||
        getsockname(socket_.get(), name, &size) != 0) {
      throw std::runtime_error("no foreign server");
    }
    port_ = ntohs(address.sin_port);
  }
  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] bool wasVisited() const {
    pollfd one{socket_.get(), POLLIN, 0};
    return poll(&one, 1, 0) > 0;
  }
  /// What the visitors that are there have said so far.
  [[nodiscard]] std::string heard() const {
    std::string all;
    while (wasVisited()) {
      const files::Descriptor visitor(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      std::array<char, 4096> part{};
      const ssize_t got = ::recv(visitor.get(), part.data(), part.size(), MSG_DONTWAIT);
      if (got > 0) all.append(part.data(), static_cast<std::size_t>(got));
    }
    return all;
  }

 private:
  files::Descriptor socket_{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  int port_ = 0;
};

/// A site that is not the server's, with one page.
class OtherSite {
 public:
  explicit OtherSite(std::string page) : page_(std::move(page)) {
    server_.Get(".*", [this](const httplib::Request&, httplib::Response& response) {
      response.set_content(page_, "text/html");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~OtherSite() {
    while (!server_.is_running()) std::this_thread::yield();
    server_.stop();
    thread_.join();
  }
  OtherSite(const OtherSite&) = delete;
  OtherSite& operator=(const OtherSite&) = delete;
  OtherSite(OtherSite&&) = delete;
  OtherSite& operator=(OtherSite&&) = delete;

  /// By another name than the server's: the ports of one name are one site.
  [[nodiscard]] std::string address() const { return "http://localhost:" + std::to_string(port_) + "/"; }

 private:
  std::string page_;
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

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

/// The same page with a name that tries everything.
class HostileNames : public FramePage {
 protected:
  /// FOREIGN stands for the address of the foreign server.
  static constexpr std::array kNames{
      "<script>window.evil=1</script>",
      "\"><script>window.evil=1</script><script src=/app.js onload=\"window.evil=1\"></script>",
      "<script src=/app.js?2 type=module></script>",
      "</option></select><img src=x onerror=\"window.evil=1\"><img src=//FOREIGN/foreign>",
      "\"><input autofocus onfocus=\"form.submit();\"><img src=x onerror=\"form.submit();\">",
      "\"></form><form id=f method=post action=/WMP_PListEdit><img src=x onerror=\"form.submit();\">",
      "'><svg onload=window.evil=1><iframe src=//FOREIGN/ srcdoc=\"<script>parent.evil=1</script>\">",
      "<base href=//FOREIGN/><meta http-equiv=refresh content=\"0;url=/gone\"><link rel=stylesheet "
      "href=//FOREIGN/>",
      "<style>body{display:none}</style><object data=//FOREIGN/></object><embed src=//FOREIGN/>",
      "</section></div></main></body><body onload=\"window.evil=1\" data-view=x><div "
      "style=\"position:fixed;inset:0\">",
      "<textarea><!--",
  };
  /// Those that want the frame's own tools, or its place.
  static constexpr std::array kTakers{
      "<img name=getElementById>",
      "<img name=createElement>",
      "<input name=addEventListener>",
      "<input name=closest><input id=submit>",
      "</form><form name=querySelector><img name=body></form>",
      "<body style=\"display:none\">",
      "<body hidden>",
      "<html hidden>",
      "<html style=\"visibility:hidden\">",
      "</span></form></section></div></main>",
      "</form></section></div></main><template shadowrootmode=open></template>",
      "<div style=\"position:fixed;inset:0\">",
      "<input id=field-1><input id=field-2>",
      "<svg><input></input><select onchange=\"form.submit();\"></select></svg>",
      "<input type=radio name=WhileSpeaking><i class=choice></i>",
  };
  std::string text(const std::string& message) override { return pageText(name, message + "<p>" + name); }
  void openWith(std::string each) {
    const std::string address = "127.0.0.1:" + std::to_string(foreign.port());
    for (std::size_t at = 0; (at = each.find("FOREIGN")) != std::string::npos;) each.replace(at, 7, address);
    {
      const std::lock_guard lock(mutex);
      name = each;
    }
    browser.open(url(kAddress));
  }
  ForeignServer foreign;
  std::string name;
};

TEST_F(HostileNames, RunNothingAndLoadNothingFromElsewhere) {
  for (const std::string each : kNames) {
    openWith(each);
    ASSERT_TRUE(prepared()) << name;
    // Time for whatever would begin by itself.
    browser.runAsync("setTimeout(arguments[0], 300)");
    EXPECT_EQ(browser.run("return window.evil === undefined"), true) << name;
    EXPECT_EQ(browser.run("return location.pathname"), kAddress) << name;
    EXPECT_EQ(browser.run("return document.baseURI === location.href"), true) << name;
    EXPECT_FALSE(foreign.wasVisited()) << name;
    EXPECT_EQ(browser.run("return getComputedStyle(document.body).display"), "flex") << name;
    EXPECT_EQ(browser.run("return [...document.body.children].slice(-3).map(n => n.className || n.localName)"
                          ".join()"),
              "main,toasts,footer")
        << name;
    EXPECT_EQ(browser.run("return document.querySelectorAll('footer').length"), 1) << name;
    EXPECT_EQ(browser.run("const nav = document.querySelector('#nav a').getBoundingClientRect();"
                          "return document.elementFromPoint(nav.x + 5, nav.y + 5).closest('nav') !== null"),
              true)
        << name;
    EXPECT_THAT(posts(), IsEmpty()) << name;
  }
  // What the page may load does come, and the foreign server does notice who comes.
  openWith("<img src=/favicon.svg?seen>");
  EXPECT_TRUE(browser.eventually("return document.querySelector('.plugin-page img')?.naturalWidth > 0"));
  EXPECT_FALSE(foreign.wasVisited());
  const OtherSite other("Elsewhere");
  browser.open(other.address());
  browser.run("new Image().src = arguments[0]", {"http://127.0.0.1:" + std::to_string(foreign.port())});
  EXPECT_TRUE(support::Eventually([&] { return foreign.wasVisited(); }));
}

TEST_F(HostileNames, TakeNothingFromTheFrame) {
  std::size_t count = 0;
  for (const std::string each : kTakers) {
    openWith(each);
    ASSERT_TRUE(prepared()) << name;
    EXPECT_EQ(browser.run("const nav = document.querySelector('#nav a').getBoundingClientRect();"
                          "return document.elementFromPoint(nav.x + 5, nav.y + 5)?.closest('nav') !== null"),
              true)
        << name;
    EXPECT_EQ(browser.run("return ['body > .toasts', 'body > footer', '#plugin-state.pill-good']"
                          ".map(s => document.querySelectorAll(s).length)"),
              nlohmann::json({1, 1, 1}))
        << name;
    EXPECT_EQ(
        browser.run("return [...document.querySelectorAll('.plugin-page select, .plugin-page input')]"
                    ".filter(c => c instanceof HTMLElement && !['hidden', 'submit'].includes(c.type))"
                    ".filter(c => !c.labels[0] && !c.getAttribute('aria-label')).map(c => c.outerHTML)"),
        nlohmann::json::array())
        << name;
    focus("PlayList");
    browser.press({kDown, kEnter});
    ASSERT_TRUE(postsBecome(++count)) << name;
    EXPECT_NE(posts().back().find("PlayList=Second&"), std::string::npos) << posts().back();
    EXPECT_NE(posts().back().find("ref_page=WMP_PListEdit"), std::string::npos) << posts().back();
    ASSERT_TRUE(browser.eventually("return document.body.textContent.includes('post " +
                                   std::to_string(count) + "')"));
    ASSERT_TRUE(prepared()) << name;
    browser.click("//nav/a[text()='Devices']");
    EXPECT_TRUE(browser.eventually("return location.pathname === '/'")) << name;
  }
}

TEST_F(HostileNames, CanNotSendAFormElsewhere) {
  openWith("</form><form method=post action=\"http://FOREIGN/\"><input type=submit value=Trap></form>");
  ASSERT_TRUE(prepared());
  browser.click("//input[@value='Trap']");
  browser.runAsync("setTimeout(arguments[0], 300)");
  EXPECT_EQ(browser.address(), url(kAddress));
  EXPECT_EQ(foreign.heard(), "");  // a browser may connect before it asks the policy
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
