// The plug is pulled while events run: what was done is known, and nothing is done again.
#include <gtest/gtest.h>

#include <fstream>

#include "standin/eventrun/EventEngine.hpp"
#include "standin/eventrun/StagedHouse.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/RuleStore.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/KilledWhile.hpp"

namespace {

using namespace standin;
using std::chrono::seconds;

constexpr int kRounds = 200;

/// A house on a folder, whose events write what they do into a file.
class Site {
 public:
  explicit Site(const std::filesystem::path& folder)
      : house_(folder), rules(house_), history(house_, {.ran = 1'000'000, .dull = 1'000'000}) {
    world.onAction = [effects = folder / "effects"](const std::string& words) {
      std::ofstream(effects, std::ios::app) << words << "\n" << std::flush;
    };
  }

 private:
  House house_;

 public:
  RuleStore rules;
  EvaluationStore history;
  support::VirtualLoop loop;
  support::HouseClock clock{loop, support::Utc(2026, 1, 1)};
  support::StagedWorld world{loop};
  support::StagedWords words;
  EventEngine engine{{loop, rules, world, words, history, clock}, [](std::int32_t) {}};
};

std::size_t LinesOf(const std::filesystem::path& file) {
  std::ifstream in(file);
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(), '\n'));
}

/// The newest evaluations, more than a round has.
std::vector<Evaluation> Newest(const Site& site) {
  std::vector<Evaluation> newest;
  for (const auto& each : site.history.page(0, 0, 50).evaluations) newest.push_back(each.evaluation);
  return newest;
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

    Site site(folder.path());
    site.loop.leap(std::chrono::hours(1));
    EXPECT_EQ(LinesOf(effects), before) << "nothing is done again";
    const std::vector<Evaluation> newest = Newest(site);
    for (const Evaluation& each : newest) EXPECT_NE(each.outcome, Outcome::kRunning);
    // Evaluations are numbered one by one.
    const std::size_t begun = newest.empty() ? 0 : static_cast<std::size_t>(newest.front().id);
    EXPECT_LE(begun - known, static_cast<std::size_t>(*last + 1)) << "one evaluation for one trigger";
    EXPECT_LE(before, 2 * begun) << "what has been done was written down before";
    done = before;
    known = begun;
  }
  EXPECT_GT(done, static_cast<std::size_t>(kRounds));
}

}  // namespace
