// What others have done to a playlist, told from how it was and how it is.
#include "standin/playlists/PlaylistDiff.hpp"

#include <gmock/gmock.h>

#include <random>

using standin::ListedItem;
using standin::ListPlace;
using standin::PlaylistStep;
using standin::StepKind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

/// One title a letter.
std::vector<ListedItem> List(const std::string& letters) {
  std::vector<ListedItem> items;
  for (const char letter : letters) items.emplace_back(std::string(1, letter), std::string("/m/") + letter);
  return items;
}

std::string LettersOf(const std::vector<ListedItem>& items) {
  std::string letters;
  for (const ListedItem& item : items) letters += item.name;
  return letters;
}

void Erase(std::string& letters, std::int32_t at, std::size_t many) {
  ASSERT_LE(static_cast<std::size_t>(at) + many, letters.size());
  letters.erase(static_cast<std::size_t>(at), many);
}

void Insert(std::string& letters, const ListPlace& place, const std::string& put) {
  const auto at = static_cast<std::size_t>(place.at);
  ASSERT_LE(at, letters.size());
  EXPECT_EQ(place.before, at == 0 ? "" : "/m/" + letters.substr(at - 1, 1));
  EXPECT_EQ(place.after, at == letters.size() ? "" : "/m/" + letters.substr(at, 1));
  letters.insert(at, put);
}

/// Takes the step in a list of letters, and looks whether it says where that is.
void Take(std::string& letters, const PlaylistStep& step, bool undone) {
  if (!undone) {
    EXPECT_EQ(static_cast<std::size_t>(step.count), letters.size());
  }
  const std::string titles = LettersOf(step.items);
  const bool takesOut = step.kind != StepKind::kAdd;
  const bool putsIn = step.kind != StepKind::kRemove;
  if (undone ? putsIn : takesOut) {
    const std::int32_t at = undone ? step.to.at : step.from.at;
    ASSERT_EQ(letters.substr(static_cast<std::size_t>(at), titles.size()), titles);
    Erase(letters, at, titles.size());
  }
  if (undone ? takesOut : putsIn) Insert(letters, undone ? step.from : step.to, titles);
}

/// The steps lead there, and back.
std::vector<PlaylistStep> Between(const std::string& before, const std::string& after) {
  std::vector<PlaylistStep> steps = standin::StepsBetween(List(before), List(after));
  std::string letters = before;
  for (const PlaylistStep& step : steps) Take(letters, step, false);
  EXPECT_EQ(letters, after) << before;
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) Take(letters, *step, true);
  EXPECT_EQ(letters, before) << after;
  return steps;
}

std::vector<std::string> WordsBetween(const std::string& before, const std::string& after) {
  std::vector<std::string> words;
  for (const PlaylistStep& step : Between(before, after)) words.push_back(WordsOf(step));
  return words;
}

}  // namespace

TEST(OthersSteps, AreNoneWhereNothingHasChanged) {
  EXPECT_THAT(Between("", ""), IsEmpty());
  EXPECT_THAT(Between("abc", "abc"), IsEmpty());
  std::vector<ListedItem> renamed = List("abc");
  renamed[1].name = "Another";
  EXPECT_THAT(standin::StepsBetween(List("abc"), renamed), IsEmpty()) << "it is the same title";
}

TEST(OthersSteps, TitlesThatHaveComeOrGoneTogetherAreOneStep) {
  EXPECT_THAT(WordsBetween("abc", "abcd"), ElementsAre("adding “d”"));
  EXPECT_THAT(WordsBetween("", "ab"), ElementsAre("adding 2 titles"));
  EXPECT_THAT(WordsBetween("abcd", "abd"), ElementsAre("removing “c”"));
  EXPECT_THAT(WordsBetween("abcd", "ad"), ElementsAre("removing 2 titles"));
  EXPECT_THAT(WordsBetween("ab", ""), ElementsAre("clearing the list of 2 titles"));
  EXPECT_THAT(WordsBetween("aaa", "aaaa"), ElementsAre("adding “a”"));
}

TEST(OthersSteps, ATitleThatStandsElsewhereWasMoved) {
  EXPECT_THAT(WordsBetween("abcde", "acdbe"), ElementsAre("moving “b”"));
  EXPECT_THAT(WordsBetween("abcde", "adbce"), ElementsAre("moving “d”"));
  EXPECT_THAT(WordsBetween("abc", "bca"), ElementsAre("moving “a”"));
  EXPECT_THAT(Between("ab", "ba"), SizeIs(1));
}

TEST(OthersSteps, WhatIsNotAsSimpleIsARemovalAndAnAddition) {
  EXPECT_THAT(WordsBetween("abcde", "axyde"), ElementsAre("removing 2 titles", "adding 2 titles"));
  EXPECT_THAT(WordsBetween("abcde", "bd"), ElementsAre("clearing the list of 5 titles", "adding 2 titles"))
      << "two gaps";
}

TEST(OthersSteps, LeadFromAnyListToAnyOther) {
  std::mt19937 random(7);  // NOLINT: the same lists each time
  const auto some = [&] {
    std::string letters(random() % 7, 'a');
    for (char& letter : letters) letter = static_cast<char>('a' + random() % 3);
    return letters;
  };
  for (int i = 0; i < 3000; ++i) EXPECT_LE(Between(some(), some()).size(), 2U);
}
