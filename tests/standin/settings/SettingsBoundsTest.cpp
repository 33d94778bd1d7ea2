#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "standin/settings/SettingsStore.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

constexpr const char* kFile = "vxif_WMP.ini";

TEST(Settings, BeyondTheirBoundsAreRefusedAndWhatStandsIsKept) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  const std::string longest(SettingsStore::kLongestValue, 'v');
  const std::string name(SettingsStore::kLongestName, 'n');
  const auto refused = [&](const std::string& section, const std::string& key, const std::string& value) {
    return support::FailureNumberOf([&] { store.save(kFile, section, key, value); }) ==
           base::number::kOverflow;
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
  for (std::size_t i = 0; i < SettingsStore::kMostFiles; ++i) store.get(std::to_string(i) + ".ini", "s", "k");
  EXPECT_EQ(support::FailureNumberOf([&] { store.get("more.ini", "s", "k"); }), base::number::kOverflow);
  EXPECT_EQ(store.get("5.ini", "s", "k"), std::nullopt);
}

}  // namespace
}  // namespace standin
