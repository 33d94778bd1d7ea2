// How the patterns of what can be said are read, also those that are none.
#include "standin/grammar/Pattern.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace standin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Written(const std::vector<Pattern::Sequence>& choices);

std::string Written(const Pattern::Sequence& sequence) {
  std::string all;
  for (const Pattern::Part& part : sequence) {
    all += all.empty() ? "" : " ";
    if (part.kind == Pattern::Kind::kWords) all += part.words;
    if (part.kind == Pattern::Kind::kChoice) all += "(" + Written(part.choices) + ")";
    if (part.kind == Pattern::Kind::kOptional) all += "[" + Written(part.choices) + "]";
  }
  return all;
}

std::string Written(const std::vector<Pattern::Sequence>& choices) {
  std::string all;
  for (const Pattern::Sequence& choice : choices)
    all += (&choice == choices.data() ? "" : "|") + Written(choice);
  return all;
}

std::string Read(const std::string& text) { return Written(Pattern(text).sentences()); }

TEST(Pattern, HasChoicesAndOptionalWordsWithinEachOther) {
  const std::string controls = "(Play|Player) [No] (Stop|Volume Up|Add to PlayList)";
  EXPECT_EQ(Read(controls), controls);
  EXPECT_THAT(Pattern(controls).faults(), IsEmpty());
  EXPECT_EQ(Read("play [the (album|record) [named]] (blue|green night)"),
            "play [the (album|record) [named]] (blue|green night)");
  EXPECT_EQ(Read("  good\tnight| bye "), "good night|bye");
}

TEST(Pattern, IsReadAsFarAsItGoesAndTellsItsFaults) {
  const auto faults = [](const std::string& text) { return Pattern(text).faults(); };
  EXPECT_EQ(Read("play (blue|green"), "play (blue|green)");
  EXPECT_THAT(faults("play (blue|green"), ElementsAre("“(” at character 6 is never closed"));
  EXPECT_EQ(Read("play )"), "play");
  EXPECT_THAT(faults("play )"), ElementsAre("“)” at character 6 closes no bracket"));
  EXPECT_EQ(Read("Größe (a]"), "Größe (a)");
  EXPECT_THAT(faults("Größe (a]"), ElementsAre("“]” at character 9 closes a bracket of the other kind"));
  EXPECT_EQ(Read("play (|a||b|)"), "play (a|b)");
  EXPECT_THAT(faults("play (|a||b|)"), ElementsAre("“|” at character 7 ends an empty choice",
                                                   "“|” at character 10 ends an empty choice",
                                                   "“)” at character 13 ends an empty choice"));
  EXPECT_EQ(Read("play () now"), "play now");
  EXPECT_THAT(faults("play () now"), ElementsAre("“)” at character 7 ends an empty choice"));
  EXPECT_EQ(Read("a|"), "a");
  EXPECT_THAT(faults("a|"), ElementsAre("The end at character 3 ends an empty choice"));
  EXPECT_EQ(Read(""), "");
  EXPECT_THAT(faults(""), IsEmpty());
  EXPECT_EQ(Read("()"), "");
}

TEST(Pattern, SaysNothingWhenItIsTooDeepOrTooLong) {
  EXPECT_EQ(Read(std::string(Pattern::kDeepest, '(') + "a" + std::string(Pattern::kDeepest, ')')),
            std::string(Pattern::kDeepest, '(') + "a" + std::string(Pattern::kDeepest, ')'));
  for (const std::string& deep : {std::string(100000, '('), std::string(Pattern::kDeepest + 1, '[') + "a"}) {
    EXPECT_EQ(Read(deep), "");
    EXPECT_THAT(Pattern(deep).faults(),
                ElementsAre("More than 32 brackets stand within each other: nothing of it is read"));
  }
  EXPECT_EQ(Read(std::string(Pattern::kLongest + 1, 'a')), "");
  EXPECT_EQ(Pattern(std::string(Pattern::kLongest + 1, 'a')).faults().size(), 1U);
}

TEST(Pattern, TellsTheFirstTwentyFaults) {
  EXPECT_EQ(Pattern(std::string(1U << 20U, ')')).faults().size(), Pattern::kMostFaults);
  EXPECT_EQ(Pattern(std::string(1U << 20U, '|')).faults().size(), Pattern::kMostFaults);
  EXPECT_EQ(Read(std::string(1U << 20U, '|')), "");
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(Pattern, ALongOneIsReadWhateverItHolds) {
  constexpr int kTimes = 50000;
  for (const char* part : {"[a] ", "(a|b) ", "a|b ", "a b ", "((a))", "[(a)]"}) {
    const std::string text = Repeated(part, kTimes);
    const Pattern pattern(text);
    EXPECT_THAT(pattern.faults(), IsEmpty()) << part;
    const std::string once = Written(pattern.sentences());
    EXPECT_EQ(Read(once), once) << part;
    EXPECT_GE(std::count(once.begin(), once.end(), 'a'), kTimes) << part;
  }
  EXPECT_THAT(Pattern(Repeated("(a ", 20)).faults(), testing::SizeIs(Pattern::kMostFaults));
}

TEST(Pattern, HoldsThirtyThousandChoices) {
  std::string text = "Play Album (";
  for (int i = 0; i < 30000; ++i) text += (i == 0 ? "" : "|") + std::string("Name ") + std::to_string(i);
  const Pattern pattern(text + ")");
  ASSERT_EQ(pattern.sentences().size(), 1U);
  ASSERT_EQ(pattern.sentences()[0].size(), 2U);
  EXPECT_EQ(pattern.sentences()[0][1].choices.size(), 30000U);
  EXPECT_THAT(pattern.faults(), IsEmpty());
}

}  // namespace
}  // namespace standin
