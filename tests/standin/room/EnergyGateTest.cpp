// Where somebody speaks in the sound of a room. All sound is made here, and there are no clocks.
#include "standin/room/EnergyGate.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <utility>

namespace {

using standin::EnergyGate;
using Sound = std::vector<std::int16_t>;

constexpr double kRate = 16000;

class ARoom : public testing::Test {
 protected:
  /// Seconds of what `at` has at each of them, over the room's own noise.
  Sound sound(double seconds, const std::function<double(double)>& at) {
    Sound all;
    for (int i = 0; i < static_cast<int>(seconds * kRate); ++i) {
      const double sample = at(i / kRate) + noise * normal_(random_);
      all.push_back(static_cast<std::int16_t>(std::lround(std::clamp(sample, -32768.0, 32767.0))));
    }
    return all;
  }
  Sound nothing(double seconds) {
    return sound(seconds, [](double) { return 0.0; });
  }
  /// Something like words: a buzz of several tones, four times a second.
  Sound words(double seconds, double loudness = 3000) {
    return sound(seconds, [loudness](double at) {
      const double envelope = std::max(0.0, std::sin(2 * std::numbers::pi * 4 * at) + 0.3);
      double sum = 0;
      for (const double tone : {160.0, 480.0, 1120.0, 2400.0})
        sum += std::sin(2 * std::numbers::pi * tone * at);
      return loudness / 4 * envelope * sum;
    });
  }
  /// Chords with a beat.
  Sound music(double seconds, double loudness = 2000) {
    return sound(seconds, [loudness](double at) {
      const double beat = 0.6 + 0.4 * std::exp(-8 * std::fmod(at, 0.5));
      const double root = 110 * std::pow(2, std::floor(std::fmod(at, 8.0) / 2) / 12);
      double sum = 0;
      for (const double tone : {1.0, 1.25, 1.5, 2.0, 4.0})
        sum += std::sin(2 * std::numbers::pi * tone * root * at);
      return loudness / 4 * beat * sum;
    });
  }
  /// A knock: loud at once, and gone within a tenth of a second.
  Sound knock() {
    return sound(0.3, [](double at) {
      return 20000 * std::exp(-60 * at) * std::sin(2 * std::numbers::pi * 300 * at);
    });
  }
  /// A door: a tenth of a second of noise, and what the room makes of it.
  Sound bang(double loudness = 8000) {
    Sound all;
    for (int i = 0; i < static_cast<int>(kRate); ++i) {
      const double behind = std::max(0.0, i / kRate - 0.1);
      const double sample = (loudness * std::exp(-6.9 * behind / 0.4) + noise) * normal_(random_);
      all.push_back(static_cast<std::int16_t>(std::lround(std::clamp(sample, -32768.0, 32767.0))));
    }
    return all;
  }
  static Sound sum(Sound left, const Sound& right) {
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i)
      left[i] = static_cast<std::int16_t>(std::clamp(left[i] + right[i], -32768, 32767));
    return left;
  }
  void hear(const Sound& all) { gate.take(all); }
  [[nodiscard]] double seconds(std::size_t utterance) const {
    return static_cast<double>(utterances.at(utterance).size()) / kRate;
  }

  double noise = 30;  ///< of the room
  int begun = 0;
  int nothings = 0;
  std::vector<Sound> utterances;
  Sound saying;
  EnergyGate gate{
      {.begins = [this] { ++begun; },
       .more = [this](const Sound& piece) { saying.insert(saying.end(), piece.begin(), piece.end()); },
       .ends = [this] { utterances.push_back(std::exchange(saying, {})); },
       .nothing =
           [this] {
             ++nothings;
             saying.clear();
           }}};

 private:
  std::minstd_rand random_{1};
  std::normal_distribution<double> normal_;
};

TEST_F(ARoom, WhoSpeaksIsHeardFromJustBeforeUntilJustBehind) {
  hear(nothing(2));
  hear(words(1.5));
  EXPECT_EQ(begun, 1);
  EXPECT_TRUE(utterances.empty()) << "he may go on";
  hear(nothing(1));
  ASSERT_EQ(utterances.size(), 1U);
  EXPECT_GT(seconds(0), 1.5 + 0.2 + 0.4) << "a soft beginning is in it, and the pause behind";
  EXPECT_LT(seconds(0), 1.5 + 0.5 + 0.7);
  EXPECT_EQ(nothings, 0);
}

TEST_F(ARoom, TwoWhoSpeakOneBehindTheOtherAreTwo) {
  hear(nothing(2));
  for (int i = 0; i < 2; ++i) {
    hear(words(1));
    hear(nothing(3));
  }
  EXPECT_EQ(begun, 2);
  EXPECT_EQ(utterances.size(), 2U);
}

TEST_F(ARoom, ABreathBetweenWordsIsNoEnd) {
  hear(nothing(2));
  hear(words(0.75));
  hear(nothing(0.4));
  hear(words(0.75));
  hear(nothing(1));
  ASSERT_EQ(utterances.size(), 1U);
  EXPECT_GT(seconds(0), 1.9);
}

TEST_F(ARoom, IsTheSameInPiecesOfAnySize) {
  Sound all = nothing(2);
  for (const Sound& each : {words(1), nothing(2), words(1), nothing(2)})
    all.insert(all.end(), each.begin(), each.end());
  hear(all);
  const std::vector<Sound> atOnce = std::exchange(utterances, {});
  ASSERT_EQ(atOnce.size(), 2U);
  for (const std::size_t size : {1U, 7U, 320U, 5000U}) {
    std::vector<Sound> inPieces;
    Sound part;
    EnergyGate other(
        {.begins = [] {},
         .more = [&](const Sound& piece) { part.insert(part.end(), piece.begin(), piece.end()); },
         .ends = [&] { inPieces.push_back(std::exchange(part, {})); },
         .nothing = [] {}});
    for (std::size_t at = 0; at < all.size(); at += size)
      other.take(std::span(all).subspan(at, std::min(size, all.size() - at)));
    EXPECT_EQ(inPieces, atOnce) << size;
  }
}

TEST_F(ARoom, StillnessAndSteadyNoisesAreNobody) {
  for (const double loudness : {0.0, 1.0, 30.0, 300.0, 3000.0}) {
    noise = loudness;
    gate.rest();
    hear(nothing(20));
    EXPECT_EQ(begun, 0) << loudness;
  }
  noise = 30;
  gate.rest();
  hear(sound(20, [](double) { return 5000.0; }));
  gate.rest();
  hear(sound(20, [](double at) { return 500 * std::sin(2 * std::numbers::pi * 50 * at); }));
  EXPECT_TRUE(utterances.empty()) << "a microphone's offset, a lamp's hum";
}

TEST_F(ARoom, KnocksAndClicksAreNobody) {
  hear(nothing(2));
  for (int i = 0; i < 10; ++i) {
    hear(knock());
    Sound click(16, 30000);
    hear(click);
    hear(nothing(1));
  }
  EXPECT_EQ(begun, 0);
}

TEST_F(ARoom, MusicIsTheRoomAndWhoSpeaksOverItIsHeard) {
  hear(music(20));
  EXPECT_TRUE(utterances.empty());
  EXPECT_EQ(begun, 0);
  hear(sum(words(1.5, 16000), music(1.5)));
  EXPECT_EQ(begun, 1);
  hear(music(2));
  EXPECT_EQ(utterances.size(), 1U);
  hear(music(20));
  EXPECT_EQ(begun, 1) << "that players come back is nobody's word";
}

TEST_F(ARoom, WhatGrowsLouderForGoodIsTheRoomInTheEnd) {
  hear(nothing(2));
  hear(music(120, 8000));
  EXPECT_LE(begun, 1) << "half a minute at most is taken for somebody";
  for (const Sound& each : utterances) EXPECT_LE(each.size(), EnergyGate::kLongest);
  const int before = begun;
  hear(nothing(10));
  hear(words(1));
  EXPECT_EQ(begun, before + 1) << "and a room that is still again is learnt, too";
}

TEST_F(ARoom, NobodyIsHeardForLongerThanHalfAMinute) {
  hear(nothing(2));
  hear(words(31));
  ASSERT_EQ(utterances.size(), 1U);
  EXPECT_LE(utterances[0].size(), EnergyGate::kLongest);
  EXPECT_GT(seconds(0), 29.9);
}

TEST_F(ARoom, AtRestNobodyIsHeardAndTheRoomIsLearntAnew) {
  hear(nothing(2));
  hear(words(0.75));
  EXPECT_EQ(begun, 1);
  gate.rest();
  EXPECT_EQ(nothings, 1) << "what had begun is told to be over";
  EXPECT_FALSE(gate.open());
  hear(words(0.5));
  EXPECT_EQ(begun, 1);
  gate.rest();
  hear(music(1));
  EXPECT_TRUE(gate.open());
  hear(music(10));
  EXPECT_EQ(begun, 1) << "music that is there behind a rest is no more than the room";
  EXPECT_TRUE(utterances.empty());
}

TEST_F(ARoom, ABangAndItsEchoAreNobody) {
  hear(nothing(2));
  for (const double loudness : {500.0, 2000.0, 8000.0, 30000.0}) {
    hear(bang(loudness));
    hear(nothing(2));
    EXPECT_EQ(begun, 0) << loudness;
  }
}

TEST_F(ARoom, ASingleShortWordIsHeardWhereOneIsAwaited) {
  hear(nothing(2));
  hear(words(0.17));
  hear(nothing(1));
  EXPECT_EQ(begun, 0);
  gate.awaitsWord(true);
  hear(words(0.17));
  hear(nothing(1));
  ASSERT_EQ(utterances.size(), 1U);
  EXPECT_GT(seconds(0), 0.4 + 0.17 + 0.5);
  gate.awaitsWord(false);
  hear(nothing(1));
  hear(words(0.17));
  hear(nothing(1));
  EXPECT_EQ(begun, 1);
}

TEST_F(ARoom, WhoSpeaksOverMusicIsHeardToHisEndThoughItFallsSilent) {
  hear(music(5));
  hear(sum(words(0.8, 16000), music(0.8)));
  ASSERT_EQ(begun, 1);
  gate.playersLeave();
  hear(words(2, 1500));  // he need not be loud any more
  EXPECT_TRUE(utterances.empty());
  hear(nothing(1));
  ASSERT_EQ(utterances.size(), 1U);
  EXPECT_GT(seconds(0), 2.8);
}

TEST_F(ARoom, WherePlayersGoOnAllTheSameAnUtteranceEnds) {
  hear(music(5));
  hear(sum(words(0.8, 16000), music(0.8)));
  gate.playersLeave();
  hear(sum(words(0.8, 16000), music(0.8)));
  hear(music(2));
  ASSERT_EQ(utterances.size(), 1U);
  EXPECT_LT(seconds(0), 3);
}

/// Music that comes back so many seconds behind the players' leave to, and its loudness.
class MusicComesBack : public ARoom, public testing::WithParamInterface<std::pair<double, double>> {};

TEST_P(MusicComesBack, AndIsNobody) {
  const auto [late, loudness] = GetParam();
  hear(music(5));
  hear(sum(words(1, 16000), music(1)));
  gate.playersLeave();
  hear(words(1));
  hear(nothing(3));  // what was said is found out
  ASSERT_EQ(utterances.size(), 1U);
  gate.playersReturn();
  hear(nothing(late));
  hear(music(30, loudness));
  EXPECT_EQ(begun, 1);
  hear(sum(words(1.5, 8 * loudness), music(1.5, loudness)));
  EXPECT_EQ(begun, 2) << "who speaks over it again is heard";
}

INSTANTIATE_TEST_SUITE_P(Soon, MusicComesBack,
                         testing::Values(std::pair(0.0, 2000.0), std::pair(0.5, 2000.0),
                                         std::pair(1.5, 2000.0), std::pair(5.0, 2000.0),
                                         std::pair(0.0, 4000.0), std::pair(0.3, 4000.0)));

TEST_F(ARoom, WhereNothingHasFallenSilentThereIsNothingToComeBack) {
  hear(nothing(2));
  hear(words(1));
  gate.playersLeave();
  hear(nothing(2));
  gate.playersReturn();
  hear(words(1));
  hear(nothing(1));
  EXPECT_EQ(utterances.size(), 2U) << "who goes on is heard at once";
}

TEST_F(ARoom, IsKnownStillWhenTheHouseHasSpoken) {
  hear(nothing(2));
  hear(words(1));
  hear(nothing(0.7));
  ASSERT_EQ(utterances.size(), 1U);
  gate.pause();
  hear(nothing(0.4));
  EXPECT_TRUE(gate.open()) << "nothing has to be learnt anew";
  hear(words(1));
  EXPECT_EQ(begun, 2);
}

TEST_F(ARoom, ThatWasNeverLearntIsLearntBehindThat) {
  gate.pause();
  hear(music(0.5));
  EXPECT_FALSE(gate.open());
  hear(music(10));
  EXPECT_TRUE(gate.open());
  EXPECT_EQ(begun, 0);
}

TEST_F(ARoom, NoiseOfAnyKindDoesNoHarm) {
  std::minstd_rand random(5);
  for (int i = 0; i < 200; ++i) {
    Sound any(random() % 20000);
    const auto loudness = random() % 32768 + 1;
    for (std::int16_t& each : any)
      each =
          static_cast<std::int16_t>(static_cast<int>(random() % (2 * loudness)) - static_cast<int>(loudness));
    gate.take(any);
  }
  for (const Sound& each : utterances) EXPECT_LE(each.size(), EnergyGate::kLongest);
  gate.rest();
  EXPECT_EQ(begun, nothings + static_cast<int>(utterances.size())) << "what begins, ends";
}

}  // namespace
