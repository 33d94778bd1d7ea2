// The room with a player in it: who is heard, and when the player makes room.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "standin/room/InTheRoom.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WithMusic : public support::InTheRoom {
 protected:
  /// What the room is like for so many seconds, with somebody's words in it: the player plays unless it makes
  /// room. Whatever the ear is asked it is as certain of as `certainty_` tells.
  void pass(double seconds, const Sound& words = {}, double loudness = 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(seconds * kRate); at += kPiece) {
      feed(now(at, words, loudness));
      while (!ear.asked.empty()) hear("play night shift", certainty_);
    }
  }
  /// It counts who has asked it to make room.
  [[nodiscard]] bool plays() const {
    return music_ > 0 && std::count(players.begin(), players.end(), "quiet") * 2 ==
                             static_cast<std::ptrdiff_t>(players.size());
  }
  /// Which plays for a while already.
  void listenToMusic() {
    play(1500);
    listen({program("exec cat " + pipe())});
    pass(5);
  }
  /// Chords with a beat.
  void play(double loudness) { music_ = loudness; }
  static const Sound& sentence() {
    static const Sound all = support::Spoken("play night shift");
    return all;
  }
  /// A word as it is said in answer to a question.
  static const Sound& word() {
    static const Sound all = support::Spoken("yes", "en-gb");
    return all;
  }
  /// At first it understands nothing.
  double certainty_ = 0.1;
  void aMinute() {
    for (int i = 0; i < 12; ++i) feed(stillness(5));
  }
  /// Somebody says a sentence over the music, and the ear is asked what it was.
  void sayOverIt() {
    for (std::size_t at = 0; at < sentence().size() + kRate && ear.asked.empty(); at += kPiece)
      feed(now(at, sentence(), 3));
    ASSERT_TRUE(askedFor(1));
  }

 private:
  static constexpr std::size_t kPiece = kRate / 10;
  /// The room's next tenth of a second, with the words from there on.
  Sound now(std::size_t at, const Sound& words, double loudness) {
    Sound piece = stillness(0.1);
    for (std::size_t i = 0; i < kPiece; ++i) {
      const double said = at + i < words.size() ? loudness * words[at + i] : 0;
      const double heard = piece[i] + said + (plays() ? music(played_++) : 0);
      piece[i] = static_cast<std::int16_t>(std::lround(std::clamp(heard, -32768.0, 32767.0)));
    }
    return piece;
  }
  [[nodiscard]] double music(std::size_t sample) const {
    const double at = static_cast<double>(sample) / kRate;
    const double root = 110 * std::pow(2, std::floor(std::fmod(at, 8.0) / 2) / 12);
    double sum = 0;
    for (const double tone : {1.0, 1.25, 1.5, 2.0, 4.0})
      sum += std::sin(2 * std::numbers::pi * tone * root * at);
    return music_ / 4 * (0.6 + 0.4 * std::exp(-8 * std::fmod(at, 0.5))) * sum;
  }
  double music_ = 0;
  std::size_t played_ = 0;
};

TEST_F(WithMusic, ThatComesBackNobodyIsHeard) {
  listenToMusic();
  EXPECT_THAT(players, ElementsAre()) << "music is the room";
  pass(4, sentence(), 3);
  ASSERT_EQ(ear.sounds.size(), 1U);
  EXPECT_THAT(players, ElementsAre("quiet", "as before"));
  pass(60);
  EXPECT_EQ(ear.sounds.size(), 1U);
  EXPECT_THAT(players, ElementsAre("quiet", "as before"));
  pass(4, sentence(), 3);
  EXPECT_EQ(ear.sounds.size(), 2U) << "who speaks over it again is heard";
}

TEST_F(WithMusic, WhoHasToSpeakUpOverItIsHeardToHisEnd) {
  listenToMusic();
  Sound words(sentence());
  // Once the player is silent nobody goes on shouting.
  for (std::size_t i = kRate; i < words.size(); ++i) words[i] = static_cast<std::int16_t>(words[i] / 8);
  pass(5, words, 3);
  ASSERT_EQ(ear.sounds.size(), 1U);
  EXPECT_GT(ear.sounds[0].size(), words.size() - kRate / 2);
}

TEST_F(WithMusic, ATrackThatBeginsIsNobody) {
  const std::int32_t title = house.devices.create("Title").ref;
  house.devices.put(title, &standin::Device::location, std::string("Media Player"));
  listen();
  house.devices.put(title, &standin::Device::text, std::string("Night Shift"));
  loop.turn(std::chrono::milliseconds(0));
  play(3000);
  pass(20);
  EXPECT_THAT(ear.sounds, IsEmpty());
  EXPECT_THAT(players, IsEmpty());
}

TEST_F(WithMusic, PlayersAreLeftAloneWhereNobodyIsUnderstoodAgainAndAgain) {
  listen();
  for (int i = 0; i < 3; ++i) pass(4, sentence(), 0.5);
  EXPECT_EQ(ear.sounds.size(), 3U) << "it listens all the same";
  EXPECT_THAT(players, ElementsAre("quiet", "as before", "quiet", "as before"));
  aMinute();
  pass(4, sentence(), 0.5);
  EXPECT_EQ(players.size(), 6U) << "after a while they make room again";
  aMinute();
  pass(4, sentence(), 0.5);
  EXPECT_EQ(players.size(), 6U) << "the while has grown";
  sayAloud();
  ASSERT_TRUE(askedFor(6));
  hear("play night shift", 0.9);
  pass(2);
  pass(4, sentence(), 0.5);
  EXPECT_EQ(players.size(), 8U) << "who is understood is worth it";
}

TEST_F(WithMusic, PlayersAreLeftAloneWhereNobodyAnswersAgainAndAgain) {
  listen();
  certainty_ = 0.5;
  for (int i = 0; i < 4; ++i) pass(16, sentence(), 0.5);
  EXPECT_EQ(ear.sounds.size(), 4U);
  ASSERT_TRUE(room->status().last);
  EXPECT_EQ(room->status().last->kind, standin::Understanding::Kind::kUnclear);
  EXPECT_THAT(players, ElementsAre("quiet", "as before", "quiet", "as before"));
}

TEST_F(WithMusic, ABangIsNothingToAnybody) {
  listen();
  std::minstd_rand random(7);
  Sound bang(kRate);
  for (std::size_t i = 0; i < bang.size(); ++i) {
    const double behind = std::max(0.0, static_cast<double>(i) / kRate - 0.1);
    bang[i] = static_cast<std::int16_t>((static_cast<double>(random() % 24001) - 12000) *
                                        std::exp(-6.9 * behind / 0.4));
  }
  for (int i = 0; i < 3; ++i) pass(3, bang, 1);
  EXPECT_THAT(ear.sounds, IsEmpty());
  EXPECT_THAT(players, IsEmpty());
  EXPECT_EQ(room->status().heard, 0U);
}

TEST_F(WithMusic, AQuestionThatWasAskedAloudIsAnsweredByASingleWord) {
  commands->speaks(true);
  listenToMusic();
  sayOverIt();
  hear("play night shift", 0.5);
  ASSERT_TRUE(eventually([&] { return !speech.speaking(); }));
  EXPECT_THAT(voice.said(), ElementsAre("Did you mean “Play Night Shift”?"));
  EXPECT_FALSE(plays()) << "the player waits for the answer";
  feed(stillness(0.4));
  Sound answer(word());
  for (std::int16_t& each : answer) each = static_cast<std::int16_t>(each / 2);
  Sound noisy = stillness(static_cast<double>(answer.size()) / kRate);
  for (std::size_t i = 0; i < noisy.size(); ++i) noisy[i] = static_cast<std::int16_t>(noisy[i] + answer[i]);
  feed(noisy);
  feed(stillness(1));
  ASSERT_TRUE(askedFor(2));
  hear("yes", 0.9);
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
  EXPECT_TRUE(eventually([&] { return !speech.speaking() && plays(); }));
}

TEST_F(WithMusic, AQuestionThatNobodyAnswersIsLeftAlone) {
  commands->speaks(true);
  listenToMusic();
  sayOverIt();
  hear("play night shift", 0.5);
  ASSERT_TRUE(eventually([&] { return !speech.speaking(); }));
  pass(9);
  EXPECT_FALSE(plays());
  pass(2);
  EXPECT_TRUE(plays());
  pass(30);
  EXPECT_TRUE(plays());
  EXPECT_EQ(ear.sounds.size(), 1U);
  sayOverIt();
  hear("yes", 0.9);
  EXPECT_THAT(done(), IsEmpty()) << "it isn't meant any more";
}

}  // namespace
