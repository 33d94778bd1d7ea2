#include "files/FileError.hpp"

#include <gtest/gtest.h>

#include <cerrno>

#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace files::testing {
namespace {

TEST(FileError, WhatIsMissingIsAFileOrTheFolderItShouldLieIn) {
  const support::TempFolder root;
  EXPECT_EQ(FileFailure(ENOENT, root.path() / "a").number(), base::number::kFileNotFound);
  EXPECT_EQ(FileFailure(ENOENT, root.path() / "b" / "a").number(), base::number::kPathNotFound);
  EXPECT_EQ(FileFailure(ENOENT, root.path() / "a" / "").number(), base::number::kPathNotFound);
  EXPECT_EQ(FileFailure(ENOENT, "a").number(), base::number::kFileNotFound);
  EXPECT_EQ(FileFailure(ENOTDIR, root.path() / "a").number(), base::number::kPathNotFound);
}

TEST(FileError, AFullDiskIsToldFromMissingRightsAndFromAnyOtherFailure) {
  for (const int error : {ENOSPC, EDQUOT, EFBIG}) {
    EXPECT_EQ(FileFailure(error, "a").number(), base::number::kDiskFull);
  }
  for (const int error : {EACCES, EPERM, EROFS}) {
    EXPECT_EQ(FileFailure(error, "a").number(), base::number::kPermissionDenied);
  }
  EXPECT_EQ(FileFailure(EIO, "a").number(), base::number::kDeviceIo);
  EXPECT_EQ(support::FailureNumberOf([] { FailOn("a", EROFS); }), base::number::kPermissionDenied);
}

TEST(FileError, ItsTextNamesWhatWasTriedAndTheFileInWellFormedCharacters) {
  EXPECT_EQ(FileFailure(EACCES, "a", "Can't write ").description(), "Can't write a: Permission denied");
  EXPECT_EQ(FileFailure(EACCES, "a\xFF").description(), "a\xEF\xBF\xBD: Permission denied");
}

}  // namespace
}  // namespace files::testing
