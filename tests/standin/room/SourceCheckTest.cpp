// Whether a source gives sound that can be listened to.
#include "standin/room/SourceCheck.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "standin/room/CapturePrograms.hpp"

namespace {

using standin::SourceCheck;
using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::StartsWith;

/// A source that gives so many samples every second.
class ASource : public testing::Test {
 protected:
  /// Its trouble once that time has passed, or the first before.
  std::string after(int seconds, std::size_t rate, std::int16_t sample = 100) {
    for (int i = 0; i < seconds; ++i) {
      now_ += milliseconds(1000);
      check.take(std::vector<std::int16_t>(rate, sample), now_);
      if (const std::string trouble = check.trouble(now_); !trouble.empty()) return trouble;
    }
    return {};
  }
  /// It is asked when no sound comes.
  std::string nothing(int seconds) {
    now_ += std::chrono::seconds(seconds);
    return check.trouble(now_);
  }
  SourceCheck check{milliseconds(5000)};

 private:
  milliseconds now_{5000};
};

TEST_F(ASource, OfTheRightRateIsGoodForHours) {
  EXPECT_EQ(after(59, 16000), "");
  EXPECT_FALSE(check.proved());
  EXPECT_EQ(after(4 * 3600, 16000), "");
  EXPECT_TRUE(check.proved());
  EXPECT_FALSE(check.onlySilence());
}

TEST_F(ASource, OfAnotherRateIsTold) {
  EXPECT_THAT(after(60, 48000), StartsWith("The microphone gives 48000 samples a second where 16000"));
}

TEST_F(ASource, ThatIsSlowerIsTold) {
  EXPECT_THAT(after(60, 8000), StartsWith("The microphone gives 8000 samples a second where 16000"));
}

TEST_F(ASource, ThatGivesWhateverItHasIsTold) {
  EXPECT_THAT(after(1, 500'000), StartsWith("The microphone gives 500000"));
}

TEST_F(ASource, WhatHasWaitedForABusyHouseIsNotTooFast) {
  EXPECT_EQ(after(20, 16000), "");
  EXPECT_EQ(nothing(6), "");
  EXPECT_EQ(after(1, 7 * 16000), "") << "it comes at once";
}

TEST_F(ASource, ThatGivesNothingIsTold) {
  EXPECT_EQ(nothing(9), "");
  EXPECT_THAT(nothing(1), StartsWith("Nothing comes from the microphone"));
}

TEST_F(ASource, OfSilenceForAMinuteIsSeen) {
  EXPECT_EQ(after(59, 16000, 0), "");
  EXPECT_FALSE(check.onlySilence());
  EXPECT_EQ(after(1, 16000, 1), "");
  EXPECT_TRUE(check.onlySilence());
  EXPECT_EQ(after(3600, 16000, 0), "");
  EXPECT_TRUE(check.onlySilence());
  EXPECT_EQ(after(1, 16000, -40), "");
  EXPECT_FALSE(check.onlySilence());
}

TEST(Complaints, ComeWithAdvice) {
  EXPECT_THAT(standin::WithAdvice("arecord: main:831: audio open error: Device or resource busy"),
              HasSubstr("busy. Another program is using the microphone"));
  EXPECT_THAT(standin::WithAdvice("arecord: main:831: audio open error: No such file or directory"),
              HasSubstr("Plug a microphone in"));
  EXPECT_THAT(standin::WithAdvice("Connection failure: Connection refused"),
              HasSubstr("server of sound is not running"));
  EXPECT_EQ(standin::WithAdvice("What?"), "What?");
}

TEST(Programs, AreFoundWhereTheSystemHasThem) {
  EXPECT_EQ(standin::CommandOf({"sh", {"-c"}, "dash"}).program.filename(), "sh");
  EXPECT_EQ(standin::CommandOf({"no-such-program", {}, ""}).program, "");
  for (const standin::CaptureProgram& each : standin::CapturePrograms()) {
    EXPECT_FALSE(each.package.empty()) << each.name;
    EXPECT_THAT(testing::PrintToString(each.arguments), HasSubstr("16000")) << each.name;
  }
}

}  // namespace
