// How sure the ear is of what it has heard, by the pieces that its two searches find.
#include "ear/decoder/Fit.hpp"

#include <gtest/gtest.h>

#include <map>

namespace ear {
namespace {

using Phones = std::vector<std::string>;

const std::map<std::string, Phones> kWords{{"play", {"P", "L", "EY"}}, {"next", {"N", "EH", "K", "S", "T"}}};

Phones PhonesOf(const std::string& word) {
  const auto found = kWords.find(word);
  return found == kWords.end() ? Phones() : found->second;
}

/// Ten frames each, one after the other from that frame on, with that score a frame.
std::vector<Piece> Chain(const Phones& phones, double score, int from = 0) {
  std::vector<Piece> all;
  for (const std::string& phone : phones) {
    all.push_back({PhoneWord(phone), from, from + 9, 10 * score});
    from += 10;
  }
  return all;
}

TEST(AFit, IsThePerfectOneWhereBothSearchesHearTheSame) {
  const std::vector<Piece> words{{"<s>", 0, 0, 0}, {"play", 0, 29, -30}, {"next", 30, 79, -50}};
  const Fit fit = FitOf(words, Chain({"P", "L", "EY", "N", "EH", "K", "S", "T"}, -1), PhonesOf);
  EXPECT_DOUBLE_EQ(fit.mean, 0);
  EXPECT_DOUBLE_EQ(fit.worst, 0);
  EXPECT_DOUBLE_EQ(fit.distance, 0);
  EXPECT_DOUBLE_EQ(fit.covered, 1);
  EXPECT_GE(Certainty(fit), 600U);
}

TEST(AFit, TellsTheWordThatFitsWorst) {
  const std::vector<Piece> words{{"play", 0, 29, -30}, {"next", 30, 79, -50 - 250}};
  const Fit fit = FitOf(words, Chain({"P", "L", "EY", "N", "EH", "K", "S", "T"}, -1), PhonesOf);
  EXPECT_DOUBLE_EQ(fit.worst, -5);
  EXPECT_DOUBLE_EQ(fit.mean, -250.0 / 80);
}

TEST(AFit, KnowsWhatTheSentenceLeavesOut) {
  // Who goes on speaking behind the command has said something else.
  const std::vector<Piece> words{{"play", 0, 29, -30}, {"next", 30, 79, -50}, {"<sil>", 80, 159, -80}};
  const Phones more{"P", "L", "EY", "N", "EH", "K", "S", "T", "W", "IY", "K", "W", "IY", "G", "OW", "AY"};
  const Fit fit = FitOf(words, Chain(more, -1), PhonesOf);
  EXPECT_DOUBLE_EQ(fit.covered, 0.5);
  EXPECT_DOUBLE_EQ(fit.distance, 1);
  EXPECT_LT(Certainty(fit), 300U);
}

TEST(AFit, HoldsWithoutAnyPhoneAndWithUnknownWords) {
  const Fit nothing = FitOf({{"play", 0, 29, -30}}, {}, PhonesOf);
  EXPECT_DOUBLE_EQ(nothing.covered, 0);
  EXPECT_LT(Certainty(nothing), 600U);
  const Fit unknown = FitOf({{"vorblix", 0, 29, -30}}, Chain({"P", "L", "EY"}, -1), PhonesOf);
  EXPECT_DOUBLE_EQ(unknown.distance, 1);
}

TEST(PhonesThatAreAlike, AreNearer) {
  EXPECT_DOUBLE_EQ(PhoneDistance({"P", "L", "EY"}, {"P", "L", "EY"}), 0);
  EXPECT_DOUBLE_EQ(PhoneDistance({}, {"P", "L"}), 2);
  EXPECT_LT(PhoneDistance({"P"}, {"B"}), PhoneDistance({"P"}, {"EY"}));
  EXPECT_LT(PhoneDistance({"AE"}, {"EH"}), 1);
  EXPECT_DOUBLE_EQ(PhoneDistance({"P", "L", "EY"}, {"L", "EY"}), 1);
}

TEST(Certainty, GrowsWithEachPartOfTheFitAndStaysWithinItsRange) {
  const Fit some{.mean = 1, .worst = -10, .distance = 0.5, .covered = 0.9};
  const std::uint32_t certain = Certainty(some);
  EXPECT_GT(Certainty({.mean = 4, .worst = -10, .distance = 0.5, .covered = 0.9}), certain);
  EXPECT_GT(Certainty({.mean = 1, .worst = 0, .distance = 0.5, .covered = 0.9}), certain);
  EXPECT_GT(Certainty({.mean = 1, .worst = -10, .distance = 0.3, .covered = 0.9}), certain);
  EXPECT_GT(Certainty({.mean = 1, .worst = -10, .distance = 0.5, .covered = 1}), certain);
  EXPECT_EQ(Certainty({.mean = 1e9, .worst = 1e9, .distance = 0, .covered = 1e9}), 1000U);
  EXPECT_EQ(Certainty({.mean = -1e9, .worst = -1e9, .distance = 1e9, .covered = 0}), 0U);
}

}  // namespace
}  // namespace ear
