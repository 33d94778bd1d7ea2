// Which sentence was meant by what was said.
#include "standin/grammar/Grammar.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace standin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kControls =
    "(Play|Player) [No] (Stop|Next|Previous|Restart|Pause|Resume|Eject|Shuffle|Loop|Mute|UnMute|Volume Up|"
    "Volume Down|Display Controls|Add to PlayList)";

/// Patterns with the events 1, 2 and so on.
class Speech {
 public:
  explicit Speech(const std::vector<std::string>& patterns, const Spellings& spellings = nullptr)
      : grammar([&] {
          std::vector<Pattern> read;
          read.reserve(patterns.size());
          std::vector<Grammar::Source> sources;
          for (const std::string& each : patterns) {
            read.emplace_back(each);
            sources.push_back({static_cast<std::int32_t>(read.size()), read.back()});
          }
          return Grammar(sources, spellings);
        }()) {}

  /// "event: command" of each sentence.
  [[nodiscard]] std::vector<std::string> of(const std::string& text) const {
    std::vector<std::string> all;
    for (const Said& each : grammar.match(text))
      all.push_back(std::to_string(each.event) + ": " + each.command);
    return all;
  }
  [[nodiscard]] std::vector<std::string> near(const std::string& text) const {
    std::vector<std::string> all;
    for (const Said& each : grammar.near(text, 3)) all.push_back(each.command);
    return all;
  }

  Grammar grammar;
};

TEST(Grammar, FindsTheEventAndTheCommandInItsOwnWords) {
  const Speech speech({kControls, "Play Album (Blue|Green Night|AC DC)", "Play [Artist] (Mira|The Clocks)"});
  EXPECT_THAT(speech.of("player no shuffle"), ElementsAre("1: Player No Shuffle"));
  EXPECT_THAT(speech.of("PLAY  volume up!"), ElementsAre("1: Play Volume Up"));
  EXPECT_THAT(speech.of("play add to play list"), ElementsAre("1: Play Add to PlayList"));
  EXPECT_THAT(speech.of("play album green NIGHT"), ElementsAre("2: Play Album Green Night"));
  EXPECT_THAT(speech.of("Play album AC/DC"), ElementsAre("2: Play Album AC DC"));
  EXPECT_THAT(speech.of("play mira"), ElementsAre("3: Play Mira"));
  EXPECT_THAT(speech.of("play artist the clocks"), ElementsAre("3: Play Artist The Clocks"));
  for (const char* other :
       {"play volume", "play no", "please play stop", "play album", "play album blue night", "", "?"})
    EXPECT_THAT(speech.of(other), IsEmpty()) << other;
}

TEST(Grammar, ADigitLeadsToTheNameThatIsWrittenSoFirst) {
  const Speech speech({"Play Album (1984|Nineteen Eighty Four)"});
  EXPECT_THAT(speech.of("play album 1984"), ElementsAre("1: Play Album 1984"));
  EXPECT_THAT(speech.of("play album nineteen eighty four"),
              ElementsAre("1: Play Album Nineteen Eighty Four", "1: Play Album 1984"));
  EXPECT_THAT(speech.of("play album one nine eight four"), ElementsAre("1: Play Album 1984"));
}

TEST(Grammar, TellsTheWholeSentenceWithWhatWasLeftOut) {
  const Speech speech({"Play [Album] (Blue)", "Play [Artist] (Blue)"});
  const std::vector<Said> said = speech.grammar.match("play blue");
  ASSERT_EQ(said.size(), 2U);
  EXPECT_EQ(said[0].command, "Play Blue");
  EXPECT_EQ(said[0].whole, "Play Album Blue");
  EXPECT_EQ(said[1].whole, "Play Artist Blue");
  EXPECT_THAT(speech.of("play artist blue"), ElementsAre("2: Play Artist Blue"));
}

TEST(Grammar, KnowsTheSpellingsBehindAKey) {
  const Speech speech({"Play Artist (Bj rk|Mira the Clocks)"}, [](const std::string& words) {
    if (words == "Bj rk") return std::vector<std::string>{"Björk"};
    if (words == "Mira the Clocks") return std::vector<std::string>{"Mira & the Clocks"};
    return std::vector<std::string>();
  });
  EXPECT_THAT(speech.of("play artist björk"), ElementsAre("1: Play Artist Bj rk"));
  EXPECT_THAT(speech.of("play artist bjork"), ElementsAre("1: Play Artist Bj rk"));
  EXPECT_THAT(speech.of("play artist Mira and the Clocks"), ElementsAre("1: Play Artist Mira the Clocks"));
  EXPECT_THAT(speech.near("play artist bjor"), ElementsAre("Play Artist Bj rk"));
  EXPECT_THAT(speech.near("play artist mira & the clock"), ElementsAre("Play Artist Mira the Clocks"));
}

TEST(Grammar, TwoNamesOfOneKeyAreOne) {
  EXPECT_THAT(Speech({"Play Album (Blue|Blue)"}).of("play album blue"), ElementsAre("1: Play Album Blue"));
}

TEST(Grammar, FindsWhatIsNearlySo) {
  const Speech speech({kControls, "Play Album (Night Shift|Night Shirt|Long Day|Songs of the Sea)"});
  EXPECT_THAT(speech.near("play album nigth shift"),
              ElementsAre("Play Album Night Shift", "Play Album Night Shirt"));
  EXPECT_THAT(speech.near("play album long dai"), ElementsAre("Play Album Long Day"));
  EXPECT_THAT(speech.near("play album the sea"), ElementsAre("Play Album Songs of the Sea"));
  EXPECT_THAT(speech.near("player resum"), ElementsAre("Player Resume"));
  EXPECT_THAT(speech.near("play album something else"), IsEmpty());
  EXPECT_THAT(speech.near("play album"), IsEmpty());
  EXPECT_THAT(speech.near("make me a coffee"), IsEmpty());
  const Speech optional({"Play [Album] (Night Shift|Album Nigth)"});
  EXPECT_THAT(optional.near("play nigth shift"), ElementsAre("Play Night Shift"));
  EXPECT_THAT(optional.near("play album nigth shift"), ElementsAre("Play Album Night Shift"));
  EXPECT_THAT(optional.near("play album nigt"), ElementsAre("Play Album Nigth"));
}

TEST(Grammar, BrokenPatternsAreNoDanger) {
  EXPECT_THAT(Speech({"Play Album )"}).of("play album"), ElementsAre("1: Play Album"));
  EXPECT_THAT(Speech({""}).of("play"), IsEmpty());
  EXPECT_THAT(Speech({"?! (|)"}).of("play"), IsEmpty());
  EXPECT_THAT(Speech({"Play (Blue|Red) ; now"}).of("play red now"), ElementsAre("1: Play Red ; now"));
  EXPECT_THAT(Speech({std::string(100000, '(')}).of("play"), IsEmpty());
  std::string optional;
  for (int i = 0; i < 200; ++i) optional += "[a] ";
  std::string said;
  for (int i = 0; i < 150; ++i) said += "a ";
  const Speech speech({optional});
  EXPECT_FALSE(speech.of(said).empty());
  EXPECT_THAT(speech.of(said + "b"), IsEmpty());
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(Grammar, NothingIsFoundInAPatternInWhichTooMuchCanBeLeftOut) {
  for (const std::string part : {"[(a)] ", "[a] ", "(?|!) [a] "}) {
    const Speech speech({Repeated(part, 40000), "Play (Blue|Red)"});
    for (const char* text : {"a", "b", "a a a a a a a a", "aaaa"}) {
      EXPECT_THAT(speech.of(text), IsEmpty()) << part << text;
      EXPECT_THAT(speech.near(text), IsEmpty()) << part << text;
    }
    EXPECT_THAT(speech.of("play red"), ElementsAre("2: Play Red")) << "other events are not to blame";
    EXPECT_THAT(speech.near("play blues"), ElementsAre("Play Blue"));
  }
  const Speech speech({Repeated("[a] ", 500) + "b"});
  EXPECT_THAT(speech.of("a a b"), testing::Not(IsEmpty()));
  EXPECT_THAT(speech.of("a a"), IsEmpty());
}

TEST(Grammar, WhatMayBeLeftOutBehindANearNameStandsInTheWholeSentence) {
  const Speech speech({"Play (Night Shift|Long Day) [Now] [(Please|Thanks)]", "Say (Night Shift) now"});
  const std::vector<Said> near = speech.grammar.near("play nigth shift", 3);
  ASSERT_EQ(near.size(), 1U);
  EXPECT_EQ(near[0].event, 1);
  EXPECT_EQ(near[0].command, "Play Night Shift");
  EXPECT_EQ(near[0].whole, "Play Night Shift Now");
  EXPECT_THAT(speech.near("say nigth shift"), IsEmpty()) << "a word is missing behind it";
}

TEST(Grammar, BeyondAMillionWaysNamesAreEnteredAsTheyAreWrittenAndSaidFirst) {
  constexpr int kNames = 30000;
  std::string text = "Play Album (";
  for (int i = 0; i < kNames; ++i) {
    text += i == 0 ? "" : "|";
    for (const int part : {i, i * 7, i * 13}) text += std::to_string(1000 + part % 9000) + " ";
  }
  const Speech speech({"Play (1984)", text + ")", "Stop (1984)"});
  EXPECT_LE(speech.grammar.graph().arcs().size(), Grammar::kMostArcs + 15U * kNames + 10U);
  EXPECT_EQ(speech.grammar.asWritten(1), 0U);
  EXPECT_GT(speech.grammar.asWritten(2), 1000U);
  EXPECT_LT(speech.grammar.asWritten(2), static_cast<std::size_t>(kNames));
  EXPECT_EQ(speech.grammar.asWritten(3), 1U);
  EXPECT_THAT(speech.of("play nineteen eighty four"), ElementsAre("1: Play 1984"));
  EXPECT_THAT(speech.of("stop 1984"), ElementsAre("3: Stop 1984"));
  EXPECT_THAT(speech.of("stop nineteen eighty four"), ElementsAre("3: Stop 1984"));
  EXPECT_THAT(speech.of("stop one nine eight four"), IsEmpty());
  for (const int i : {0, 1, 8999, kNames - 1}) {
    std::string name;
    for (const int part : {i, i * 7, i * 13}) name += " " + std::to_string(1000 + part % 9000);
    EXPECT_THAT(speech.of("play album" + name), testing::Contains("2: Play Album" + name));
  }
}

TEST(Grammar, FindsEachOfThirtyThousandNames) {
  std::string text = "Play Album (";
  for (int i = 0; i < 30000; ++i) text += (i == 0 ? "" : "|") + std::string("Volume ") + std::to_string(i);
  const Speech speech({text + ")"});
  for (const int i : {0, 7, 2001, 29999}) {
    const std::string name = "Volume " + std::to_string(i);
    EXPECT_THAT(speech.of("play album " + name), ElementsAre("1: Play Album " + name));
  }
}

}  // namespace
}  // namespace standin
