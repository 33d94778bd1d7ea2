// Many tabs of one browser: they share one live stream, as a browser opens six connections to a server and no
// more.
#include <gmock/gmock.h>

#include <fstream>
#include <iomanip>
#include <sstream>

#include "PageHouse.hpp"

namespace {

constexpr std::size_t kTabs = 10;
constexpr const char* kNoWorker = "delete window.SharedWorker";

/// The connections to a port of this machine that are open now, as their clients see them.
int ConnectionsTo(int port) {
  std::ifstream table("/proc/net/tcp");
  std::ostringstream peer;
  peer << std::uppercase << std::hex << "0100007F:" << std::setw(4) << std::setfill('0') << port;
  int count = 0;
  std::string line;
  while (std::getline(table, line)) {
    std::istringstream words(line);
    std::string number;
    std::string own;
    std::string other;
    std::string state;
    words >> number >> own >> other >> state;
    if (other == peer.str() && state == "01") ++count;
  }
  return count;
}

/// With a worker that the tabs share, and without one.
class ManyTabs : public support::PageHouse, public testing::WithParamInterface<bool> {
 protected:
  void openAll() {
    for (std::size_t i = 0; i < kTabs; ++i) {
      if (i > 0) browser.openTab();
      if (!GetParam()) browser.beforeEachPage(kNoWorker);
      open("#devices");
    }
  }
  void everyTabShows(const std::string& device, std::size_t from = 0) {
    for (std::size_t i = from; i < kTabs; ++i) {
      browser.toTab(i);
      EXPECT_TRUE(shows(device)) << i;
    }
  }
};

/// With a worker that never says a word.
class AMuteWorker : public support::PageHouse {};

INSTANTIATE_TEST_SUITE_P(ByWorker, ManyTabs, testing::Values(true));
INSTANTIATE_TEST_SUITE_P(ByLeader, ManyTabs, testing::Values(false));

TEST_P(ManyTabs, AllHearOfEverythingOverOneStream) {
  openAll();
  EXPECT_EQ(browser.run("return 'SharedWorker' in window"), GetParam());
  newDevice("Lamp");
  everyTabShows("Lamp");
  // All that was only asked for has been answered, and those connections end.
  EXPECT_TRUE(support::Eventually([&] { return ConnectionsTo(server->port()) == 1; }))
      << ConnectionsTo(server->port());
}

TEST_P(ManyTabs, AllHearOfEverythingWhenTheFirstIsClosedAndTheServerStartsAnew) {
  openAll();
  browser.closeTab(0);
  browser.toTab(1);
  newDevice("Lamp");
  everyTabShows("Lamp", 1);
  const std::string port = std::to_string(server->port());
  server->end(SIGKILL);
  for (std::size_t i = 1; i < kTabs; ++i) {
    browser.toTab(i);
    EXPECT_TRUE(browser.eventually("return !document.querySelector('#live-state').hidden")) << i;
  }
  server.emplace(bus.address(), folder.path() / "data", std::vector<std::string>{"--port", port});
  for (std::size_t i = 1; i < kTabs; ++i) {
    browser.toTab(i);
    EXPECT_TRUE(
        browser.eventually("return document.querySelector('#live-state').hidden && "
                           "document.querySelector('#plugin-state').textContent === 'Player ready'"))
        << i;
  }
  EXPECT_TRUE(support::Eventually([&] { return ConnectionsTo(server->port()) == 1; }))
      << ConnectionsTo(server->port());
}

TEST_F(AMuteWorker, IsDoneWithoutByThePageThatHasIt) {
  // It is asked in vain without the pauses in between.
  browser.beforeEachPage(
      "window.SharedWorker = class { port = {postMessage() {}}; };"
      "{ const plain = window.setTimeout;"
      "window.setTimeout = (work, time, ...rest) => plain(work, time === 10000 ? 50 : time, ...rest); }");
  open("#devices");
  newDevice("Lamp");
  EXPECT_TRUE(shows("Lamp"));
}

TEST_F(AMuteWorker, IsGivenUpOnce) {
  browser.beforeEachPage(
      "window.SharedWorker = class { constructor() { window.worker = this; } port = {postMessage() {}}; };"
      "window.channels = 0; window.BroadcastChannel = class extends window.BroadcastChannel {"
      "  constructor(name) { super(name); window.channels++; } };"
      "{ const plain = window.setTimeout;"
      "window.setTimeout = (work, time, ...rest) => plain(work, time === 10000 ? 50 : time, ...rest); }");
  open("#devices");
  ASSERT_TRUE(browser.eventually("return window.channels === 1"));
  browser.run("window.worker.onerror?.()");
  EXPECT_EQ(browser.run("return window.channels"), 1);
}

}  // namespace
