// What the quick-play devices make of a sentence.
#include "standin/hearing/QuickPlay.hpp"

#include <gtest/gtest.h>

namespace standin {
namespace {

std::string NameIn(const std::string& command) {
  const std::optional<std::size_t> at = PlayedNameAt("Album", command);
  return at ? command.substr(*at) : "nothing";
}

TEST(QuickPlay, HasACategoryForEachDevice) {
  EXPECT_EQ(QuickCategory("Media Player Quick Album"), "Album");
  EXPECT_EQ(QuickCategory("Media Player Status"), "");
}

TEST(QuickPlay, TakesTheNameBehindTheCategory) {
  EXPECT_EQ(NameIn("Play Album Blue"), "Blue");
  EXPECT_EQ(NameIn("play ALBUM Blue Moon"), "Blue Moon");
  EXPECT_EQ(NameIn("Play Blue"), "Blue");
  EXPECT_EQ(NameIn("Play Album Album 7"), "Album 7");
  EXPECT_EQ(NameIn("Play Albums Live"), " Live") << "its own way to read it";
  for (const char* none : {"Play Album", "Play", "Play ", "Start Blue", ""})
    EXPECT_EQ(NameIn(none), "nothing") << none;
}

TEST(QuickPlay, IsToldToPlayNothing) {
  for (const char* none : {"Play Album", "Play", "play ALBUM "})
    EXPECT_TRUE(PlaysNothing("Album", none)) << none;
  for (const char* other : {"Play Blue", "Player Shuffle", "Start", ""})
    EXPECT_FALSE(PlaysNothing("Album", other)) << other;
}

TEST(QuickPlay, HearsTheCategoryWhereItWouldTakeTheNamesOwnBeginningForIt) {
  const auto heard = [](const std::string& command, const std::string& whole) {
    return CommandFor("Album", {1, command, whole, 0});
  };
  EXPECT_EQ(heard("Play Blue", "Play Album Blue"), "Play Blue");
  EXPECT_EQ(heard("Play Album 7", "Play Album 7"), "Play Album 7");
  EXPECT_EQ(heard("Play Album 7", "Play Album Album 7"), "Play Album Album 7");
  EXPECT_EQ(heard("Play Albums Live", "Play Album Albums Live"), "Play Album Albums Live");
  EXPECT_EQ(heard("Play Album", "Play Album Album"), "Play Album Album");
  EXPECT_EQ(heard("Play Album 7", "Play please Album 7"), "Play Album 7") << "another word was left out";
  EXPECT_EQ(CommandFor("", {1, "Player Shuffle", "Player No Shuffle", 0}), "Player Shuffle");
}

}  // namespace
}  // namespace standin
