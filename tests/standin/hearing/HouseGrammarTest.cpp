// The grammar of the house while its patterns change and it is being made.
#include "standin/hearing/HouseGrammar.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <utility>

#include "bus/PollLoop.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Works when the test says so.
class SteppedWorker : public Worker {
 public:
  void start(Work work, Done done) override {
    ASSERT_FALSE(waiting_) << "one piece at a time";
    ++started;
    waiting_.emplace(std::move(work), std::move(done));
  }
  void step() {
    const auto [work, done] = *std::exchange(waiting_, {});
    work();
    done(nullptr);
  }
  /// There is no memory for it.
  void fail() {
    const auto [work, done] = *std::exchange(waiting_, {});
    done(std::make_exception_ptr(std::bad_alloc()));
  }
  [[nodiscard]] bool waiting() const { return waiting_.has_value(); }
  int started = 0;

 private:
  std::optional<std::pair<Work, Done>> waiting_;
};

class GrammarOfTheHouse : public testing::Test {
 protected:
  void pattern(const std::string& text, const std::string& event = "One") {
    const Event* known = house.events.byName(event);
    const std::int32_t id = known != nullptr ? known->id : house.events.create(event).id;
    house.events.put(id, &Event::vcmd, text);
  }
  [[nodiscard]] std::vector<std::string> of(const std::string& text) const {
    std::vector<std::string> all;
    if (grammar.made())
      for (const Said& each : grammar.made()->grammar.match(text)) all.push_back(each.command);
    return all;
  }
  /// A question that writes down what it is answered with.
  void ask(const std::string& text) {
    grammar.ask([this, text] {
      const std::vector<std::string> found = of(text);
      answers.push_back(found.empty() ? "nothing" : found.front());
    });
  }

  support::TempFolder folder;
  House house{folder.path() / "data"};
  SteppedWorker worker;
  HouseGrammar grammar{house, worker};
  std::vector<std::string> answers;
};

TEST_F(GrammarOfTheHouse, TheFirstQuestionWaitsAndLaterOnesAreAnsweredByTheOneBefore) {
  pattern("Play (Blue)");
  EXPECT_EQ(worker.started, 0) << "nobody has asked";
  ask("play blue");
  ask("play red");
  EXPECT_THAT(answers, IsEmpty());
  worker.step();
  EXPECT_THAT(answers, ElementsAre("Play Blue", "nothing"));
  EXPECT_EQ(worker.started, 1);

  pattern("Play (Red)");
  ask("play blue");
  ask("play red");
  EXPECT_THAT(answers, ElementsAre("Play Blue", "nothing", "Play Blue", "nothing"));
  worker.step();
  ask("play red");
  EXPECT_EQ(answers.back(), "Play Red");
  EXPECT_EQ(worker.started, 2);
}

TEST_F(GrammarOfTheHouse, OfManyChangesMeanwhileTheNewestIsMadeNext) {
  pattern("Play (Blue)");
  ask("play blue");
  for (const char* each : {"Play (Red)", "Play (Green)", "Play (Grey)"}) {
    pattern(each);
    grammar.want();
  }
  worker.step();
  EXPECT_THAT(answers, ElementsAre("Play Blue")) << "it is answered as it was asked";
  ASSERT_TRUE(worker.waiting());
  worker.step();
  EXPECT_THAT(of("play grey"), ElementsAre("Play Grey"));
  EXPECT_FALSE(worker.waiting());
  EXPECT_EQ(worker.started, 2);
  grammar.want();
  EXPECT_EQ(worker.started, 2) << "it is as it should be";
}

TEST_F(GrammarOfTheHouse, WhoFollowsAChangeIsToldWhenItHolds) {
  const auto follow = [&](const std::string& text) {
    grammar.whenFollowed([this, text] { answers.push_back(of(text).empty() ? "old" : "new"); });
  };
  pattern("Play (Blue)");
  follow("play blue");
  EXPECT_THAT(answers, ElementsAre("old")) << "nobody has asked anything: the first question finds it";
  ask("play blue");
  worker.step();
  answers.clear();
  pattern("Play (Red)");
  follow("play red");
  pattern("Play (Red|Green)");
  follow("play green");
  EXPECT_THAT(answers, IsEmpty());
  worker.step();
  EXPECT_THAT(answers, ElementsAre("new"));
  worker.step();
  EXPECT_THAT(answers, ElementsAre("new", "new"));
  follow("play green");
  EXPECT_EQ(answers.size(), 3U) << "it holds already";
  EXPECT_FALSE(worker.waiting());
}

TEST_F(GrammarOfTheHouse, WhereThereIsNoMemoryTheOneBeforeStays) {
  pattern("Play (Blue)");
  ask("play blue");
  worker.fail();
  EXPECT_THAT(answers, ElementsAre("nothing"));
  EXPECT_EQ(grammar.made(), nullptr);
  ask("play blue");
  worker.step();
  EXPECT_EQ(answers.back(), "Play Blue");

  pattern("Play (Red)");
  bool followed = false;
  grammar.whenFollowed([&] { followed = true; });
  worker.fail();
  EXPECT_TRUE(followed) << "nobody waits for ever";
  EXPECT_THAT(of("play blue"), ElementsAre("Play Blue"));
  EXPECT_FALSE(worker.waiting()) << "it is tried again when somebody asks";
  ask("play red");
  worker.step();
  EXPECT_THAT(of("play red"), ElementsAre("Play Red"));
}

TEST_F(GrammarOfTheHouse, AScriptWaitsForTheFirstOneHere) {
  pattern("Play (Blue)");
  ASSERT_NE(grammar.now(), nullptr);
  EXPECT_THAT(of("play blue"), ElementsAre("Play Blue"));
  EXPECT_EQ(worker.started, 0);
  pattern("Play (Red)");
  EXPECT_THAT(grammar.now()->grammar.match("play red"), IsEmpty()) << "from then on as others";
  worker.step();
  EXPECT_THAT(of("play red"), ElementsAre("Play Red"));
}

TEST_F(GrammarOfTheHouse, TheLibraryMayChangeWhileItIsMade) {
  house.settings.save("vxif_WMP.ini", "Artist", "Bj rk", "426AC3B6726B");
  pattern("Play Artist (Bj rk|Blue)", "Artist VR");
  pattern("Play Album (Night)", "Album VR");
  ask("play artist bjork");
  house.settings.clear("vxif_WMP.ini", "Artist");
  pattern("", "Album VR");
  pattern("Play Artist (Grey)", "Artist VR");
  worker.step();
  EXPECT_THAT(answers, ElementsAre("Play Artist Bj rk")) << "it is made from copies";
  EXPECT_THAT(of("play album night"), ElementsAre("Play Album Night"));
  ASSERT_EQ(grammar.entries().size(), 1U);
  grammar.want();
  worker.step();
  EXPECT_THAT(of("play artist bjork"), IsEmpty());
  EXPECT_THAT(of("play album night"), IsEmpty());
  EXPECT_THAT(of("play artist grey"), ElementsAre("Play Artist Grey"));
}

TEST_F(GrammarOfTheHouse, ItsEndWaitsForNothing) {
  SteppedWorker later;
  {
    HouseGrammar other(house, later);
    pattern("Play (Blue)");
    other.ask([&] { answers.emplace_back("asked"); });
  }
  EXPECT_ANY_THROW(later.step()) << "what nobody waits for any more is not made";
  EXPECT_THAT(answers, IsEmpty());
}

TEST_F(GrammarOfTheHouse, IsMadeOnAThreadOfItsOwn) {
  bus::PollLoop loop;
  WorkerThread thread(loop);
  {
    HouseGrammar other(house, thread);
    pattern("Play (Blue)");
    other.ask([&] { answers.emplace_back(other.made() ? "made" : "not made"); });
    EXPECT_THAT(answers, IsEmpty()) << "the loop hands it over";
    ASSERT_TRUE(support::Eventually([&] {
      loop.turn(std::chrono::milliseconds(20));
      return !answers.empty();
    }));
    EXPECT_THAT(answers, ElementsAre("made"));
    pattern("Play (Red)");
    other.want();
  }  // in the middle of it
}

TEST_F(GrammarOfTheHouse, ACategoryWithoutNamesSaysNothing) {
  for (const char* text : {"Play Album )", "Play [PlayList] )"}) {
    pattern(text);
    ASSERT_EQ(grammar.entries().size(), 1U);
    EXPECT_THAT(grammar.entries()[0].pattern->faults(), IsEmpty()) << text;
    EXPECT_THAT(grammar.now()->grammar.starts(), testing::SizeIs(1));
    grammar.want();
    if (worker.waiting()) worker.step();
    EXPECT_THAT(of("play album"), IsEmpty());
    EXPECT_THAT(of("play"), IsEmpty());
  }
  pattern("Play Record )");
  EXPECT_THAT(grammar.entries()[0].pattern->faults(), testing::SizeIs(1))
      << "somebody's own is another thing";
}

TEST_F(GrammarOfTheHouse, TellsWhichEventCannotBeListenedFor) {
  std::string foolish;
  for (int i = 0; i < 1000; ++i) foolish += "[a] ";
  pattern(foolish + "b", "Foolish");
  pattern("Play (Blue)", "Good");
  ask("play blue");
  worker.step();
  const std::int32_t id = house.events.byName("Foolish")->id;
  EXPECT_THAT(grammar.troubles(id),
              ElementsAre("It is too long to be listened for: what it says can only be typed"));
  EXPECT_THAT(grammar.troubles(house.events.byName("Good")->id), IsEmpty());
  EXPECT_THAT(grammar.made()->audible.leftOut, ElementsAre(id));
}

}  // namespace
}  // namespace standin
