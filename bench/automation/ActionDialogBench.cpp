#include <algorithm>

#include "Brief.hpp"
#include "automation/ActionDialog.hpp"
#include "catalogue/BenchLibrary.hpp"
#include "catalogue/Ratio.hpp"
#include "pages/BenchPages.hpp"

// The plug-in's half of an action's dialog. Each of its four lists has as many names as the case says.
namespace {

struct Dialogs {
  explicit Dialogs(std::size_t count) : library(count) {
    house.made->playlistLibrary = &playlists;
    house.state.RefreshActions = true;  // a fresh action shows its lists too
  }

  bench::BenchLibrary library;
  bench::BenchPlaylists playlists{library};
  bench::BenchHouse house{library};
  plugin::Settings settings{house.host};
  automation::OpenActionDialog open;
  automation::ActionDropLists lists{*house.catalogue, house.progress, house.loggers, open};
  automation::ActionDialog dialog{
      {lists, open, *house.xref, house.progress, house.host, house.loggers, house.state}};
};

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000);
  if (!bench::Brief()) bench->Arg(100'000);
  bench->Unit(benchmark::kMillisecond)->UseManualTime();
}

/// `ratio`: to a sort of the same names, list by list, and one text of them.
void Measure(benchmark::State& state, Dialogs& made, const std::string& stored, int lists) {
  std::string text;
  std::string joined;
  std::string argument;
  const auto work = [&] {
    argument = stored;
    text = made.dialog.ActionUI(argument);
  };
  work();  // the names are read once and kept
  bench::Compare(state, static_cast<double>(state.range(0)) * lists, work, [&] {
    joined.clear();
    for (int i = 0; i < lists; ++i) {
      std::vector<std::string> sorted = made.library.names();
      std::sort(sorted.begin(), sorted.end());
      for (const std::string& name : sorted) (joined += '\t') += name;
    }
    benchmark::DoNotOptimize(joined.data());
  });
  state.counters["MB"] = static_cast<double>(text.size()) / 1e6;
}

void ActionUI(benchmark::State& state) {
  Dialogs made(static_cast<std::size_t>(state.range(0)));
  Measure(state, made, {}, 4);
}
BENCHMARK(ActionUI)->Apply(Sizes);

/// With the titles of a group of as many.
void ActionUIWithTitles(benchmark::State& state) {
  Dialogs made(static_cast<std::size_t>(state.range(0)));
  const std::string name = made.library.names().front();
  Measure(state, made, "H0\x02H1\x02Play: PlayList\x02" + name + "\x02\x02\x02\x02\x02\x02No Action\x02", 5);
}
BENCHMARK(ActionUIWithTitles)->Apply(Sizes);

/// All the actions that a house has stored, in words.
void ActionUIFormat(benchmark::State& state) {
  Dialogs made(10);
  const int count = bench::Amount(10'000, 100);
  std::vector<std::string> stored;
  for (const std::string& name : bench::Names(static_cast<std::size_t>(count)))
    stored.push_back("Media Player\x02Media Player Actions\x02Play: Album\x02\x02" + name +
                     "\x02\x02\x02"
                     "A Title\x02\x02Shuffle Only\x02");
  for ([[maybe_unused]] auto round : state)
    for (const std::string& action : stored) benchmark::DoNotOptimize(made.dialog.ActionUIFormat(action));
  state.counters["s_each"] =
      benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(ActionUIFormat)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
