#include <gmock/gmock.h>

#include <cstdlib>

#include "CardInHand.hpp"
#include "Film.hpp"
#include "engine/card/CardOpener.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/common/ToldByOutput.hpp"
#include "engine/decoder/MpvOutput.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr base::PictureSize kSize{160, 90};
constexpr const char* kMoving = "testsrc2=size=320x180:rate=25";

/// A decoder whose frames a card draws: the machine's own, and be it one that draws in software.
class DrawnByCard : public PlayerTest {
 protected:
  DrawnByCard() {
    KeepDriversOffTheDisk();
    ::setenv("XDG_CACHE_HOME", cache.path().c_str(), 1);
    config.untimed = false;                         // pictures have their time
    config.cardPatience = std::chrono::minutes(1);  // a driver may come from a slow disc
  }

  void plays(const char* picture, const OpenCard& open) {
    if (film.empty()) MakeFilm(film = folder / "film.mkv", picture, 60);
    output.emplace(
        loop, config, [](const std::string&, int) { return std::nullopt; },
        [this](const std::string& line) { log.push_back(line); }, MpvOutput::LoudnessOf(),
        [this](base::FrameRef frame) { shown = std::move(frame); }, open);
    output->listener(heard);
    output->load(1, film);
  }
  void plays(const char* picture) { plays(picture, CardInHand::By(plan)); }

  /// A frame of that size that isn't black comes, another than is shown now.
  bool comes(base::PictureSize size) {
    const base::FrameRef before = std::exchange(shown, nullptr);
    return until([&] { return shown && shown != before && shown->size == size && Lit(*shown) > 100; });
  }
  /// Frames come and come.
  bool moves() { return comes(kSize) && comes(kSize) && comes(kSize); }

  TempFolder cache;
  std::string film;
  std::shared_ptr<CardPlan> plan = std::make_shared<CardPlan>();
  ToldByOutput heard;
  base::FrameRef shown;
  std::optional<MpvOutput> output;
};

TEST_F(DrawnByCard, AFilmLooksAsInSoftware) {
  for (const base::PictureSize size : {kSize, base::PictureSize{251, 150}, {33, 17}, {640, 201}}) {
    plays(kFourColours);
    output->look(size);
    ASSERT_TRUE(comes(size)) << size.width;
    EXPECT_GT(plan->read, 0);
    const base::FrameRef byCard = shown;
    output.reset();
    plan->read = 0;
    plays(kFourColours, {});
    output->look(size);
    ASSERT_TRUE(comes(size)) << size.width;
    EXPECT_EQ(plan->read, 0);
    // Where colours meet, and at the bars beside the picture, each draws in its own way.
    EXPECT_LT(Unlike(*byCard, *shown), 0.06) << size.width;
    if (size != base::PictureSize{640, 201}) {
      EXPECT_TRUE(ShowsFourColours(*byCard)) << size.width;
      EXPECT_TRUE(ShowsFourColours(*shown)) << size.width;
    }
  }
  EXPECT_THAT(log, IsEmpty());
  output.reset();
  EXPECT_EQ(plan->closed, plan->opened);
}

TEST_F(DrawnByCard, APausedFilmIsDrawnAnewInAnotherSize) {
  plays(kFourColours);
  output->look(kSize);
  ASSERT_TRUE(comes(kSize));
  output->pause(true);
  output->look({251, 150});
  ASSERT_TRUE(comes({251, 150}));
  EXPECT_TRUE(ShowsFourColours(*shown));
  output->look(kSize);
  ASSERT_TRUE(comes(kSize));
  EXPECT_TRUE(ShowsFourColours(*shown));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(DrawnByCard, ADriverKeepsNothingOnTheDisk) {
  plays(kMoving);
  output->look(kSize);
  ASSERT_TRUE(moves());
  output.reset();
  EXPECT_TRUE(fs::is_empty(cache.path()));
}

TEST_F(DrawnByCard, NothingIsDrawnWhileNobodyLooks) {
  plays(kMoving);
  output->look(kSize);
  ASSERT_TRUE(moves());
  output->look({});
  EXPECT_TRUE(until([this] {
    const int drawn = plan->read;
    const double from = output->position();
    return until([&] { return output->position() > from + 0.5; }) && plan->read == drawn;
  }));
  const int drawn = plan->read;
  output->look(kSize);
  ASSERT_TRUE(moves());
  EXPECT_GE(plan->read, drawn + 3);
  EXPECT_EQ(plan->opened, 1);
}

TEST_F(DrawnByCard, NoCardIsOpenedBeforeSomebodyLooks) {
  plays(kMoving);
  ASSERT_TRUE(until([this] { return output->position() > 0.1; }));
  EXPECT_EQ(plan->opened, 0);
}

TEST_F(DrawnByCard, AFilmGoesOnInSoftwareWhenTheCardFailsInTheMiddle) {
  plan->readsThatWork = 5;
  plays(kMoving);
  output->look(kSize);
  ASSERT_TRUE(until([this] { return plan->closed == 1; }));
  EXPECT_EQ(plan->read, 5);
  EXPECT_TRUE(moves());
  output->look({320, 180});
  EXPECT_TRUE(comes({320, 180}));
  EXPECT_THAT(log, ElementsAre("Films are drawn in software: it is lost"));
  EXPECT_THAT(heard.failedOnes, IsEmpty());
  EXPECT_THAT(heard.endedOnes, IsEmpty());
}

TEST_F(DrawnByCard, APausedFilmGoesOnInSoftwareWhenItIsTooLargeForTheCard) {
  plan->mostWidth = 200;
  plays(kFourColours);
  output->look(kSize);
  ASSERT_TRUE(comes(kSize));
  output->pause(true);
  output->look({251, 150});
  ASSERT_TRUE(comes({251, 150}));
  EXPECT_TRUE(ShowsFourColours(*shown));
  EXPECT_THAT(log, ElementsAre("Films are drawn in software: it is too large"));
}

TEST_F(DrawnByCard, AFilmIsDrawnInSoftwareWhereTheDecoderRefusesTheCard) {
  plan->functions = false;
  plays(kMoving);
  output->look(kSize);
  EXPECT_TRUE(moves());
  EXPECT_EQ(plan->read, 0);
  EXPECT_EQ(plan->closed, 1);
  EXPECT_THAT(
      log, ElementsAre(StartsWith("Films are drawn in software: the decoder doesn't take a card in hand")));
}

TEST_F(DrawnByCard, AFilmIsDrawnInSoftwareWhereNoDriverIsFoundWhichIsToldOnce) {
  const OpenCard open = CardOpener(Graphics::kAny, {.library = "libNobodyHasSuchAnEgl.so.1"});
  for (int time = 0; time < 2; ++time) {
    plays(kMoving, open);
    output->look(kSize);
    EXPECT_TRUE(moves());
  }
  EXPECT_THAT(log, ElementsAre(StartsWith("Films are drawn in software: no driver can be looked for")));
}

TEST_F(DrawnByCard, AFilmIsDrawnInSoftwareWhereADriverDoesNotAnswer) {
  std::promise<void> answer;
  plan->may = answer.get_future().share();
  plays(kMoving);
  output->look(kSize);
  ASSERT_TRUE(until([this] { return output->position() > 0.1; }));
  EXPECT_EQ(shown, nullptr);
  minutesPass();
  EXPECT_TRUE(moves());
  EXPECT_THAT(log, ElementsAre("Films are drawn in software: the graphics card's driver doesn't answer"));
  answer.set_value();
  EXPECT_TRUE(until([this] { return plan->closed == 1; })) << "a card that comes late closes again";
  EXPECT_TRUE(moves());
  EXPECT_EQ(plan->read, 0);
}

TEST_F(DrawnByCard, ItEndsWhileADriverDoesNotAnswer) {
  std::promise<void> answer;
  plan->may = answer.get_future().share();
  plays(kMoving);
  output->look(kSize);
  ASSERT_TRUE(until([this] { return output->position() > 0.1; }));
  output.reset();
  EXPECT_EQ(plan->opened, 0);
  answer.set_value();
  EXPECT_TRUE(until([this] { return plan->closed == 1; }));
}

TEST_F(DrawnByCard, ItEndsWhileTheCardOpens) {
  for (int time = 0; time < 5; ++time) {
    plays(kMoving);
    output->look(kSize);
    output.reset();
    EXPECT_TRUE(until([&] { return plan->opened == time + 1 && plan->closed == time + 1; }));
  }
}

TEST_F(DrawnByCard, ItEndsWhileItIsDrawn) {
  plays(kMoving);
  output->look(kSize);
  ASSERT_TRUE(moves());
  output.reset();
  EXPECT_EQ(plan->closed, 1);
  const base::FrameRef last = shown;
  loop.pump();
  EXPECT_EQ(shown, last);
}

}  // namespace
}  // namespace engine::testing
