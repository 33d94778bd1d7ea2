// Names are sought in the long choices of what can be said.
#include "standin/routes/VoiceChoices.hpp"

#include <gmock/gmock.h>

namespace {

using standin::ChoiceAt;
using standin::NamesWith;
using standin::Pattern;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Sought(const std::string& pattern, const std::string& place,
                                const std::string& words) {
  const Pattern read(pattern);
  const Pattern::Part* choice = ChoiceAt(read, place);
  return choice == nullptr ? std::vector<std::string>{"no such place"} : NamesWith(*choice, words, 100).names;
}

TEST(VoiceChoices, AreFoundByTheirPlaceInThePattern) {
  const std::string pattern = "Play [Album] (Blue|Night (Shift|Train) [Live])|Player (stop|pause)";
  EXPECT_THAT(Sought(pattern, "0.1", ""), ElementsAre("Album"));
  EXPECT_THAT(Sought(pattern, "0.2", ""), ElementsAre("Blue", "Night (Shift|Train) [Live]"));
  EXPECT_THAT(Sought(pattern, "0.2.1.1", ""), ElementsAre("Shift", "Train"));
  EXPECT_THAT(Sought(pattern, "1.1", ""), ElementsAre("stop", "pause"));
}

TEST(VoiceChoices, APlaceWithoutAChoiceIsNone) {
  const Pattern pattern("Play (Blue|Night)");
  for (const char* place : {"", "0", "0.0", "0.2", "1.1", "0.1.0", "0.1.0.0", "0.1.", "0..1", "-1.1", "0.1x",
                            "a.b", "99999999999999999999999.1"})
    EXPECT_EQ(ChoiceAt(pattern, place), nullptr) << place;
  EXPECT_EQ(ChoiceAt(Pattern(""), "0.0"), nullptr);
}

TEST(VoiceChoices, HoldAllTheWordsThatAreSought) {
  const std::string pattern = "Play (Night Shift|Shifting Sands|Nightshade|Café del Mar)";
  EXPECT_THAT(Sought(pattern, "0.1", "shift"), ElementsAre("Night Shift", "Shifting Sands"));
  EXPECT_THAT(Sought(pattern, "0.1", "SHIFT night"), ElementsAre("Night Shift"));
  EXPECT_THAT(Sought(pattern, "0.1", "cafe"), ElementsAre("Café del Mar"));
  EXPECT_THAT(Sought(pattern, "0.1", "nobody"), IsEmpty());
}

TEST(VoiceChoices, OfManyNamesTheFirstAreToldAndAllAreCounted) {
  std::string text = "Play (";
  for (int i = 0; i < 10000; ++i) text += (i == 0 ? "Album " : "|Album ") + std::to_string(i);
  const Pattern pattern(text + ")");
  const standin::FoundNames found = NamesWith(*ChoiceAt(pattern, "0.1"), "album 99", 3);
  EXPECT_THAT(found.names, ElementsAre("Album 99", "Album 199", "Album 299"));
  EXPECT_EQ(found.total, 280U);
}

}  // namespace
