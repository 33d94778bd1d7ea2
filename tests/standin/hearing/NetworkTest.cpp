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

/// All its sentences.
std::set<std::string> Sentences(const ear::SpeechNetwork& network) {
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

TEST(Network, HasAllSentencesThatCanBePronounced) {
  EXPECT_THAT(Sentences(NetworkFor("Play [Album] (Blue|7)")),
              UnorderedElementsAre("play album blue", "play album seven", "play blue", "play seven", "first",
                                   "second", "third", "yes", "no"));
  EXPECT_THAT(NetworkFor("Play (Blue|7|Москва)").words, Not(Contains("7")));
  EXPECT_THAT(Sentences(NetworkFor("")), UnorderedElementsAre("first", "second", "third", "yes", "no"));
}

TEST(Network, LeavesNoPlaceThatLeadsNowhere) {
  const ear::SpeechNetwork network = NetworkFor("Play Album (Москва|Blue 7 Москва|Blue)");
  EXPECT_THAT(network.words, ElementsAre("play", "album", "blue", "first", "second", "third", "yes", "no"));
  EXPECT_EQ(network.places, 5U);
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
