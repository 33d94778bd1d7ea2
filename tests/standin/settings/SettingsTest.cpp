#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include "base/Failure.hpp"
#include "files/ReadFile.hpp"
#include "standin/settings/SettingsStore.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"
#include "support/faults/KilledWhile.hpp"
#include "support/faults/SmallDisk.hpp"

namespace standin {
namespace {

constexpr const char* kFile = "vxif_WMP.ini";

void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// What this process has read from files and written to them so far.
std::uint64_t BytesMoved() {
  std::ifstream file("/proc/self/io");
  std::uint64_t all = 0;
  std::uint64_t one = 0;
  for (std::string name; file >> name >> one;) all += name == "rchar:" || name == "wchar:" ? one : 0;
  return all;
}

constexpr auto kNoNewFiles = std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec;

/// In a process of a user whose the folder is and who can't write where he may not.
void AsOwnerOf(const std::filesystem::path& folder, const std::function<void()>& part) {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown(folder.c_str(), kNobody, kNobody), 0);
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      ASSERT_EQ(::chown(entry.path().c_str(), kNobody, kNobody), 0);
  }
  EXPECT_TRUE(support::InChild([&] {
    support::BecomeNobody();
    part();
  }));
}

TEST(Settings, AKeyIsFoundWithoutRegardToCaseAndKeepsItsSpelling) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  store.save(kFile, "Settings", "PlayListEditorLeft", "120.5");
  EXPECT_EQ(store.get("VXIF_wmp.INI", "settings", "PlaylistEditorLeft"), "120.5");
  store.save(kFile, "SETTINGS", "playlisteditorleft", "7");
  store.flush();
  EXPECT_EQ(files::TextOf(folder.path() / kFile), "[Settings]\nPlayListEditorLeft=7\n");
}

TEST(Settings, ANonAsciiKeyIsFoundWithoutRegardToCase) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  store.save(kFile, "Künstler", "ÄRZTE", "x");
  EXPECT_EQ(store.get(kFile, "KÜNSTLER", "ärzte"), "x");
}

TEST(Settings, AnAbsentKeyIsToldFromAnEmptyValue) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  store.save(kFile, "Album", "Blue", "");
  EXPECT_EQ(store.get(kFile, "Album", "Blue"), "");
  EXPECT_EQ(store.get(kFile, "Album", "Green"), std::nullopt);
}

TEST(Settings, ASectionIsItsEntriesSeparatedByCodeZeroInTheirOrder) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  store.save(kFile, "Album", "b", "2");
  store.save(kFile, "Album", "a", "1");
  EXPECT_EQ(store.section(kFile, "album"), std::string("b=2\0a=1", 7));
  store.clear(kFile, "ALBUM");
  EXPECT_EQ(store.section(kFile, "Album"), "");
}

TEST(Settings, AnyTextSurvivesTheFile) {
  const support::TempFolder folder;
  const std::vector<std::string> texts{"",
                                       " blanks ",
                                       "a=b",
                                       "\"quoted\"",
                                       "\\n no line end",
                                       "two\nlines",
                                       "tab\tand\rcr",
                                       "[section]",
                                       "; remark",
                                       "# remark",
                                       "\xEF\xBB\xBF",
                                       "\xFF\xFE bad",
                                       std::string("nul\0in", 6),
                                       "ends\\",
                                       "\"",
                                       "C:\\new\\table",
                                       "=",
                                       "ünïcode"};
  {
    SettingsStore store(folder.path());
    for (const std::string& section : texts) {
      for (const std::string& text : texts) store.save(kFile, section, text, text);
    }
    store.flush();
  }
  SettingsStore store(folder.path());
  for (const std::string& section : texts) {
    for (const std::string& text : texts)
      EXPECT_EQ(store.get(kFile, section, text), text) << section << "/" << text;
  }
}

TEST(Settings, AByteOrderMarkIsNoPartOfAnyLine) {
  const std::string once = IniFile::parse(" \xEF\xBB\xBF\n\xEF\xBB\xBFkey=1\n").format();
  EXPECT_EQ(once, "key=1\n");
  IniFile file;
  file.set("", "\xEF\xBB\xBFkey", "\xEF\xBB\xBF");
  const IniFile again = IniFile::parse(file.format());
  ASSERT_NE(again.find("", "\xEF\xBB\xBFkey"), nullptr);
  EXPECT_EQ(*again.find("", "\xEF\xBB\xBFkey"), "\xEF\xBB\xBF");
}

TEST(Settings, AFileEditedByHandIsReadWithItsRemarksKept) {
  const support::TempFolder folder;
  WriteFile(folder.path() / "VXIF_WMP.INI",
            "\xEF\xBB\xBF; my remark\r\n[ Settings ]\r\n  Volume = 70 \r\n# why "
            "not\r\nMusic=C:\\new\r\nnonsense\r\n"
            "Volume=5\r\n");
  SettingsStore store(folder.path());
  EXPECT_EQ(store.get(kFile, "Settings", "Volume"), "70");
  EXPECT_EQ(store.get(kFile, "Settings", "Music"), "C:\\new");
  store.save(kFile, "Settings", "Volume", "71");
  store.flush();
  EXPECT_EQ(files::TextOf(folder.path() / "VXIF_WMP.INI"),
            "; my remark\n\n[Settings]\nVolume=71\n# why not\nMusic=C:\\new\nnonsense\n");
}

TEST(Settings, AFileNameThatLeadsElsewhereIsRefused) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  for (const std::string name : {"../x.ini", "a/b.ini", "..", ".", "a\\b.ini", "", ".hidden",
                                 "settings.journal", "Settings.JOURNAL", "vxif_WMP.ini.new"}) {
    EXPECT_THROW(store.save(name, "s", "k", "v"), base::Failure) << name;
  }
}

TEST(Settings, WhatWasSavedIsThereAfterAnEndWithoutFlush) {
  const support::TempFolder folder;
  { SettingsStore(folder.path()).save(kFile, "Settings", "Volume", "42"); }
  EXPECT_FALSE(std::filesystem::exists(folder.path() / kFile));
  SettingsStore store(folder.path());
  EXPECT_EQ(store.get(kFile, "Settings", "Volume"), "42");
  EXPECT_FALSE(store.pending());
  EXPECT_EQ(files::TextOf(folder.path() / kFile), "[Settings]\nVolume=42\n");
}

TEST(Settings, AnEditByHandIsKeptWhenTheJournalIsBroughtIn) {
  const support::TempFolder folder;
  {
    SettingsStore store(folder.path());
    store.save(kFile, "Settings", "Volume", "42");
  }
  const std::string edited = "[Settings]\nVolume=7\nMute=1\n";
  WriteFile(folder.path() / kFile, edited);
  std::filesystem::last_write_time(
      folder.path() / kFile,
      std::filesystem::last_write_time(folder.path() / "settings.journal") + std::chrono::seconds(5));
  const SettingsStore store(folder.path());
  EXPECT_EQ(files::TextOf(folder.path() / kFile), "[Settings]\nVolume=42\nMute=1\n");
  EXPECT_EQ(files::TextOf(folder.path() / "vxif_WMP.ini.edited"), edited);
  ASSERT_EQ(store.notes().size(), 1U);
  EXPECT_NE(store.notes()[0].find("vxif_WMP.ini.edited"), std::string::npos);
}

TEST(Settings, AJournalThatCantBeBroughtInNowGoesOn) {
  const support::TempFolder folder;
  { SettingsStore(folder.path()).save(kFile, "Settings", "Volume", "42"); }
  AsOwnerOf(folder.path(), [&] {
    std::filesystem::permissions(folder.path(), kNoNewFiles);
    {
      SettingsStore store(folder.path());
      EXPECT_EQ(store.get(kFile, "Settings", "Volume"), "42");
      EXPECT_TRUE(store.pending());
      EXPECT_EQ(store.notes().size(), 1U);
    }
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    SettingsStore store(folder.path());
    EXPECT_EQ(store.get(kFile, "Settings", "Volume"), "42");
    EXPECT_FALSE(store.pending());
  });
}

TEST(Settings, AJournalTornAtAnyByteLosesOnlyTheTornChange) {
  std::string journal;
  std::vector<std::size_t> ends{0};
  for (int i = 0; i < 5; ++i) {
    journal +=
        SettingsJournal::lineOf({SettingChange::Kind::kSet, kFile, "Settings", "Key", std::to_string(i)});
    ends.push_back(journal.size());
  }
  for (std::size_t cut = 0; cut <= journal.size(); ++cut) {
    const support::TempFolder folder;
    WriteFile(folder.path() / "settings.journal", journal.substr(0, cut));
    std::size_t whole = 0;
    while (whole + 1 < ends.size() && ends[whole + 1] <= cut) ++whole;
    SettingsStore store(folder.path());
    const auto expected = whole == 0 ? std::nullopt : std::optional(std::to_string(whole - 1));
    ASSERT_EQ(store.get(kFile, "Settings", "Key"), expected) << "cut at " << cut;
    store.save(kFile, "Settings", "Key", "after");  // the torn end must not swallow what follows
    ASSERT_EQ(SettingsStore(folder.path()).get(kFile, "Settings", "Key"), "after") << "cut at " << cut;
  }
}

TEST(Settings, AClearedSectionStaysClearedAfterAnEndWithoutFlush) {
  const support::TempFolder folder;
  {
    SettingsStore store(folder.path());
    store.save(kFile, "Media", "Album:x", "1");
    store.flush();
    store.clear(kFile, "Media");
    store.save(kFile, "Media", "y", "2");
  }
  EXPECT_EQ(SettingsStore(folder.path()).section(kFile, "Media"), "y=2");
}

TEST(Settings, AKillAtAnyMomentLosesNothingAcknowledged) {
  const support::TempFolder folder;
  int lowest = 0;
  for (int round = 0; round < 100; ++round) {
    const auto acknowledged =
        support::KilledWhile(3 + round % 20, [&](const support::Acknowledge& acknowledge) {
          SettingsStore store(folder.path());
          for (int i = lowest + 1;; ++i) {
            store.save(kFile, "Settings", "Count", std::to_string(i));
            if (i % 7 == 0) store.flush();
            acknowledge(i);
          }
        });
    ASSERT_TRUE(acknowledged.has_value());
    const auto stored = SettingsStore(folder.path()).get(kFile, "Settings", "Count");
    ASSERT_TRUE(stored.has_value());
    ASSERT_GE(std::stoi(*stored), *acknowledged);
    lowest = std::stoi(*stored);
  }
}

TEST(Settings, FiftyThousandSavesCostTheSameFromTheFirstToTheLast) {
  const support::TempFolder folder;
  SettingsStore store(folder.path());
  std::vector<std::uint64_t> thousands;
  for (int i = 0; i < 50; ++i) {
    const std::uint64_t before = BytesMoved();
    for (int j = 0; j < 1000; ++j) {
      store.save(kFile, "Album", "Album number " + std::to_string(i * 1000 + j), "41432F4443");
    }
    thousands.push_back(BytesMoved() - before);
  }
  // A line each, whose number has two digits more in the end; nothing is read or written anew.
  EXPECT_GT(thousands.front(), 1000U);
  EXPECT_LT(thousands.back(), thousands.front() + 5000);
  store.flush();
  EXPECT_EQ(store.get(kFile, "Album", "album NUMBER 49999"), "41432F4443");
}

TEST(Settings, AFullDiskIsAFailureThatLeavesTheOldFileWhole) {
  const support::TempFolder folder;
  {
    SettingsStore store(folder.path());
    store.save(kFile, "Settings", "Volume", "42");
    store.flush();
  }
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);
    SettingsStore store(folder.path());
    const rlimit most{4096, 4096};
    setrlimit(RLIMIT_FSIZE, &most);
    int refused = 0;
    for (int i = 0; i < 200; ++i) {
      try {
        store.save(kFile, "Settings", "Key" + std::to_string(i), std::string(100, 'x'));
      } catch (const base::Failure& failure) {
        if (failure.number() != base::number::kDiskFull) _exit(2);
        if (store.get(kFile, "Settings", "Key" + std::to_string(i))) _exit(3);
        ++refused;
      }
    }
    if (refused == 0 || refused == 200) _exit(4);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0);
  SettingsStore store(folder.path());
  EXPECT_EQ(store.get(kFile, "Settings", "Volume"), "42");
  EXPECT_EQ(store.get(kFile, "Settings", "Key0"), std::string(100, 'x'));
}

TEST(Settings, ADiskWithoutRoomTakesNothingAndLosesNothing) {
  const support::TempFolder root;
  EXPECT_TRUE(support::InChild([&] {
    const std::filesystem::path disk = root.path() / "settings";
    std::filesystem::create_directory(disk);
    const bool mounted = support::MountSmallDisk(disk, 256 * 1024);
    SettingsStore store(disk);
    store.save(kFile, "Settings", "Volume", "42");
    store.flush();
    const std::optional<std::string> before = files::TextOf(disk / kFile);
    store.save(kFile, "Settings", "Bass", "1");  // the journal has its first block
    if (mounted) {
      support::FillUp(disk / "filler");
    } else {  // a limit on a file's size stands for the disk
      signal(SIGXFSZ, SIG_IGN);
      const rlimit most{8192, 8192};
      setrlimit(RLIMIT_FSIZE, &most);
    }
    // What is left of the journal's last block takes a few.
    const std::string value(100, 'x');
    int taken = 0;
    const auto save = [&] { store.save(kFile, "Settings", "Key" + std::to_string(taken), value); };
    int refusal = 0;
    while (taken < 200 && refusal == 0) {
      refusal = support::FailureNumberOf(save);
      if (refusal == 0) ++taken;
    }
    EXPECT_EQ(refusal, base::number::kDiskFull);
    EXPECT_GT(taken, 0);
    EXPECT_EQ(store.get(kFile, "Settings", "Key" + std::to_string(taken)), std::nullopt);
    EXPECT_EQ(store.get(kFile, "Settings", "Volume"), "42");
    if (mounted) {
      EXPECT_EQ(support::FailureNumberOf([&] { store.flush(); }), base::number::kDiskFull);
      EXPECT_EQ(files::TextOf(disk / kFile), before);
    }
    std::filesystem::remove(disk / "filler");
    SettingsStore next(disk);  // as after a start: room has been made
    EXPECT_EQ(next.get(kFile, "Settings", "Volume"), "42");
    EXPECT_EQ(next.get(kFile, "Settings", "Bass"), "1");
    for (int i = 0; i < taken; ++i)
      EXPECT_EQ(next.get(kFile, "Settings", "Key" + std::to_string(i)), value) << i;
    next.save(kFile, "Settings", "Volume", "43");
    next.flush();
    EXPECT_NE(files::TextOf(disk / kFile)->find("Volume=43\n"), std::string::npos);
  }));
}

TEST(Settings, AFileThatCantBeReplacedStaysWholeAndTheJournalKeepsTheChanges) {
  const support::TempFolder folder;
  AsOwnerOf(folder.path(), [&] {
    SettingsStore store(folder.path());
    store.save(kFile, "Settings", "Volume", "1");
    store.flush();
    store.save(kFile, "Settings", "Volume", "2");
    std::filesystem::permissions(folder.path(), kNoNewFiles);
    EXPECT_THROW(store.flush(), base::Failure);
    EXPECT_EQ(files::TextOf(folder.path() / kFile), "[Settings]\nVolume=1\n");
    EXPECT_TRUE(store.pending());
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    store.flush();
    EXPECT_EQ(files::TextOf(folder.path() / kFile), "[Settings]\nVolume=2\n");
  });
}

}  // namespace
}  // namespace standin
