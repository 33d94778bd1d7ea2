// A plug-in's page whose names try everything: it stays in its place, asks for nothing, and posts what its
// reader has chosen.
#include <algorithm>
#include <deque>
#include <random>

#include "standin/fakes/FramePage.hpp"
#include "standin/fakes/HostileNames.hpp"
#include "standin/fakes/Sites.hpp"
#include "standin/pages/PageChecks.hpp"
#include "support/Keys.hpp"

namespace {

using support::kDown;
using support::kEnter;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using support::kImported;
using support::kStrange;
using support::kUnseen;

class HostilePage : public support::FramePage {
 protected:
  HostilePage() : FramePage(1280, 4000) {}  // nothing needs to be scrolled to
  /// Each page is made with the next of the names; the last one stays.
  std::string text(const std::string& message) override {
    const std::lock_guard lock(names_);
    if (coming_.size() > 1) coming_.pop_front();
    return support::PageText(coming_.front(), message + "<p>" + coming_.front());
  }
  /// The pages from now on have these names.
  void come(const std::vector<const char*>& members) {
    const std::lock_guard lock(names_);
    coming_ = {""};
    for (std::string each : members) {
      const std::string address = "127.0.0.1:" + std::to_string(foreign.port());
      for (std::size_t at = 0; (at = each.find("FOREIGN")) != std::string::npos;)
        each.replace(at, 7, address);
      coming_.push_back(each);
    }
  }
  void openWith(const std::string& each) {
    come({each.c_str()});
    browser.open(url(kAddress));
    ASSERT_TRUE(prepared()) << each;
  }
  /// What these names are in changes nothing around it, asks for nothing and posts nothing.
  void expectNothingOf(const std::vector<const char*>& members) {
    const auto first = shownOneByOne({"Name"});
    ASSERT_TRUE(first.is_array()) << first;
    const auto& plain = first[0];
    const auto& before = plain["outside"];
    ASSERT_THAT(before["asked"], Not(IsEmpty()));
    ASSERT_EQ(before["covered"], nlohmann::json::array());
    const auto seen = shownOneByOne(members);
    ASSERT_EQ(seen.size(), members.size()) << seen;
    for (std::size_t i = 0; i < seen.size(); ++i) {
      const char* name = members[i];
      EXPECT_EQ(seen[i]["served"], plain["served"]) << name;
      EXPECT_EQ(seen[i]["outside"], before) << name;
      EXPECT_EQ(seen[i]["strange"], nlohmann::json::array()) << name;
      EXPECT_EQ(seen[i]["unseen"], nlohmann::json::array()) << name;
      auto after = seen[i]["after"];
      after["focus"] = before["focus"];
      EXPECT_EQ(after, before) << "after clicks: " << name;
    }
    clickAround();
    auto after = outside();
    after["focus"] = before["focus"];
    EXPECT_EQ(after, before);
    EXPECT_THAT(posts(), IsEmpty());
    EXPECT_FALSE(foreign.wasVisited());
  }
  nlohmann::json outside() { return browser.run(std::string(kOutside) + "return outside();"); }
  nlohmann::json strange() { return browser.run(std::string(kStrange) + "return strange();"); }
  nlohmann::json unseen() { return browser.run(std::string(kUnseen) + "return unseen();"); }

  /// Brings the pages of the names into this window, one after the other and each in the other's place, and
  /// answers what there is to see of each: `served`, what came around its text, `outside`, `strange`,
  /// `unseen`, and `after`, the outside when it has been clicked on everywhere. In the end they all stand in
  /// the text's place, side by side.
  nlohmann::json shownOneByOne(const std::vector<const char*>& members) {
    come(members);
    nlohmann::json answers = nlohmann::json::array();
    for (std::size_t i = 0; i < members.size(); ++i) answers.push_back(web.get(kAddress)->body);
    return browser.runAsync(std::string(kOutside) + kStrange + kUnseen + kPlaces + kImported + R"(
      const [answers, done] = arguments;
      performance.setResourceTimingBufferSize(1e6);
      const panel = document.querySelector('.plugin-page');
      const one = async (answer) => {
        const read = new DOMParser().parseFromString(answer, 'text/html');
        const all = read.querySelectorAll('.plugin-page script[type="text/plain"]');
        const [held] = all;
        const shown = document.createElement('script');
        shown.type = 'text/plain';
        shown.textContent = held.textContent;
        held.textContent = '';
        for (const each of read.querySelectorAll('[nonce]')) each.removeAttribute('nonce');
        panel.replaceChildren(shown);
        await preparePluginPage(panel);
        const seen = {served: [all.length, read.documentElement.outerHTML], outside: outside(), strange: strange(),
          unseen: unseen()};
        for (const [x, y] of places()) document.elementFromPoint(x, y)?.click();
        seen.after = outside();
        return [seen, [...panel.childNodes]];
      };
      let preparePluginPage;
      (async () => {
        ({preparePluginPage} = await imported('/plugin/pluginpage.js'));
        const seen = [], pages = [];
        for (const answer of answers) {
          const [what, page] = await one(answer);
          seen.push(what);
          pages.push(page);
        }
        panel.replaceChildren(...pages.map((page) => {
          const place = document.createElement('div');
          place.append(...page);
          place.style.overflow = 'hidden';
          return place;
        }));
        if (pages.length > 1)
          Object.assign(panel.style, {display: 'grid', gridTemplateColumns: 'repeat(4, minmax(0, 1fr))'});
        return seen;
      })().then(done, (failure) => done(String(failure)));)",
                            nlohmann::json::array({answers}));
  }
  /// Clicks everywhere in this window where there is nothing to be clicked on, as a hand does.
  void clickAround() {
    const auto height = browser.run("return [document.documentElement.scrollHeight, innerHeight]");
    for (int top = 0; top < height[0].get<int>(); top += height[1].get<int>()) {
      const auto places =
          browser.run(std::string(kPlaces) + "scrollTo(0, arguments[0]); return places();", {top});
      nlohmann::json moves = nlohmann::json::array();
      for (const auto& place : places) {
        moves.push_back({{"type", "pointerMove"}, {"duration", 0}, {"x", place[0]}, {"y", place[1]}});
        moves.push_back({{"type", "pointerDown"}, {"button", 0}});
        moves.push_back({{"type", "pointerUp"}, {"button", 0}});
      }
      ASSERT_GT(places.size(), 5U);
      browser.perform({{{"type", "pointer"}, {"id", "mouse"}, {"actions", moves}}});
    }
    browser.run("scrollTo(0, 0)");
  }

  /// The whole window but the text's place, as markup and as places on the screen, and all that was asked
  /// for.
  static constexpr const char* kOutside = R"(
    const outside = () => {
      const whole = document.documentElement.cloneNode(true);
      whole.querySelector('.plugin-page').replaceWith('the text');
      whole.querySelector('#live-state').remove();  // it tells of the connection, which comes and goes
      const marks = document.createTreeWalker(whole, NodeFilter.SHOW_COMMENT);  // of the frame's drawing, by chance
      for (const each of [...(function* () { while (marks.nextNode()) yield marks.currentNode; })()]) each.remove();
      const place = (each) => { const r = each.getBoundingClientRect(); return [r.x, r.y, r.width].map(Math.round); };
      const seen = (each) => { const r = each.getBoundingClientRect();
        return each.contains(document.elementFromPoint(r.x + r.width / 2, r.y + r.height / 2)); };
      const fixed = [...document.querySelectorAll('.brand, #nav a, #plugin-state')];
      return {markup: whole.outerHTML.replace(/<!--.*?-->/gs, ''), places: [...fixed.filter((each) => each.id !== 'plugin-state'), document.querySelector('.plugin-page')].map(place),
        covered: fixed.filter((each) => !seen(each)).map((each) => each.textContent),
        above: document.querySelectorAll(':popover-open, :modal, dialog').length,
        look: ['display', 'visibility', 'opacity', 'backgroundImage', 'direction', 'fontSize']
          .map((each) => getComputedStyle(document.body)[each]),
        sideways: document.documentElement.scrollWidth - innerWidth, title: document.title, base: document.baseURI,
        focus: document.activeElement.nodeName, ran: typeof window.evil, address: location.href, frames: frames.length,
        asked: [...new Set(performance.getEntriesByType('resource').map((each) => each.name)
          .filter((each) => !each.endsWith('/api/live')))].sort()};
    };)";
  /// Where in this window there is nothing to be clicked on.
  static constexpr const char* kPlaces = R"(
    const places = () => {
      const found = [];
      for (let y = 90; y < innerHeight; y += 110)
        for (let x = 20; x < innerWidth; x += 310)
          if (!document.elementFromPoint(x, y)?.closest('a, button, input, select, label, nav')) found.push([x, y]);
      return found;
    };)";

  support::ForeignServer foreign;

 private:
  std::mutex names_;
  std::deque<std::string> coming_{"Name"};
};

class HostileNames : public HostilePage, public testing::WithParamInterface<support::HostileFamily> {};

TEST_P(HostileNames, ChangeNothingAskForNothingAndPostNothing) { expectNothingOf(GetParam().members); }

INSTANTIATE_TEST_SUITE_P(Families, HostileNames, testing::ValuesIn(support::kHostileFamilies),
                         [](const auto& each) { return std::string(each.param.name); });

/// Names put together from pieces of all the others, each cut where chance will have it: the same at each
/// run.
std::vector<std::string> NamesByChance(std::size_t count) {
  std::mt19937 chance(20220);
  std::vector<std::string> pieces;
  for (const support::HostileFamily& family : support::kHostileFamilies)
    pieces.insert(pieces.end(), family.members.begin(), family.members.end());
  const auto plain = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  std::vector<std::string> names(count);
  for (std::string& name : names) {
    for (std::size_t left = 2 + chance() % 6; left > 0; --left) {
      std::string piece = pieces[chance() % pieces.size()];
      if (piece.size() > 1000) continue;
      const bool cut = chance() % 2 == 0 && std::all_of(piece.begin(), piece.end(), plain);
      name += cut ? piece.substr(chance() % piece.size()).substr(0, 1 + chance() % piece.size()) : piece;
    }
  }
  return names;
}

TEST_F(HostilePage, ChangesNothingAndAsksForNothingWhateverChanceMakesOfThem) {
  const std::vector<std::string> names = NamesByChance(240);
  for (std::size_t at = 0; at < names.size(); at += 60) {
    std::vector<const char*> members;
    for (std::size_t i = at; i < at + 60; ++i) members.push_back(names[i].c_str());
    expectNothingOf(members);
    if (HasFailure()) return;
  }
}

// Were it otherwise, the tests above would see it.
TEST_F(HostilePage, WhatTheFrameItselfDoesIsSeen) {
  const auto before = outside();
  browser.run("document.querySelector('.plugin-page').style.position = 'fixed'");
  EXPECT_NE(outside()["places"], before["places"]);
  browser.run("const d = document.body.appendChild(document.createElement('dialog')); d.showModal()");
  EXPECT_EQ(outside()["above"], 1);
  browser.run(
      "const p = document.querySelector('.plugin-page');"
      "p.innerHTML += '<form><input type=hidden name=button value=x></form><img src=/favicon.svg?seen>'");
  EXPECT_EQ(strange(), nlohmann::json({"IMG"}));
  EXPECT_EQ(unseen().size(), 2U);  // the form, and what it would post
  EXPECT_TRUE(browser.eventually(
      "return performance.getEntriesByType('resource').some((each) => each.name.endsWith('?seen'))"));
  const support::OtherSite other("Elsewhere");
  browser.open(other.address());
  browser.run("new Image().src = arguments[0]", {"http://127.0.0.1:" + std::to_string(foreign.port())});
  EXPECT_TRUE(support::Eventually([&] { return foreign.wasVisited(); }));
}

TEST_F(HostilePage, AFrameThatGotInAllTheSameAsksForNothing) {
  const std::string elsewhere = "http://127.0.0.1:" + std::to_string(foreign.port()) + "/";
  // Other rules let in what comes from the house itself.
  for (const std::string& address : {elsewhere, url("/help")}) {
    browser.run(R"(
      window.refused = [];
      document.addEventListener('securitypolicyviolation',
        ({effectiveDirective, blockedURI}) => window.refused.push([effectiveDirective, blockedURI]), {once: true});
      const frame = document.createElement('iframe');
      [frame.src] = arguments;
      document.querySelector('.plugin-page').append(frame);)",
                {address});
    ASSERT_TRUE(browser.eventually("return window.refused.length > 0")) << address;
    const auto refused = browser.run("return window.refused[0]");
    EXPECT_EQ(refused[0], "frame-src") << address;
    EXPECT_THAT(address,
                testing::StartsWith(refused[1].get<std::string>()));  // of others the origin alone is told
  }
  EXPECT_EQ(foreign.heard(), "");  // the browser may have connected ahead of its rules, with nothing said
}

TEST_F(HostilePage, StillPostsWhatIsChosen) {
  std::size_t count = 0;
  for (const char* each :
       {"<input type=hidden name=button value=\"Delete List\">",
        "</form><form name=querySelector><img name=body>", "</span></form></section></div></main>",
        "<div style=\"position:fixed;inset:0\">",
        "<input type=text name=closest><input type=text name=submit>",
        "<input type=hidden name=PlayList value=Other>",
        "<svg><input></input><select onchange=\"form.submit();\"></select></svg>", "<body hidden>"}) {
    openWith(each);
    focus("PlayList");
    browser.press({kDown, kEnter});
    ASSERT_TRUE(postsBecome(++count)) << each;
    EXPECT_THAT(posts().back(), HasSubstr("ref_page=WMP_PListEdit&"));
    EXPECT_THAT(posts().back(), HasSubstr("&PlayList=Second&")) << each;
    EXPECT_THAT(posts().back(), Not(HasSubstr("button="))) << each;
    ASSERT_TRUE(browser.eventually("return document.body.textContent.includes('post " +
                                   std::to_string(count) + "')"));
    ASSERT_TRUE(prepared()) << each;
  }
}

TEST_F(HostilePage, ShowsANameThatIsOnlyOddAsItIs) {
  for (const char* each : {"a --> b", "AC/DC </ script>", "\\o/ <\\script> <\\\\!--", "{{title}}", "x ]]>",
                           "java: script", "Name \u202E"}) {
    openWith(each);
    EXPECT_EQ(browser.run("return document.querySelector('[name=New_PlayList]').value"), each);
  }
}

TEST_F(HostilePage, ComesAlsoWhenANameIsOneDeepNest) {
  const auto nested = [](int depth) {
    std::string nest;
    while (--depth >= 0) nest += "<x><b>";
    return nest;
  };
  openWith(nested(200));
  EXPECT_EQ(browser.run("return document.querySelector('[name=PlayList]').value"), "First");
  openWith(nested(2000));  // deeper than a browser reads
  EXPECT_EQ(browser.run("return document.querySelector('.plugin-page h3').textContent"), "Edit PlayList");
}

}  // namespace
