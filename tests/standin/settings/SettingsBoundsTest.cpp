#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>

#include "base/Failure.hpp"
#include "standin/settings/SettingsStore.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

constexpr const char* kFile = "vxif_WMP.ini";

/// Whether it fails as what is beyond a bound does.
template <class Change>
bool RefusedAsTooMuch(Change&& change) {
  return support::FailureNumberOf(std::forward<Change>(change)) == base::number::kOverflow;
}

TEST(Settings, BeyondTheirBoundsAreRefusedAndWhatStandsIsKept) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  const std::string longest(SettingsStore::kLongestValue, 'v');
  const std::string name(SettingsStore::kLongestName, 'n');
  const auto refused = [&](const std::string& section, const std::string& key, const std::string& value) {
    return RefusedAsTooMuch([&] { store.save(kFile, section, key, value); });
  };
  store.save(kFile, name, name, longest);
  EXPECT_TRUE(refused(name, name, longest + "v"));
  EXPECT_TRUE(refused(name + "n", "a", "1"));
  EXPECT_TRUE(refused("s", name + "n", "1"));
  EXPECT_EQ(store.get(kFile, name, name), longest);
  store.clear(kFile, name);
  const std::size_t many = SettingsStore::kMostInAll / longest.size() - 1;
  for (std::size_t i = 0; i < many; ++i) store.save(std::to_string(i) + ".ini", "s", "k", longest);
  EXPECT_TRUE(refused("s", "k", longest) || refused("s", "l", longest));
  store.save("0.ini", "s", "k", "short");  // what gives room is taken
  store.save(kFile, "s", "m", longest.substr(1));
  EXPECT_EQ(store.get(kFile, "s", "m"), longest.substr(1));
}

TEST(Settings, OfFilesWithoutNumberAreRefused) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  for (std::size_t i = 0; i < SettingsStore::kMostFiles; ++i)
    store.save(std::to_string(i) + ".ini", "s", "k", "1");
  EXPECT_TRUE(RefusedAsTooMuch([&] { store.save("more.ini", "s", "k", "1"); }));
  EXPECT_EQ(store.get("more.ini", "s", "k"), std::nullopt);
  store.save("5.ini", "s", "k", "2");
  store.flush();
  SettingsStore next(folder.path());
  EXPECT_TRUE(RefusedAsTooMuch([&] { next.save("more.ini", "s", "k", "1"); }));
  EXPECT_EQ(next.get("5.ini", "s", "k"), "2");
}

TEST(Settings, AreReadFromFilesThatAreNotThereWithoutMakingThem) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  for (std::size_t i = 0; i <= SettingsStore::kMostFiles; ++i) {
    const std::string name = std::to_string(i) + ".ini";
    EXPECT_EQ(store.get(name, "s", "k"), std::nullopt);
    EXPECT_EQ(store.section(name, "s"), "");
    store.clear(name, "s");
  }
  store.save("new.ini", "s", "k", "1");
  EXPECT_EQ(store.get("new.ini", "s", "k"), "1");
}

TEST(Settings, OfAnEarlierStartCountAsWell) {
  const support::TempFolder folder;
  const std::string longest(SettingsStore::kLongestValue, 'v');
  const std::size_t many = SettingsStore::kMostInAll / longest.size() - 1;
  {
    SettingsStore store(folder.path());
    for (std::size_t i = 0; i < many; ++i) store.save(std::to_string(i) + ".ini", "s", "k", longest);
    store.flush();
  }
  SettingsStore store(folder.path());
  store.save(kFile, "s", "k", "1");
  EXPECT_TRUE(RefusedAsTooMuch([&] { store.save(kFile, "s", "l", longest); }));
  store.save("0.ini", "s", "k", "short");  // what gives room is taken
  store.save(kFile, "s", "l", longest);
  EXPECT_EQ(store.get("1.ini", "s", "k"), longest);
}

TEST(Settings, ThatChangeWithoutEndLeaveAJournalOfSomeSize) {
  const support::TempFolder folder;
  const std::string longest(SettingsStore::kLongestValue - 1, 'v');
  {
    SettingsStore store(folder.path());
    for (int i = 0; i < 40; ++i) {
      store.save(kFile, "s", "k", longest + std::to_string(i % 2));
      ASSERT_LE(store.journalSize(), SettingsStore::kMostWaiting + SettingsJournal::kLongestLine);
    }
  }
  EXPECT_EQ(SettingsStore(folder.path()).get(kFile, "s", "k"), longest + "1");
}

TEST(Settings, ASectionThatIsNotThereLeavesNothingInTheJournal) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  store.save(kFile, "s", "k", "1");
  const std::size_t before = store.journalSize();
  store.clear(kFile, std::string(std::size_t{1} << 20U, 'n'));
  EXPECT_EQ(store.journalSize(), before);
  store.clear(kFile, "S");
  EXPECT_GT(store.journalSize(), before);
}

TEST(Settings, AJournalsEndlessLineIsPassedOver) {
  const support::TempFolder folder;
  const auto change = [](const std::string& key) {
    return SettingsJournal::lineOf({SettingChange::Kind::kSet, kFile, "s", key, "1"});
  };
  {
    std::ofstream journal(folder.path() / "settings.journal", std::ios::binary);
    journal << change("before");
    const std::string much(SettingsJournal::kLongestLine, 'x');
    journal << much << much << '\n' << change("behind") << much << much;
  }
  SettingsStore store(folder.path());
  EXPECT_EQ(store.section(kFile, "s"), std::string("before=1\0behind=1", 17));
  EXPECT_FALSE(store.pending());
}

}  // namespace
}  // namespace standin
