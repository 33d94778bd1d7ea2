// A playlist's page in a browser, with a plug-in of the test's own.
#include <gmock/gmock.h>

#include "standin/fakes/PlaylistHouse.hpp"
#include "support/Browser.hpp"

namespace {

class PlaylistInAWindow : public support::PlaylistHouse {
 protected:
  void open(const std::string& place) {
    browser.open(server->address());
    ASSERT_TRUE(
        browser.eventually("return document.querySelector('#plugin-state').textContent === 'Player ready'"));
    browser.run("location.hash = arguments[0]", {place});
  }
  support::Browser browser;
};

}  // namespace

TEST_F(PlaylistInAWindow, AnAnswerThatComesLateLeavesTheAddressAlone) {
  open("#log");
  // The next page of a list waits until it is let through.
  browser.run(
      "const real = window.fetch; window.waiting = 0;"
      "const gate = new Promise(open => { window.letThrough = open; });"
      "window.fetch = async (path, options) => {"
      "  if (!String(path).startsWith('/api/playlist?')) return real(path, options);"
      "  window.waiting++; await gate;"
      "  try { return await real(path, options); }"  // it may have been given up meanwhile
      // By the end of a second answer, asked for behind the first, that one has been dealt with.
      "  finally { real(path).then(answer => answer.text()).then(() => setTimeout(() => { window.passed = "
      "true; })); }"
      "};");
  browser.run("location.hash = '#library/PlayList/mine'");  // which the player spells otherwise
  ASSERT_TRUE(browser.eventually("return window.waiting > 0"));
  browser.run("location.hash = '#log'");
  ASSERT_TRUE(browser.eventually("return !document.querySelector('#playlist-said')"));
  browser.run("window.letThrough()");
  ASSERT_TRUE(browser.eventually("return window.passed === true"));
  EXPECT_EQ(browser.run("return location.hash"), "#log");
}

TEST_F(PlaylistInAWindow, ARemovalIsReadOutOnce) {
  open("#library/PlayList/Mine");
  ASSERT_TRUE(browser.eventually("return document.querySelectorAll('.long-row .row-name').length === 4"));
  browser.run(
      "window.said = [];"
      "new MutationObserver(all => all.forEach(each => each.addedNodes.forEach(node => {"
      "  if (node.parentNode?.closest('[aria-live]')) window.said.push(node.textContent); })))"
      "  .observe(document.body, {childList: true, subtree: true});"
      "document.querySelector('[data-index=\"1\"] [aria-label^=\"Remove\"]').click()");
  ASSERT_TRUE(support::Eventually([&] { return mine().size() == 3; }));
  // The step's answer has come: Undo names it.
  ASSERT_TRUE(browser.eventually(
      "return document.querySelector('[data-turn=undo]').getAttribute('aria-label').includes('removing')"));
  EXPECT_EQ(browser.run("return window.said.filter(text => text.includes('B')).length"), 1);
}
