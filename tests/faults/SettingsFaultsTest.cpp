// The settings on a disk whose operations fail one after the other.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <optional>

#include "base/Failure.hpp"
#include "standin/settings/SettingsStore.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/FailingFiles.hpp"

namespace standin {
namespace {

constexpr const char* kFile = "vxif_WMP.ini";

/// The settings as their user knows them: what was acknowledged.
class KnownSettings {
 public:
  void save(SettingsStore& store, const std::string& key, const std::string& value) {
    try {
      store.save(kFile, "Settings", key, value);
      known_[key] = value;
    } catch (const base::Failure&) {
      known_.try_emplace(key, std::nullopt);
    }
  }
  void clear(SettingsStore& store) {
    try {
      store.clear(kFile, "Settings");
      for (auto& [key, value] : known_) value.reset();
    } catch (const base::Failure&) {  // then everything stands
    }
  }
  void expectIn(SettingsStore& store) const {
    for (const auto& [key, value] : known_) EXPECT_EQ(store.get(kFile, "Settings", key), value) << key;
  }
  void expectInTheNext(const std::string& folder) const {
    SettingsStore next(folder);
    expectIn(next);
  }

 private:
  std::map<std::string, std::optional<std::string>> known_;
};

void Flush(SettingsStore& store) {
  try {
    store.flush();
  } catch (const base::Failure&) {  // the changes stay in the journal
  }
}

/// A folder with settings in their file, and some in the journal.
KnownSettings SettingsIn(const std::string& folder) {
  KnownSettings known;
  SettingsStore store(folder);
  known.save(store, "Volume", "42");
  store.flush();
  known.save(store, "Bass", "1");
  known.save(store, "Volume", "43");
  return known;
}

std::optional<SettingsStore> Opened(const std::string& folder) {
  try {
    return std::optional<SettingsStore>(std::in_place, folder);
  } catch (const base::Failure&) {
    return std::nullopt;
  }
}

TEST(SettingsFaults, WhereAnyOperationFailsWhatWasAcknowledgedStandsAndNothingElse) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/config";
    KnownSettings known = SettingsIn(folder);
    std::optional<SettingsStore> store(std::in_place, folder);
    run.onTheFailingDisk([&] {
      for (int i = 0; i < 3; ++i) known.save(*store, "Key" + std::to_string(i), std::string(50, 'a'));
      Flush(*store);
      known.save(*store, "Volume", "44");
      known.clear(*store);
      known.save(*store, "Treble", "two\nlines");
      Flush(*store);
      known.save(*store, "Last", "1");
    });
    known.expectIn(*store);
    store.emplace(folder);
    known.expectIn(*store);
    known.save(*store, "After", "1");
    store.reset();
    known.expectInTheNext(folder);
  });
  EXPECT_GT(failed, 20);
}

TEST(SettingsFaults, TheJournalStaysUntilTheFolderOfTheFilesIsOnTheDisk) {
  for (int nth = 1;; ++nth) {
    const support::TempFolder root;
    support::FaultyRun run(root.path(), {EIO, false, false}, nth);
    SettingsStore store(run.folder());
    store.save(kFile, "Settings", "Volume", "42");
    bool told = false;
    run.onTheFailingDisk([&] {
      try {
        store.flush();
      } catch (const base::Failure&) {
        told = true;
      }
    });
    ASSERT_FALSE(run.failed().empty()) << "the folder is not flushed";
    EXPECT_TRUE(told) << run.failed();
    EXPECT_TRUE(store.pending()) << run.failed();
    if (run.failed() != "sync " + run.folder()) continue;
    store.flush();
    EXPECT_FALSE(store.pending());
    return;
  }
}

TEST(SettingsFaults, AStartOnAFailingDiskLosesNothing) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/config";
    KnownSettings known = SettingsIn(folder);
    std::optional<SettingsStore> store;
    run.onTheFailingDisk([&] {
      store = Opened(folder);
      if (store) known.save(*store, "Key", "1");
    });
    if (store) {
      known.expectIn(*store);
      known.save(*store, "After", "1");
      store->flush();
      store.reset();
    }
    known.expectInTheNext(folder);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2) << "something lies about";
  });
  EXPECT_GT(failed, 20);
}

TEST(SettingsFaults, WhatAKillHasTornSwallowsNothingEvenWhereTheStartCantWriteTheFiles) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/config";
    KnownSettings known = SettingsIn(folder);
    const std::string journal = folder + "/settings.journal";
    { SettingsStore(folder).save(kFile, "Settings", "Torn", "1"); }
    std::filesystem::resize_file(journal, std::filesystem::file_size(journal) - 3);
    std::optional<SettingsStore> store;
    run.onTheFailingDisk([&] {
      store = Opened(folder);
      if (store) known.save(*store, "Key", "1");
    });
    if (store) known.expectIn(*store);
    store.reset();
    known.expectInTheNext(folder);
  });
  EXPECT_GT(failed, 20);
}

}  // namespace
}  // namespace standin
