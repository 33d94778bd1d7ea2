#include <optional>

#include "Brief.hpp"
#include "catalogue/Ratio.hpp"
#include "standin/fakes/FakeEventControl.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/routes/EventAnswers.hpp"
#include "standin/rules/Rules.hpp"
#include "standin/rules/Wordings.hpp"
#include "support/TempFolder.hpp"
#include "support/VirtualLoop.hpp"

// The events' list as a page asks for it, with everything worded: `ratio` to a plain dump of the same text.
namespace {

/// A house with events, each with a few of the plug-in's and a few of its own parts.
class Events {
 public:
  explicit Events(int count) {
    for (int i = 0; i < count; ++i) {
      standin::RuledEvent event;
      event.name = "Event " + std::to_string(i);
      event.group = "Group " + std::to_string(i % 20);
      event.rule.triggers = {standin::TimeTrigger{i % 1440, 31},
                             standin::PluginTrigger{Text("Triggers", "Playback Ended", i)}};
      event.rule.conditions = {{standin::PluginCondition{Text("Status", "Playing¦Yes", i)}, false},
                               {standin::WindowCondition{22 * 60, 6 * 60}, true}};
      event.rule.actions = {standin::PluginAction{Text("Actions", "Play: Album¦¦Blue", i)},
                            standin::SpeakAction{"Good night"}, standin::WaitAction{90}};
      standin::Evaluation evaluation;
      evaluation.event = rules_.make(event).id;
      evaluation.trigger = "22:00";
      evaluation.outcome = standin::Outcome::kDone;
      evaluations_.end(evaluation);
    }
    list();
    loop_.advance(std::chrono::seconds(count / 1000 + 1));  // the plug-in has told its words
  }

  std::string list() {
    return standin::EventListText({house_, rules_, evaluations_, words_, control_, scripts_});
  }

 private:
  static std::string Text(const std::string& tab, const std::string& fields, int number) {
    return support::Stored("Media Player¦" + tab + "¦" + fields + "¦" + std::to_string(number));
  }

  support::TempFolder folder_;
  support::VirtualLoop loop_;
  standin::House house_{folder_.path()};
  standin::RuleStore rules_{house_};
  standin::EvaluationStore evaluations_{house_};
  standin::PluginWords plugin_{loop_, [](const auto& wanted, const auto& told) {
                                 standin::PluginWords::Answer answer;
                                 for (const auto& each : wanted)
                                   answer.words.push_back("Media Player " + each.stored.substr(20));
                                 told(answer);
                               }};
  standin::Wordings words_{house_, plugin_};
  support::FakeEventControl control_;
  standin::ScriptStore scripts_{folder_.path() / "scripts"};
};

void TheList(benchmark::State& state) {
  const int count = bench::Amount(static_cast<int>(state.range(0)), 10);
  Events events(count);
  const nlohmann::json same = nlohmann::json::parse(events.list());
  bench::Compare(
      state, count, [&] { benchmark::DoNotOptimize(events.list()); },
      [&] { benchmark::DoNotOptimize(standin::Dump(same)); });
  state.counters["bytes"] = static_cast<double>(standin::Dump(same).size());
}

BENCHMARK(TheList)->Arg(1'000)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
