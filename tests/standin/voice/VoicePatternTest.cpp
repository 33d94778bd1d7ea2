#include <gtest/gtest.h>

#include <string>

#include "standin/voice/VoicePattern.hpp"

namespace standin {
namespace {

TEST(Voice, ChoicesAndOptionalWordsFit) {
  const VoicePattern pattern("(Play|Player) [No] (Stop|Next|Shuffle|Volume Up|Add to PlayList)");
  EXPECT_TRUE(pattern.fits("player no shuffle"));
  EXPECT_TRUE(pattern.fits("PLAY  volume up"));
  EXPECT_TRUE(pattern.fits("play add to playlist"));
  EXPECT_FALSE(pattern.fits("play volume"));
  EXPECT_FALSE(pattern.fits("play no"));
  EXPECT_FALSE(pattern.fits("please play stop"));
  EXPECT_FALSE(pattern.fits(""));
}

TEST(Voice, NestedAndBrokenPatternsAreNoDanger) {
  EXPECT_TRUE(VoicePattern("play [the (album|record) [named]] (blue|green night)")
                  .fits("play the record named green night"));
  EXPECT_TRUE(VoicePattern("play (blue|green").fits("play green"));
  EXPECT_TRUE(VoicePattern("play )").fits("play"));
  EXPECT_FALSE(VoicePattern("").fits("play"));
  std::string deep(100000, '(');
  EXPECT_FALSE(VoicePattern(deep).fits("play"));
  std::string optional;
  for (int i = 0; i < 200; ++i) optional += "[a] ";
  std::string said;
  for (int i = 0; i < 150; ++i) said += "a ";
  EXPECT_TRUE(VoicePattern(optional).fits(said));
  EXPECT_FALSE(VoicePattern(optional).fits(said + "b"));
}

}  // namespace
}  // namespace standin
