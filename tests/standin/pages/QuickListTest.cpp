// A device whose values are the names of a library.
#include <gmock/gmock.h>

#include "PageHouse.hpp"
#include "support/Keys.hpp"

namespace {

using testing::HasSubstr;
using testing::Not;

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
  /// The same names in another order: a value means another one.
  void tableTurns(int names) {
    std::string turned = table(names);
    const std::string first = "Album 10000";
    const std::string second = "Album 10001";
    const std::size_t a = turned.find(first);
    const std::size_t b = turned.find(second);
    turned.replace(a, first.size(), second);
    turned.replace(b, second.size(), first);
    plugin.withHost([&](base::Object&, base::Object& host) {
      base::Deref(host.invoke("GetDeviceEx", "Media Player Quick Album")).put("Values", turned);
    });
  }
  /// The page counts what it asks for under that address from now on, and is answered `answer` if that is a
  /// response, nothing if it is none.
  void standBefore(const std::string& path, const std::string& answer = "real(...given)") {
    browser.run(
        "window.asked = 0; window.real = window.real || window.fetch.bind(window);"
        "window.fetch = (...given) => { if (!String(given[0]).includes(arguments[0])) return real(...given);"
        "  ++asked; return " +
            answer + "; }",
        {path});
  }
  bool toasts(const std::string& text) {
    return browser.eventually("return document.body.textContent.includes(arguments[0])", {text});
  }
  bool finds(const std::string& names) {
    return browser.eventually(
        "const list = document.querySelector('.found');"
        "return !list.hidden && [...list.children].map((each) => each.textContent).join() === arguments[0]",
        {names});
  }
  std::string all() {
    std::string all;
    for (const std::string& call : plugin.calls()) all += call + "\n";
    return all;
  }
  std::string options() {
    return browser
        .run(
            "return [...document.querySelectorAll('[data-ref] select option')].map((each) => "
            "each.textContent)"
            ".join(',')")
        .get<std::string>();
  }
  /// A device of two names, on the page.
  bool showsTwo() {
    makeDevice(2);
    open("#devices");
    return support::Eventually(
        [&] { return options() == "Choose…,*Refresh Albums*,Album 10000,Album 10001"; });
  }
  /// A device of so many names that they are searched, on the page.
  bool showsSearch(int names) {
    makeDevice(names);
    open("#devices");
    return has("input[role='combobox']");
  }
};

}  // namespace

TEST_F(QuickList, OfTenThousandNamesIsSearchedAndNeverOnThePageAsAWhole) {
  ASSERT_TRUE(showsSearch(10'000));
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
  ASSERT_TRUE(showsTwo()) << options();
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

TEST_F(QuickList, WhatCouldNotBeChosenIsNotShownAndCanBeChosenAgain) {
  ASSERT_TRUE(showsTwo()) << options();
  const std::string option = "//select[@aria-label='Quick Album']/option[.='Album 10000']";
  standBefore("/api/command",
              "Promise.resolve(new Response(JSON.stringify({error: 'The player is away'}), {status: 503}))");
  browser.click(option);
  ASSERT_TRUE(toasts("The player is away"));
  EXPECT_TRUE(browser.eventually("return document.querySelector('[data-ref] select').value === '0'"));
  standBefore("/api/command");
  browser.click(option);
  EXPECT_TRUE(plugin.heard("SetIO Quick Album Q 12 19 2 0 0 after "));
}

TEST_F(QuickList, WhatAnotherListMeantIsNotPlayed) {
  ASSERT_TRUE(showsTwo()) << options();
  standBefore("/api/values", "new Promise(() => {})");
  tableTurns(2);
  ASSERT_TRUE(browser.eventually("return asked === 1")) << "it reads them anew, and waits";
  browser.click("//select[@aria-label='Quick Album']/option[.='Album 10000']");
  EXPECT_TRUE(toasts("The list has changed meanwhile. Choose again"));
  EXPECT_THAT(all(), Not(HasSubstr("SetIO")));
  const auto state = web->json("/api/state");
  EXPECT_EQ(state.at("devices")[0].at("value"), 0);
}

TEST_F(QuickList, NorWhatWasFoundInAnotherOne) {
  ASSERT_TRUE(showsSearch(100));
  browser.type(kSearch, "album 10000");
  ASSERT_TRUE(finds("Album 10000"));
  tableTurns(100);
  browser.press({support::kDown, support::kEnter});
  EXPECT_TRUE(toasts("The list has changed meanwhile. Choose again"));
  EXPECT_THAT(all(), Not(HasSubstr("SetIO")));
}

TEST_F(QuickList, TheListStaysClosedBehindAChoice) {
  ASSERT_TRUE(showsSearch(100));
  browser.type(kSearch, "album 10042");
  ASSERT_TRUE(finds("Album 10042"));
  standBefore("/api/values");
  browser.press({support::kDown, support::kEnter});
  ASSERT_TRUE(toasts("Done: Album 10042"));
  ASSERT_TRUE(
      browser.eventually("const input = document.querySelector('[role=\"combobox\"]');"
                         "return !input.disabled && document.activeElement === input"));
  EXPECT_EQ(browser.run("return asked"), 0) << "nobody looks for anything";
  EXPECT_EQ(browser.run("return document.querySelector('.found').hidden"), true);
  browser.type(kSearch, "album 10043");
  EXPECT_TRUE(finds("Album 10043"));
}

TEST_F(QuickList, FromAListThatIsClosedNothingIsChosen) {
  ASSERT_TRUE(showsSearch(100));
  browser.type(kSearch, "album 10042");
  ASSERT_TRUE(finds("Album 10042"));
  browser.press({support::kEscape, support::kUp, support::kEnter});
  EXPECT_EQ(browser.run("return document.querySelector('.found').hidden"), true);
  browser.press({support::kDown});
  ASSERT_TRUE(finds("Album 10042")) << "it opens again";
  EXPECT_THAT(all(), Not(HasSubstr("SetIO")));
  browser.press({support::kDown, support::kEnter});
  EXPECT_TRUE(plugin.heard("SetIO Quick Album Q 12 19 44 0 0 after "));
}

TEST_F(QuickList, WhereNothingFitsItSaysSo) {
  ASSERT_TRUE(showsSearch(100));
  browser.type(kSearch, "nobody has it");
  EXPECT_TRUE(finds("Nothing fits"));
  browser.press({support::kDown, support::kEnter});
  EXPECT_TRUE(finds("Nothing fits"));
  EXPECT_THAT(all(), Not(HasSubstr("SetIO")));
}
