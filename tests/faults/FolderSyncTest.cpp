// A folder that can't be flushed to the disk.
#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "files/FolderSync.hpp"
#include "files/WriteFile.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/FailingFiles.hpp"

namespace files::testing {
namespace {

/// What is told when the flush of the folder fails, and nothing else does.
std::vector<std::string> ToldAt(int error) {
  for (int nth = 1;; ++nth) {
    const support::TempFolder root;
    std::vector<std::string> told;
    support::FaultyRun run(root.path(), {error, false, false}, nth);
    run.onTheFailingDisk([&] {
      const UnsyncedFolders watch([&](const base::Failure& failure) {
        std::string text = failure.description();
        text.replace(text.find(run.folder()), run.folder().size(), "FOLDER");
        told.push_back(text);
      });
      try {
        WriteFile(run.folder() + "/file", "text");
      } catch (const base::Failure&) {  // an operation before
        EXPECT_TRUE(told.empty()) << run.failed();
      }
    });
    if (run.failed() == "sync " + run.folder()) {
      EXPECT_EQ(std::filesystem::file_size(run.folder() + "/file"), 4U);
      return told;
    }
    if (run.failed().empty()) {
      ADD_FAILURE() << "the folder is not flushed";
      return told;
    }
  }
}

TEST(FolderSync, AFolderThatCantBeFlushedIsTold) {
  EXPECT_THAT(ToldAt(EIO), ::testing::ElementsAre(
                               "A change might not outlast a power cut, in FOLDER: Input/output error"));
  EXPECT_THAT(ToldAt(ENOSPC), ::testing::SizeIs(1));
}

TEST(FolderSync, AFileSystemThatDoesNotKnowItIsNoFault) {
  for (const int error : {EINVAL, ENOTSUP, EACCES}) EXPECT_THAT(ToldAt(error), ::testing::IsEmpty()) << error;
}

TEST(FolderSync, WhatWasNotThereIsNotTold) {
  const support::TempFolder root;
  int told = 0;
  const UnsyncedFolders watch([&](const base::Failure&) { ++told; });
  RemoveFile((root.path() / "nowhere/file").string());
  EXPECT_EQ(told, 0);
}

TEST(FolderSync, NobodyIsToldWhoNoLongerWatches) {
  const support::TempFolder root;
  int told = 0;
  {
    const UnsyncedFolders watch([&](const base::Failure&) { ++told; });
  }
  SyncFolder(root.path() / "nowhere");
  EXPECT_EQ(told, 0);
  const UnsyncedFolders watch([&](const base::Failure&) { ++told; });
  SyncFolder(root.path() / "nowhere");
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace files::testing
