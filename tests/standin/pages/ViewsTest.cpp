// What every view of the pages holds to.
#include <gmock/gmock.h>

#include "PageHouse.hpp"
#include "support/Axe.hpp"

namespace {

using testing::IsEmpty;

/// For a page before it is read: every answer comes after some pictures have been drawn without it, as on a
/// slow machine, and the banner is away: there the plug-in takes long to answer too, and what says so moves
/// the page rightly.
constexpr const char* kSlowMachine = R"(
  const ask = window.fetch;
  const drawn = () => new Promise(requestAnimationFrame);
  window.fetch = async (...given) => {
    const answer = await ask(...given);
    for (let i = 0; i < 3; i++) await drawn();
    return answer;
  };
  const calm = new CSSStyleSheet();
  calm.replaceSync('#banner { display: none; }');
  document.adoptedStyleSheets = [calm];)";

class Views : public support::PageHouse {
 protected:
  using PageHouse::PageHouse;
  /// How far what stands on the page has moved by itself since it was opened, as the browser adds it up:
  /// {"sum": …, "what": what moved, from and to which height}.
  nlohmann::json shift() {
    return browser.runAsync(R"(
        const done = arguments[0]; let sum = 0; const what = [];
        const nameOf = (node) => node?.id || node?.className || node?.nodeName;
        const add = (list) => list.filter((each) => !each.hadRecentInput).forEach((each) => {
          sum += each.value;
          each.sources.forEach((one) => what.push(
              `${nameOf(one.node)}: ${one.previousRect.y} to ${one.currentRect.y}`));
        });
        const observer = new PerformanceObserver((list) => add(list.getEntries()));
        observer.observe({type: 'layout-shift', buffered: true});
        requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(() => {
          add(observer.takeRecords());
          done({sum, what}); })))
        )");
  }
  void goTo(const std::string& place) { browser.run("location.hash = arguments[0]", {place}); }
  std::string title() { return browser.run("return document.title").get<std::string>(); }
  bool titleBecomes(const std::string& wanted) {
    return browser.eventually("return document.title === arguments[0]", {wanted});
  }
  void manyLists() {
    for (int i = 0; i < 300; ++i)
      lists->put("List " + std::to_string(1000 + i), {at("A"), at("B"), at("C"), at("D")});
  }
};

class ViewsOfSomeWidth : public Views, public testing::WithParamInterface<int> {
 protected:
  ViewsOfSomeWidth() : Views(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Desk, ViewsOfSomeWidth, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, ViewsOfSomeWidth, testing::Values(360));

TEST_P(ViewsOfSomeWidth, StandStillWhileTheyAreOpened) {
  for (int i = 0; i < 12; ++i) newDevice("Lamp " + std::to_string(i));
  browser.beforeEachPage(kSlowMachine);
  for (const auto& [place, sign] :
       {std::pair("#devices", ".card"), std::pair("#library/Album", ".library-count"),
        std::pair("#library/PlayList", ".long-row button"), std::pair("#log", ".log li"),
        std::pair("#scripts", ".script-names button"), std::pair("#account", "form")}) {
    open(place);
    ASSERT_TRUE(has(sign)) << place;
    ASSERT_TRUE(browser.eventually("return !document.body.textContent.includes('Loading…')"));
    const nlohmann::json moved = shift();
    RecordProperty(place + 1, moved["sum"].dump());
    EXPECT_LT(moved["sum"].get<double>(), 0.1) << place << moved["what"];
  }
}

TEST_F(Views, WhatMovesIsNoticed) {
  open("#account");
  ASSERT_TRUE(has("form"));
  browser.run("document.querySelector('#main').style.paddingTop = '500px'");
  EXPECT_TRUE(support::Eventually([&] { return shift()["sum"] > 0.1; }));
}

TEST_F(Views, EachHasATitleOfItsOwn) {
  open("#devices");
  EXPECT_EQ(title(), "Devices – Vantorix");
  for (const auto& [place, wanted] :
       {std::pair("log", "Log"), std::pair("account", "Account"), std::pair("library/Album", "Albums"),
        std::pair("library/PlayList", "Playlists"), std::pair("library/PlayList/Mine", "Mine"),
        std::pair("scripts", "Albums and their titles · Scripts"), std::pair("devices", "Devices")}) {
    goTo(place);
    EXPECT_TRUE(titleBecomes(std::string(wanted) + " – Vantorix")) << title();
  }
}

TEST_F(Views, BackLeadsToTheSamePlace) {
  manyLists();
  open("#library/PlayList");
  ASSERT_TRUE(has(".long-row button"));
  browser.type("//input[@id='library-search']", "List 1");
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('.library-count').textContent === '300 found'"));
  browser.click("//a[normalize-space(.)='All 300 playlists']");
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('.library-count').textContent === '300 playlists'"));
  browser.run("document.querySelector('.long').scrollTop = 52 * 150");
  ASSERT_TRUE(has("[data-index='155'] .row-main"));
  browser.run(
      "document.querySelector('[data-index=\"155\"] .row-main').focus();"
      "document.querySelector('[data-index=\"155\"] .row-main').click()");
  ASSERT_TRUE(browser.eventually("return document.querySelector('h2')?.textContent === 'List 1155'"));
  browser.back();
  EXPECT_TRUE(
      browser.eventually("return document.activeElement.closest('[data-index]')?.dataset.index === '155'"));
  EXPECT_EQ(browser.run("return document.activeElement.textContent"), "List 1155");
  EXPECT_EQ(browser.run("return document.querySelector('.long').scrollTop"), 52 * 150);
  EXPECT_TRUE(titleBecomes("List 1 – Vantorix"));
  browser.back();
  EXPECT_TRUE(titleBecomes("Playlists – Vantorix"));
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.library-count')?.textContent === '300 found'"));
  EXPECT_EQ(browser.run("return document.querySelector('#library-search').value"), "List 1");
  EXPECT_TRUE(browser.eventually("return document.activeElement.textContent === 'All 300 playlists'"))
      << "the link that led away";
}

TEST_F(Views, BackLeadsToTheSamePlaceFromAnotherDocumentToo) {
  for (int i = 0; i < 60; ++i) newDevice("Lamp " + std::to_string(i));
  open("#devices");
  ASSERT_TRUE(shows("Lamp 59"));
  browser.run("scrollTo(0, 700); document.querySelector('#say').focus({preventScroll: true})");
  browser.open(url("favicon.svg"));
  browser.back();
  EXPECT_TRUE(browser.eventually("return scrollY === 700 && document.activeElement.id === 'say'"));
  // A new visit begins at the top.
  goTo("log");
  ASSERT_TRUE(has(".log li"));
  goTo("devices");
  ASSERT_TRUE(has(".card"));
  EXPECT_EQ(browser.run("return scrollY"), 0);
}

TEST_F(Views, ALeftViewHearsOfNothing) {
  open("#log");
  ASSERT_TRUE(has(".log li"));
  goTo("devices");
  ASSERT_TRUE(has(".voice"));
  for (const char* place : {"log", "scripts", "library/PlayList/Mine", "account", "devices"}) goTo(place);
  newDevice("Lamp");
  EXPECT_TRUE(shows("Lamp"));
  EXPECT_EQ(browser.run("return document.querySelectorAll('#page > *').length"), 1);
  EXPECT_EQ(browser.run("return document.querySelector('#page > *').className"), "view view-devices");
}

TEST_F(Views, WhatAViewDoesLaterEndsWithIt) {
  open("#devices");
  const json told = browser.runAsync(
      "const done = arguments[0];"
      "import(document.querySelector('script[src$=\"app.js\"]').src.replace('app.js', 'kit/lasting.js'))"
      "  .then(({whileShown, Timer, later, every}) => {"
      "    const told = []; const view = new AbortController(); const {signal} = view;"
      "    const work = whileShown(signal, (word) => told.push(word)); work('shown');"
      "    const timer = new Timer(signal, () => told.push('timer')); timer.start();"
      "    later(signal, () => told.push('later')); every(signal, 1, () => told.push('again'));"
      "    view.abort();"
      "    work('left'); timer.start(); later(signal, () => told.push('late'));"
      "    every(signal, 1, () => told.push('for ever'));"
      "    setTimeout(() => done(told), 50); }, error => done([String(error)]))");
  EXPECT_EQ(told, json({"shown"}));
}

TEST_F(Views, ASearchThatWasLeftBeforeItBeganIsNotMade) {
  manyLists();
  open("#library/PlayList");
  ASSERT_TRUE(has(".long-row button"));
  // The search waits for a pause of 200 milliseconds, here until the test lets it pass.
  browser.run(
      "window.held = new Map(); const [begin, end] = [setTimeout, clearTimeout];"
      "window.setTimeout = (work, time, ...rest) => {"
      "  if (time !== 200) return begin(work, time, ...rest);"
      "  const id = 1e9 + held.size; held.set(id, work); return id; };"
      "window.clearTimeout = (id) => { if (!held.delete(id)) end(id); };"
      "const field = document.querySelector('#library-search');"
      "field.value = 'nobody'; field.dispatchEvent(new Event('input'))");
  ASSERT_EQ(browser.run("return held.size"), 1);
  browser.run("location.hash = '#log'");
  ASSERT_TRUE(has(".log li"));
  EXPECT_EQ(browser.run("return held.size"), 0) << "nobody waits for the pause any more";
}

TEST_F(Views, NothingIsGreenWhileTheServerIsDown) {
  plugin.withHost([](base::Object&, base::Object& host) {
    for (const auto& [name, text] : {std::pair("Status", "Playing"), std::pair("Title", "River")}) {
      const base::ObjectRef device = base::ToObject(host.invoke("GetDevice", host.invoke("NewDevice", name)));
      device->put("location", "Media Player");
      host.invoke("SetDeviceStringByName", "Media Player " + std::string(name), text, true);
    }
  });
  open("#devices");
  ASSERT_TRUE(browser.eventually("return document.querySelector('.now-state')?.textContent === 'Playing'"));
  EXPECT_EQ(browser.run("return document.querySelector('.now.stale, .cards.stale')"), nullptr);
  const std::string port = std::to_string(server->port());
  server->end(SIGKILL);
  EXPECT_TRUE(browser.eventually("return !document.querySelector('#live-state').hidden"));
  EXPECT_EQ(browser.run("return document.querySelectorAll('.pill-good').length"), 0);
  EXPECT_EQ(browser.run("return document.querySelector('#plugin-state').textContent"), "");
  EXPECT_TRUE(browser.eventually("return document.querySelector('.now.stale') !== null"));
  EXPECT_EQ(browser.run("return document.querySelector('.now-state').textContent"), "Last heard of");
  EXPECT_NE(browser.run("return document.querySelector('.cards.stale')"), nullptr) << "the Status card too";
  server.emplace(bus.address(), folder.path() / "data", std::vector<std::string>{"--port", port});
  EXPECT_TRUE(browser.eventually("return document.querySelectorAll('.pill-good').length === 1"));
  EXPECT_TRUE(browser.eventually("return document.querySelector('.now.stale, .cards.stale') === null"));
}

/// What a page's stream tells when its clock is turned by hand: `steps` runs with `made`, `told`, `now`,
/// `tick`.
nlohmann::json ToldByAStream(support::Browser& browser, const std::string& steps) {
  return browser.runAsync(
      "const done = arguments[0]; const made = []; let tick; let now = 0;"
      "window.EventSource = class extends EventTarget {"
      "  static CLOSED = 2; readyState = 1;"
      "  constructor() { super(); made.push(this); }"
      "  close() { this.closed = true; } };"
      "window.setInterval = (work) => { tick = work; return 1; };"
      "Date.now = () => now;"
      "import(document.querySelector('script[src$=\"app.js\"]').src.replace('app.js', 'live/source.js'))"
      "  .then(({Source}) => { const told = []; new Source((message) => told.push(message.type));" +
      steps + "    done([...told, made.length, made[0].closed]); }, error => done([String(error)]))");
}

TEST_F(Views, AConnectionThatDiesWithoutAWordIsFoundOut) {
  open("#devices");
  EXPECT_EQ(ToldByAStream(browser,
                          "made[0].onopen(); made[0].dispatchEvent(new Event('alive'));"
                          "now = 11000; tick(); told.push('still');"
                          "now = 12000; tick(); made[1].onopen();"),
            json({"opened", "still", "lost", "opened", 2, true}));
}

TEST_F(Views, AConnectionThatNeverComesAboutIsBegunAnew) {
  open("#devices");
  EXPECT_EQ(ToldByAStream(browser,
                          "now = 29000; tick(); told.push('still');"
                          "now = 30000; tick(); made[1].onopen();"),
            json({"still", "lost", "opened", 2, true}));
}

TEST_F(Views, AStreamThatWasRefusedIsAskedForUntilTheServerIsThereAgain) {
  browser.beforeEachPage(
      "window.opened = 0; window.down = 3;"
      "window.SharedWorker = class { port = {"
      "  set onmessage(hear) { this.hear = hear; if (hear) setTimeout(() => hear({data: {type: "
      "'refused'}})); },"
      "  postMessage(word) { if (word === 'open') window.opened++; }}; };"
      "{ const wait = window.setTimeout; window.setTimeout = (work, time, ...rest) => "
      "    wait(work, time === 3000 ? 30 : time, ...rest);"
      "  const plain = window.fetch; let first = true;"
      "  window.fetch = (path, ...rest) => {"
      "    if (path !== '/api/state' || first || !window.down) { first = false; return plain(path, ...rest); "
      "}"
      "    window.down--; return Promise.reject(new TypeError('down')); }; }");
  open("#devices");
  EXPECT_TRUE(browser.eventually("return window.opened === 1"));
  EXPECT_EQ(browser.run("return window.down"), 0);
  EXPECT_LE(browser.run("return document.querySelectorAll('.toast.bad').length").get<int>(), 1);
}

TEST_F(Views, AnEditedScriptIsThereAgainAfterItWasLeft) {
  open("#scripts");
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('#script-text').value.includes('GetCategoryList')"));
  browser.type("//textarea", "-- mine");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.unsaved').textContent === 'Not saved yet'"));
  goTo("log");
  ASSERT_TRUE(has(".log li"));
  const char* const holdsIt =
      "return document.querySelector('#script-text')?.value.includes('-- mine') ?? false";
  goTo("scripts");
  EXPECT_TRUE(browser.eventually(holdsIt));
  browser.reload();
  EXPECT_TRUE(browser.eventually(holdsIt));
  // Another script is looked at meanwhile.
  browser.click("//button[text()='Announce what plays']");
  EXPECT_TRUE(browser.eventually("return document.querySelector('#script-text').value.includes('Speak')"));
  EXPECT_EQ(browser.run("return document.querySelector('.unsaved').textContent"), "");
  browser.click("//button[starts-with(., 'Albums and their titles')]");
  EXPECT_TRUE(browser.eventually(holdsIt));
  browser.click("//button[text()='Discard changes']");
  EXPECT_TRUE(browser.eventually("return !document.querySelector('#script-text').value.includes('-- mine')"));
  EXPECT_EQ(browser.run("return document.querySelectorAll('.draft-mark').length"), 0);
}

TEST_F(Views, ADeletedScriptComesBackByTheMessageThatTellsIt) {
  browser.keepMessages();
  open("#scripts");
  ASSERT_TRUE(has(".danger:not([hidden])"));
  browser.click("//button[text()='Delete']");
  ASSERT_TRUE(browser.eventually("return document.querySelectorAll('.script-names button').length === 2"));
  browser.click("//button[text()='Undo']");
  EXPECT_TRUE(browser.eventually("return document.querySelectorAll('.script-names button').length === 3"));
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('#script-text').value.includes('GetCategoryList')"));
}

}  // namespace
