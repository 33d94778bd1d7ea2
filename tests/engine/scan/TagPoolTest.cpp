#include "engine/scan/TagPool.hpp"

#include <gtest/gtest.h>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"

namespace engine::testing {
namespace {

using Outcome = TagResult::Outcome;

Outcome OutcomeOf(const std::string& path) {
  FileRecord record;
  record.path = path;
  return ReadRecord(std::move(record)).outcome;
}

TEST(WhatBecomesOfAScannedFile, DependsOnWhyItWasNotRead) {
  const TempFolder folder;
  Write(folder / "song.mp3", MpegSilence());
  Write(folder / "noise.flac", "no music at all");
  fs::create_symlink(folder / "circle.mp3", folder / "circle.mp3");
  fs::create_directory(folder / "folder.mp3");
  EXPECT_EQ(OutcomeOf(folder / "song.mp3"), Outcome::kRead);
  EXPECT_EQ(OutcomeOf(folder / "noise.flac"), Outcome::kNoMedia);
  EXPECT_EQ(OutcomeOf(folder / "folder.mp3"), Outcome::kNoMedia);
  EXPECT_EQ(OutcomeOf(folder / "none.mp3"), Outcome::kGone);
  EXPECT_EQ(OutcomeOf(folder / "no folder/a.mp3"), Outcome::kGone);
  EXPECT_EQ(OutcomeOf(folder / "song.mp3/a.mp3"), Outcome::kGone) << "its folder has become a file";
  EXPECT_EQ(OutcomeOf(folder / "circle.mp3"), Outcome::kUnreadable) << "for now";
}

}  // namespace
}  // namespace engine::testing
