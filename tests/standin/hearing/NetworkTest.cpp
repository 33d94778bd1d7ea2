// What a listener has to know of a grammar.
#include "standin/hearing/Network.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "ear/Messages.hpp"

namespace standin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::UnorderedElementsAre;

ear::SpeechNetwork NetworkFor(const std::string& text) {
  const Pattern pattern(text);
  return NetworkOf(Grammar({{1, pattern}}, nullptr));
}

const std::set<std::string> kAnswers{"first",          "second",        "third", "the first one",
                                     "the second one", "the third one", "yes",   "no"};

/// All its sentences.
std::set<std::string> AllSentences(const ear::SpeechNetwork& network) {
  std::set<std::string> all;
  const std::function<void(std::uint32_t, const std::string&)> go = [&](std::uint32_t place,
                                                                        const std::string& said) {
    if (place == network.end) all.insert(said);
    for (const ear::SpeechNetwork::Arc& arc : network.arcs) {
      if (arc.from != place) continue;
      const bool word = arc.word != ear::SpeechNetwork::kNoWord;
      go(arc.to, said + (word && !said.empty() ? " " : "") +
                     (word ? network.words[static_cast<std::size_t>(arc.word)] : ""));
    }
  };
  go(network.start, "");
  return all;
}

/// All but the answers.
std::set<std::string> Sentences(const ear::SpeechNetwork& network) {
  std::set<std::string> all = AllSentences(network);
  for (const std::string& answer : kAnswers) all.erase(answer);
  return all;
}
/// The same.
std::set<std::string> WordsOf(const ear::SpeechNetwork& network) {
  std::set<std::string> all(network.words.begin(), network.words.end());
  for (const char* word : {"the", "one", "first", "second", "third", "yes", "no"}) all.erase(word);
  return all;
}

TEST(Network, HasTheAnswersToTheHousesQuestionsEvenWhereNothingElseCanBeSaid) {
  EXPECT_EQ(AllSentences(NetworkFor("")), kAnswers);
  EXPECT_TRUE(AllSentences(NetworkFor("Play The Blue One")).contains("the second one"));
}

TEST(Network, HasAllSentencesThatCanBePronounced) {
  EXPECT_THAT(Sentences(NetworkFor("Play [Album] (Blue|7)")),
              UnorderedElementsAre("play album blue", "play album seven", "play blue", "play seven"));
  EXPECT_THAT(NetworkFor("Play (Blue|7|Москва)").words, Not(Contains("7")));
  EXPECT_THAT(Sentences(NetworkFor("")), testing::IsEmpty());
}

TEST(Network, HasNamesOfSeveralNumbers) {
  EXPECT_THAT(NetworkFor("Play (1001 1002 1003)").words, Contains("thousand"));
}

TEST(Network, LeavesNoPlaceThatLeadsNowhere) {
  const ear::SpeechNetwork network = NetworkFor("Play Album (Москва|Blue 7 Москва|Blue)");
  EXPECT_THAT(WordsOf(network), UnorderedElementsAre("play", "album", "blue"));
  EXPECT_EQ(network.places, 7U);
}

/// Patterns with the events 1, 2 and so on.
Audible AudibleFor(const std::vector<std::string>& patterns, const AudibleLimits& limits = {}) {
  std::vector<Pattern> read;
  read.reserve(patterns.size());
  std::vector<Grammar::Source> sources;
  for (const std::string& each : patterns)
    sources.push_back({static_cast<std::int32_t>(sources.size()) + 1, read.emplace_back(each)});
  return AudibleOf(Grammar(sources, nullptr), limits);
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(Network, JoinsTheEventsAndSharesTheirWords) {
  const ear::SpeechNetwork network = AudibleFor({"Play (Blue)", "", "[Play] Red (Now)", "?"}).network;
  EXPECT_THAT(Sentences(network), UnorderedElementsAre("play blue", "play red now", "red now"));
  EXPECT_THAT(WordsOf(network), UnorderedElementsAre("play", "blue", "red", "now"));
}

TEST(Network, AWordThatNobodyCouldSayIsLeftOut) {
  const std::string longest(32, 'a');
  const ear::SpeechNetwork network =
      AudibleFor({"Play (" + std::string(1U << 20U, 'x') + "|" + longest + "|" + longest + "a|Blue)"})
          .network;
  EXPECT_THAT(WordsOf(network), UnorderedElementsAre("play", "blue", longest));
}

TEST(Network, AFoolishPatternMakesNobodyElseDeaf) {
  const std::string foolish = Repeated("[a] ", 400) + "b";  // 80,000 pairs of places
  const Audible audible = AudibleFor({"Play (Blue)", foolish, "Stop", Repeated("[c] ", 50) + "d"});
  EXPECT_THAT(audible.leftOut, ElementsAre(2));
  EXPECT_THAT(WordsOf(audible.network), UnorderedElementsAre("play", "blue", "stop", "c", "d"));
}

TEST(Network, TheSmallestEventsComeFirstWhereThereIsNotRoomForAll) {
  const std::vector<std::string> patterns{"Play (Blue|Red|Green|Grey|White)", "Stop", "Go (On|Back)"};
  EXPECT_THAT(AudibleFor(patterns, {.arcs = 100}).leftOut, testing::IsEmpty());
  const Audible audible = AudibleFor(patterns, {.arcs = 10});
  EXPECT_THAT(audible.leftOut, ElementsAre(1));
  EXPECT_THAT(Sentences(audible.network), UnorderedElementsAre("stop", "go on", "go back"));
  EXPECT_THAT(AudibleFor(patterns, {.arcs = 1}).leftOut, UnorderedElementsAre(1, 3));
  EXPECT_THAT(Sentences(AudibleFor(patterns, {.arcs = 0}).network), testing::IsEmpty());
}

TEST(Network, ANameOfPunctuationIsSaidBySayingNothing) {
  EXPECT_THAT(Sentences(NetworkFor("Play Artist (?|Blue|!!)")),
              UnorderedElementsAre("play artist", "play artist blue"));
}

TEST(Network, TellsHowAWordWithForeignLettersIsWritten) {
  const Pattern pattern("Play (Bj rk|Blue|Москва|Für)");
  const ear::SpeechNetwork network = NetworkOf(Grammar({{1, pattern}}, [](const std::string& words) {
    return words == "Bj rk" ? std::vector<std::string>{"Björk Don’t"} : std::vector<std::string>();
  }));
  using Spelling = ear::SpeechNetwork::Spelling;
  EXPECT_THAT(network.spellings, ElementsAre(Spelling{"bjork", "Björk"}, Spelling{"fur", "Für"}));
  EXPECT_EQ(ear::NetworkIn(ear::Encoded(network)), network);
}

TEST(Network, HoldsFortyThousandNames) {
  constexpr std::size_t kNames = 40000;
  std::string text = "Play Album (";
  for (std::size_t i = 0; i < kNames; ++i) {
    // Names of three words, each word in some hundred of them.
    std::string letters;
    for (std::size_t rest = i; rest > 0; rest /= 26) letters += static_cast<char>('a' + rest % 26);
    text += (i == 0 ? "" : "|") + std::string("The ") + letters + " Night";
  }
  const Audible audible = AudibleFor({text + ")", "Stop"});
  EXPECT_THAT(audible.leftOut, testing::IsEmpty());
  EXPECT_GT(audible.network.arcs.size(), 2 * kNames - 10);
  EXPECT_LT(audible.network.arcs.size(), 3 * kNames);
  const std::string content = ear::Encoded(audible.network);
  EXPECT_LT(content.size(), ear::kLongestMessage / 50);
  EXPECT_EQ(ear::NetworkIn(content), audible.network);
}

TEST(Network, NamesOfManyWaysAreHeardInOneEachWhereThereIsNotRoomForAll) {
  std::string text = "Play Album (";
  for (int i = 0; i < 10000; ++i)
    text += (i == 0 ? "" : "|") + std::string("Symphony No ") + std::to_string(i % 104 + 1) +
            " in C minor Op " + std::to_string(i / 104 + 1) + " No " + std::to_string(i % 7 + 1);
  const Audible audible = AudibleFor({text + "|Москва|Казань)", "Stop 7"});
  EXPECT_THAT(audible.leftOut, testing::IsEmpty());
  EXPECT_THAT(audible.inOneWay, ElementsAre(1));
  EXPECT_THAT(audible.unsayable, ElementsAre(std::pair(1, 2U)));
  EXPECT_LT(audible.network.arcs.size(), AudibleLimits().arcs);
  const Audible some =
      AudibleFor({"Play (7|No 104 Op 102 No 3)", Repeated("(Blue|Red) ", 20)}, {.arcs = 100});
  EXPECT_THAT(some.inOneWay, ElementsAre(1));
  EXPECT_THAT(
      Sentences(AudibleFor({"Play (7|No 104 Op 102 No 3)"}, {.arcs = 30}).network),
      UnorderedElementsAre("play seven", "play number one hundred four opus one hundred two number three"));
}

TEST(Network, GoesOverAPipeAsItIs) {
  const ear::SpeechNetwork network = NetworkFor("Play [Album] (Blue|7)");
  const std::string content = ear::Encoded(network);
  EXPECT_EQ(ear::NetworkIn(content), network);
  for (std::size_t cut = 0; cut < content.size(); ++cut)
    EXPECT_FALSE(ear::NetworkIn(content.substr(0, cut)).has_value());
  ear::SpeechNetwork wrong = network;
  wrong.arcs[0].to = wrong.places;
  EXPECT_FALSE(ear::NetworkIn(ear::Encoded(wrong)).has_value());
  wrong = network;
  wrong.arcs[0].word = static_cast<std::int32_t>(wrong.words.size());
  EXPECT_FALSE(ear::NetworkIn(ear::Encoded(wrong)).has_value());
  wrong = network;
  wrong.places = 4'000'000'000;  // which would take all memory to walk through
  EXPECT_FALSE(ear::NetworkIn(ear::Encoded(wrong)).has_value());
  EXPECT_FALSE(ear::NetworkIn(std::string(100, '\xFF')).has_value());
}

TEST(Network, MessagesAreTakenAsTheyComeInPieces) {
  const std::string both =
      ear::Framed(ear::MessageKind::kHeard, "abc") + ear::Framed(ear::MessageKind::kFailed, std::string());
  std::string come;
  std::vector<std::string> told;
  for (const char c : both) {
    come += c;
    while (const auto message = ear::TakeMessage(come)) told.push_back(message->content);
  }
  EXPECT_THAT(told, ElementsAre("abc", ""));
  std::string endless(8, '\xFF');
  EXPECT_THROW(ear::TakeMessage(endless), std::length_error);
}

}  // namespace
}  // namespace standin
