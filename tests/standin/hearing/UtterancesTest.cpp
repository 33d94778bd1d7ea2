// What is said in pieces, as it is spoken.
#include "standin/hearing/Utterances.hpp"

#include "standin/hearing/HearingHouse.hpp"

namespace {

using standin::Speaker;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Spoken : public support::HearingHouse {
 protected:
  /// The failure's number; 0 where it worked.
  template <class Work>
  static std::int32_t failure(const Work& work) {
    try {
      work();
      return 0;
    } catch (const base::Failure& failed) {
      return failed.number();
    }
  }
  static std::vector<std::int16_t> piece(std::size_t samples, std::int16_t value = 1) {
    return std::vector<std::int16_t>(samples, value);
  }
  void end(const Speaker& who, std::uint64_t number, std::uint64_t samples) {
    utterances.end(who, number, samples, [this](const Understanding& told) { understood.push_back(told); });
  }
  void wait(std::chrono::milliseconds time) {
    passed += time;
    for (int i = 0; i < 3; ++i) loop.turn(std::chrono::milliseconds(0));
  }
  const Speaker ann{"ann"};
  const Speaker ben{"ben"};
  std::vector<Understanding> understood;
  standin::Utterances utterances{loop, *commands};
};

TEST_F(Spoken, IsPutTogetherInItsOrderAndDone) {
  const std::uint64_t number = utterances.begin(ann);
  utterances.more(ann, number, 0, piece(3, 1));
  utterances.more(ann, number, 3, piece(2, 2));
  EXPECT_THAT(ear.sounds, IsEmpty());
  end(ann, number, 5);
  ASSERT_THAT(ear.sounds, SizeIs(1));
  EXPECT_THAT(ear.sounds[0], ElementsAre(1, 1, 1, 2, 2));
  hear("play night shift", 0.9);
  ASSERT_THAT(understood, SizeIs(1));
  EXPECT_EQ(understood[0].kind, Kind::kDone);
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
}

TEST_F(Spoken, WhereAPieceIsMissingItIsSaidAndForgotten) {
  std::uint64_t number = utterances.begin(ann);
  utterances.more(ann, number, 0, piece(10));
  EXPECT_EQ(failure([&] { utterances.more(ann, number, 20, piece(10)); }), base::number::kInvalidArgument);
  EXPECT_EQ(failure([&] { utterances.more(ann, number, 10, piece(10)); }), base::number::kFileNotFound);
  number = utterances.begin(ann);
  utterances.more(ann, number, 0, piece(10));
  EXPECT_EQ(failure([&] { end(ann, number, 20); }), base::number::kInvalidArgument) << "the last one";
  number = utterances.begin(ann);
  utterances.more(ann, number, 0, piece(10));
  EXPECT_EQ(failure([&] { utterances.more(ann, number, 0, piece(10)); }), base::number::kInvalidArgument)
      << "one that came twice";
  EXPECT_THAT(ear.sounds, IsEmpty());
}

TEST_F(Spoken, NobodyGoesOnWithAnothers) {
  const std::uint64_t number = utterances.begin(ann);
  EXPECT_EQ(failure([&] { utterances.more(ben, number, 0, piece(10)); }), base::number::kFileNotFound);
  EXPECT_EQ(failure([&] { end(ben, number, 0); }), base::number::kFileNotFound);
  const std::uint64_t other = utterances.begin(ben);
  EXPECT_EQ(failure([&] { utterances.more(ben, number, 0, piece(10)); }), base::number::kFileNotFound);
  utterances.more(ann, number, 0, piece(1));
  utterances.more(ben, other, 0, piece(2));
  end(ben, other, 2);
  end(ann, number, 1);
  ASSERT_THAT(ear.sounds, SizeIs(2));
  EXPECT_THAT(ear.sounds[0], SizeIs(2));
  EXPECT_EQ(failure([&] { end(ann, number, 1); }), base::number::kFileNotFound) << "it has ended";
}

TEST_F(Spoken, ASessionSaysOneThingAtATime) {
  const std::uint64_t first = utterances.begin(ann);
  const std::uint64_t second = utterances.begin(ann);
  EXPECT_NE(first, second);
  EXPECT_EQ(failure([&] { utterances.more(ann, first, 0, piece(10)); }), base::number::kFileNotFound);
  utterances.more(ann, second, 0, piece(10));
}

TEST_F(Spoken, WhatNobodyGoesOnWithIsForgotten) {
  const std::uint64_t number = utterances.begin(ann);
  wait(std::chrono::seconds(9));
  utterances.more(ann, number, 0, piece(10));
  wait(std::chrono::seconds(9));
  utterances.more(ann, number, 10, piece(10));
  wait(std::chrono::seconds(10));
  EXPECT_EQ(failure([&] { utterances.more(ann, number, 20, piece(10)); }), base::number::kFileNotFound);
}

TEST_F(Spoken, ThereIsRoomForEightAtOnce) {
  std::uint64_t last = 0;
  for (int i = 0; i < 8; ++i) last = utterances.begin({std::to_string(i)});
  EXPECT_EQ(failure([&] { utterances.begin(ann); }), base::number::kOverflow);
  EXPECT_EQ(failure([&] { utterances.begin({"3"}); }), 0) << "who has a place keeps it";
  end({"7"}, last, 0);
  EXPECT_EQ(failure([&] { utterances.begin(ann); }), 0);
}

TEST_F(Spoken, HalfAMinuteIsTheMost) {
  const std::uint64_t number = utterances.begin(ann);
  for (std::uint64_t i = 0; i < 40; ++i) utterances.more(ann, number, i * 16000, piece(16000));
  end(ann, number, 40 * 16000);
  ASSERT_THAT(ear.sounds, SizeIs(1));
  EXPECT_THAT(ear.sounds[0], SizeIs(30 * 16000));
}

TEST_F(Spoken, TheEarIsWokenWhenSomebodyBegins) {
  utterances.begin(ann);
  EXPECT_THAT(ear.learnt, SizeIs(1));
}

}  // namespace
