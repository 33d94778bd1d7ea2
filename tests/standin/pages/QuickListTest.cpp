// A device whose values are the names of a library.
#include <gmock/gmock.h>

#include "PageHouse.hpp"
#include "support/Keys.hpp"

namespace {

constexpr const char* kSearch = "//input[@aria-label='Quick Album: search']";

class QuickList : public support::PageHouse {
 protected:
  /// A table of so many names behind the blank and the entry that reads them anew.
  static std::string table(int names) {
    std::string text =
        " \x02"
        "0\x01*Refresh Albums*\x02"
        "1";
    for (int i = 0; i < names; ++i)
      text +=
          "\x01"
          "Album " +
          std::to_string(10'000 + i) + "\x02" + std::to_string(i + 2);
    return text;
  }
  void makeDevice(int names) {
    plugin.withHost([&](base::Object&, base::Object& host) {
      const auto device = base::ToObject(host.invoke("GetDevice", host.invoke("NewDevice", "Quick Album")));
      device->put("location", "Media Player");
      device->put("hc", "Q");
      device->put("dc", std::int16_t{12});
      device->put("interface", "Media Player");
      host.invoke("DeviceValuesAdd", "Q12", table(names), true);
    });
  }
  void tablesBecome(int names) {
    plugin.withHost([&](base::Object&, base::Object& host) {
      base::Deref(host.invoke("GetDeviceEx", "Media Player Quick Album")).put("Values", table(names));
    });
  }
  std::string options() {
    return browser
        .run(
            "return [...document.querySelectorAll('[data-ref] select option')].map((each) => "
            "each.textContent)"
            ".join(',')")
        .get<std::string>();
  }
};

}  // namespace

TEST_F(QuickList, OfTenThousandNamesIsSearchedAndNeverOnThePageAsAWhole) {
  makeDevice(10'000);
  open("#devices");
  ASSERT_TRUE(has("input[role='combobox']"));
  EXPECT_EQ(browser.run("return document.querySelector('input[role=\"combobox\"]').placeholder"),
            "Search 10002 entries");
  browser.type(kSearch, "album 19999");
  ASSERT_TRUE(
      browser.eventually("return [...document.querySelectorAll('[role=\"option\"]')].map((each) => "
                         "each.textContent).join() === 'Album 19999'"));
  EXPECT_LT(browser.run("return document.querySelectorAll('*').length").get<int>(), 2'000);
  EXPECT_LT(browser
                .run("return performance.getEntriesByType('resource').filter(({name}) => "
                     "name.includes('/api/state') || name.includes('/api/values'))"
                     ".reduce((sum, {encodedBodySize}) => sum + encodedBodySize, 0)")
                .get<int>(),
            100'000)
      << "the names stay with the server but for a hundred at a time";
  browser.press({support::kDown, support::kEnter});
  EXPECT_TRUE(plugin.heard("SetIO Quick Album Q 12 19 10001 0 0 after "));
  EXPECT_TRUE(browser.eventually("return document.body.textContent.includes('Done: Album 19999')"));
}

TEST_F(QuickList, OfAFewNamesFollowsItsTable) {
  makeDevice(2);
  open("#devices");
  ASSERT_TRUE(has("[data-ref] select"));
  EXPECT_TRUE(support::Eventually([&] {
    return options() == "Choose…,*Refresh Albums*,Album 10000,Album 10001";
  })) << options();
  tablesBecome(1);
  EXPECT_TRUE(support::Eventually([&] { return options() == "Choose…,*Refresh Albums*,Album 10000"; }))
      << options();
  plugin.withHost([&](base::Object&, base::Object& host) {
    base::Deref(host.invoke("GetDeviceEx", "Media Player Quick Album"))
        .put("Values",
             " \x02"
             "0\x01*Refresh Albums*\x02"
             "1\x01"
             "Another\x02"
             "2");
  });
  EXPECT_TRUE(support::Eventually([&] { return options() == "Choose…,*Refresh Albums*,Another"; }))
      << "as many as before, but others: " << options();
}
