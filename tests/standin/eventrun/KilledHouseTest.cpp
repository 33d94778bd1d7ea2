// The plug is pulled while events run: what was done is known, and nothing is done again.
#include <gtest/gtest.h>

#include <fstream>

#include "standin/eventrun/EventEngine.hpp"
#include "standin/eventrun/StagedHouse.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/rules/StoredAlarms.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/KilledWhile.hpp"

namespace {

using namespace standin;
using std::chrono::seconds;

constexpr int kRounds = 200;

/// A house on a folder, whose events write what they do into a file.
class Site {
 public:
  explicit Site(const std::filesystem::path& folder, std::int64_t now = support::Utc(2026, 1, 1))
      : house_(folder), rules(house_), history(house_, {.ran = 1'000'000, .dull = 1'000'000}), start_(now) {
    world.onAction = [effects = folder / "effects"](const std::string& words) {
      std::ofstream(effects, std::ios::app) << words << "\n" << std::flush;
    };
  }

 private:
  House house_;

 public:
  RuleStore rules;
  EvaluationStore history;

 private:
  std::int64_t start_;
  StoredAlarms alarms_{house_, history};

 public:
  support::VirtualLoop loop;
  support::HouseClock clock{loop, start_};
  support::StagedWorld world{loop};
  support::StagedWords words;
  EventEngine engine{{loop, rules, world, words, history, clock, &alarms_}, [](std::int32_t) {}};
};

std::size_t LinesOf(const std::filesystem::path& file) {
  std::ifstream in(file);
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(), '\n'));
}

/// All evaluations behind that one, the newest first.
std::vector<Evaluation> NewerThan(const Site& site, std::int64_t known) {
  std::vector<Evaluation> found;
  for (std::int64_t before = 0;; before = found.back().id) {
    const auto page = site.history.page(0, before, 200);
    for (const auto& each : page.evaluations) {
      if (each.evaluation.id <= known) return found;
      found.push_back(each.evaluation);
    }
    if (!page.more) return found;
  }
}

TEST(KilledHouse, DoesNothingTwiceForOneTriggerAndKnowsWhatItHasDone) {
  const support::TempFolder folder;
  const std::filesystem::path effects = folder.path() / "effects";
  {
    Site site(folder.path());
    Rule rule;
    rule.triggers = {PluginTrigger{support::kEnded}};
    rule.actions = {PluginAction{"one"}, PluginAction{"two"}};
    site.rules.make({.name = "Event", .rule = rule});
  }
  std::size_t done = 0;
  std::size_t known = 0;  ///< evaluations
  for (int round = 0; round < kRounds; ++round) {
    const auto last = support::KilledWhile(1 + round % 7, [&](const support::Acknowledge& acknowledge) {
      Site site(folder.path());
      for (int trigger = 1;; ++trigger) {
        site.engine.pluginTriggered(support::kEndedTold);
        acknowledge(trigger);
        site.loop.leap(seconds(5));
      }
    });
    ASSERT_TRUE(last) << "round " << round;
    const std::size_t before = LinesOf(effects);
    EXPECT_LE(before - done, 2U * static_cast<std::size_t>(*last + 1));
    EXPECT_GE(before - done, 2U * static_cast<std::size_t>(*last - 1)) << "what was acknowledged is done";

    Site site(folder.path());
    site.loop.leap(std::chrono::hours(1));
    EXPECT_EQ(LinesOf(effects), before) << "nothing is done again";
    const std::vector<Evaluation> newest = NewerThan(site, 0);
    for (const Evaluation& each : newest) EXPECT_NE(each.outcome, Outcome::kRunning);
    // Evaluations are numbered one by one.
    const std::size_t begun = newest.empty() ? 0 : static_cast<std::size_t>(newest.front().id);
    EXPECT_LE(begun - known, static_cast<std::size_t>(*last + 1)) << "one evaluation for one trigger";
    EXPECT_GE(begun - known, static_cast<std::size_t>(*last - 1)) << "none for less";
    EXPECT_LE(before, 2 * begun) << "what has been done was written down before";
    done = before;
    known = begun;
  }
  EXPECT_GT(done, static_cast<std::size_t>(kRounds));
}

/// How many moments of an alarm have come to these evaluations, and how many actions of them were carried
/// out.
struct Rung {
  std::int64_t moments = 0;
  std::size_t least = 0;  ///< actions
  std::size_t most = 0;
};

Rung RungOf(const std::vector<Evaluation>& evaluations) {
  Rung rung;
  for (const Evaluation& each : evaluations) {
    if (each.outcome == Outcome::kMissed) {
      const std::size_t times = each.why.find(": ");
      rung.moments += times == std::string::npos ? 1 : std::stoi(each.why.substr(times + 2));
      continue;
    }
    ++rung.moments;
    ++rung.most;
    if (each.outcome == Outcome::kDone) ++rung.least;
  }
  return rung;
}

TEST(KilledHouse, RingsEachAlarmOnceOrTellsThatItWasMissed) {
  constexpr std::int64_t kOff = 150'000;  // milliseconds that the house is off between its runs
  const support::TempFolder folder;
  const std::filesystem::path effects = folder.path() / "effects";
  const std::int64_t begin = support::Utc(2026, 1, 1) + 30'000;
  std::int64_t now = begin;
  {
    Site site(folder.path(), now);
    Rule rule;
    rule.triggers = {EveryTrigger{1}};
    rule.actions = {PluginAction{"ring"}};
    site.rules.make({.name = "Event", .rule = rule});
  }
  std::int64_t counted = 0;  ///< moments of the alarm
  std::size_t done = 0;
  std::int64_t known = 0;
  for (int round = 0; round < kRounds; ++round) {
    now += kOff;
    const auto last = support::KilledWhile(1 + round % 7, [&](const support::Acknowledge& acknowledge) {
      Site site(folder.path(), now);
      site.engine.houseStarted();
      for (int minute = 1;; ++minute) {
        site.loop.leap(std::chrono::minutes(1));
        acknowledge(minute);
      }
    });
    ASSERT_TRUE(last) << "round " << round;
    now += *last * std::int64_t{60'000} + kOff;
    Site site(folder.path(), now);
    site.engine.houseStarted();
    site.loop.leap(seconds(1));
    now = site.clock.now();
    const std::vector<Evaluation> fresh = NewerThan(site, known);
    ASSERT_FALSE(fresh.empty());
    known = fresh.front().id;
    const Rung rung = RungOf(fresh);
    counted += rung.moments;
    ASSERT_EQ(counted, (now - begin + 30'000) / 60'000) << "round " << round;
    const std::size_t before = LinesOf(effects);
    EXPECT_GE(before - done, rung.least);
    EXPECT_LE(before - done, rung.most) << "none rings that isn't known";
    done = before;
  }
}

}  // namespace
