// A plug-in's page whose names try everything: it stays in its place, asks for nothing, and posts what its
// reader has chosen.
#include "standin/fakes/FramePage.hpp"
#include "standin/fakes/HostileNames.hpp"
#include "standin/fakes/Sites.hpp"
#include "support/Keys.hpp"

namespace {

using support::kDown;
using support::kEnter;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class HostilePage : public support::FramePage {
 protected:
  HostilePage() : FramePage(1280, 4000) {}  // nothing needs to be scrolled to
  std::string text(const std::string& message) override {
    return support::PageText(name, message + "<p>" + name);
  }
  void openWith(std::string each) {
    const std::string address = "127.0.0.1:" + std::to_string(foreign.port());
    for (std::size_t at = 0; (at = each.find("FOREIGN")) != std::string::npos;) each.replace(at, 7, address);
    {
      const std::lock_guard lock(mutex);
      name = each;
    }
    browser.open(url(kAddress));
    ASSERT_TRUE(prepared()) << name;
  }
  /// The whole window but the text's place, as markup and as places on the screen, and all that was asked
  /// for.
  nlohmann::json outside() {
    return browser.run(R"(
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
          .filter((each) => !each.endsWith('/api/live')))].sort()};)");
  }
  /// What stands in the text's place and is none of a page's own elements and attributes.
  nlohmann::json strange() {
    return browser.run(R"(
      const own = {FORM: 'method', P: '', H3: 'aria-level', HR: 'noshade', BR: 'clear', B: '', LABEL: 'class for',
        SPAN: 'class id role', OPTION: 'value selected label',
        INPUT: 'type name value checked disabled size class id aria-label placeholder',
        SELECT: 'name size class disabled data-sends id aria-label aria-describedby'};
      own.SPAN += ' aria-label aria-labelledby';
      return [...document.querySelectorAll('.plugin-page *')].flatMap((each) => each.nodeName in own
        ? [...each.attributes].filter((one) => !own[each.nodeName].split(' ').includes(one.name)
            || one.name === 'id' && !/^field-\d+$/.test(one.value)).map((one) => `${each.nodeName} ${one.name}`)
        : [each.nodeName]);)");
  }
  /// What a press of a button, or a choice in a list, would post beyond what can be seen.
  nlohmann::json unseen() {
    return browser.run(R"(
      const forms = [...document.querySelectorAll('.plugin-page form')];
      const by = (button) => [...new FormData(forms[0], button)];
      if (!forms.length) return [];
      const wrong = by(null).filter(([name]) => name.toLowerCase() === 'button');
      for (const button of forms[0].querySelectorAll('[type=submit]')) {
        const named = by(button).filter(([name]) => name.toLowerCase() === 'button');
        if (named.length !== 1 || named[0][1] !== button.value) wrong.push(named);
      }
      for (const one of forms[0].querySelectorAll('[type=hidden]'))
        if (!['ref_page', 'wmp_page'].includes(one.name)) wrong.push(one.name);
      for (const one of forms[0].querySelectorAll('option'))
        if (one.value.replace(/[ \t\n\f\r]+/g, ' ').trim() !== one.text) wrong.push(one.outerHTML);
      return wrong.concat(forms.slice(1).map(String));)");
  }
  /// Clicks everywhere on the page where there is nothing to be clicked on.
  void clickAround() {
    const auto places = browser.run(R"(
      const found = [];
      for (let y = 90; y < innerHeight; y += y < 900 ? 110 : 600)
        for (let x = 20; x < innerWidth; x += 310)
          if (!document.elementFromPoint(x, y)?.closest('a, button, input, select, label, nav')) found.push([x, y]);
      return found;)");
    nlohmann::json moves = nlohmann::json::array();
    for (const auto& place : places) {
      moves.push_back({{"type", "pointerMove"}, {"duration", 0}, {"x", place[0]}, {"y", place[1]}});
      moves.push_back({{"type", "pointerDown"}, {"button", 0}});
      moves.push_back({{"type", "pointerUp"}, {"button", 0}});
    }
    ASSERT_GT(places.size(), 5U);
    browser.perform({{{"type", "pointer"}, {"id", "mouse"}, {"actions", moves}}});
  }

  support::ForeignServer foreign;
  std::string name = "Name";
};

class HostileNames : public HostilePage, public testing::WithParamInterface<support::HostileFamily> {};

TEST_P(HostileNames, ChangeNothingAskForNothingAndPostNothing) {
  const auto before = outside();
  ASSERT_THAT(before["asked"], Not(IsEmpty()));
  ASSERT_EQ(before["covered"], nlohmann::json::array());
  for (const std::string each : GetParam().members) {
    openWith(each);
    EXPECT_EQ(outside(), before) << name;
    EXPECT_EQ(strange(), nlohmann::json::array()) << name;
    EXPECT_EQ(unseen(), nlohmann::json::array()) << name;
    clickAround();
    EXPECT_THAT(posts(), IsEmpty()) << name;
    auto after = outside();
    after["focus"] = before["focus"];
    EXPECT_EQ(after, before) << "after clicks: " << name;
  }
  EXPECT_FALSE(foreign.wasVisited());
}

INSTANTIATE_TEST_SUITE_P(Families, HostileNames, testing::ValuesIn(support::kHostileFamilies),
                         [](const auto& each) { return std::string(each.param.name); });

// Were it otherwise, the test above would see it.
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
  EXPECT_EQ(unseen().size(), 1U);
  EXPECT_TRUE(browser.eventually(
      "return performance.getEntriesByType('resource').some((each) => each.name.endsWith('?seen'))"));
  const support::OtherSite other("Elsewhere");
  browser.open(other.address());
  browser.run("new Image().src = arguments[0]", {"http://127.0.0.1:" + std::to_string(foreign.port())});
  EXPECT_TRUE(support::Eventually([&] { return foreign.wasVisited(); }));
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
    ASSERT_TRUE(postsBecome(++count)) << name;
    EXPECT_THAT(posts().back(), HasSubstr("ref_page=WMP_PListEdit&"));
    EXPECT_THAT(posts().back(), HasSubstr("&PlayList=Second&")) << name;
    EXPECT_THAT(posts().back(), Not(HasSubstr("button="))) << name;
    ASSERT_TRUE(browser.eventually("return document.body.textContent.includes('post " +
                                   std::to_string(count) + "')"));
    ASSERT_TRUE(prepared()) << name;
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
