#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/fakes/ServerProcess.hpp"
#include "support/Browser.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

/// The paths of the pages' own files that this visit has asked the server for; of nothing that the browser
/// had already is anything sent.
std::vector<std::string> AskedFor(support::Browser& browser) {
  const auto paths = browser.run(
      "return performance.getEntriesByType('resource').filter(e => e.transferSize > 0)"
      ".map(e => new URL(e.name).pathname).filter(path => !path.startsWith('/api/'))");
  return paths.get<std::vector<std::string>>();
}

}  // namespace

TEST(ASecondVisit, AsksForTheDocumentAlone) {
  const support::BusDaemon bus;
  const support::TempFolder folder;
  const support::ServerProcess server(bus.address(), folder.path() / "data");
  support::Browser browser;
  const auto visit = [&] {
    browser.open("about:blank");
    browser.open(server.address());
    ASSERT_TRUE(browser.eventually("return document.querySelectorAll('#nav a').length > 3"));
  };
  visit();
  EXPECT_GT(AskedFor(browser).size(), 5U);
  EXPECT_THAT(AskedFor(browser), testing::Each(testing::StartsWith("/v-")));
  visit();
  EXPECT_THAT(AskedFor(browser), testing::IsEmpty());
}
