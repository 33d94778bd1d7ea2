#include <algorithm>

#include "Brief.hpp"
#include "catalogue/BenchLibrary.hpp"
#include "catalogue/Ratio.hpp"
#include "standin/player/NameList.hpp"
#include "standin/text/Folding.hpp"

// A search among 100,000 names: `ratio` to a plain scan of the same names for one text, which folds nothing
// and knows no words.
namespace {

const auto kNames = static_cast<std::size_t>(bench::Amount(100'000, 1'000));

const standin::NameList& TheNames() {
  static const standin::NameList names(bench::Names(kNames));
  return names;
}

void Find(benchmark::State& state, const std::string& sought) {
  const standin::NameList& names = TheNames();
  bench::Compare(
      state, static_cast<double>(kNames), [&] { benchmark::DoNotOptimize(names.page(sought, 0, 100)); },
      [&] {
        const auto count =
            std::count_if(names.all().begin(), names.all().end(),
                          [&](const std::string& name) { return name.find(sought) != std::string::npos; });
        benchmark::DoNotOptimize(count);
      });
}

void Fold(benchmark::State& state) {
  const std::vector<std::string> names = bench::Names(kNames);
  std::vector<std::string> copies;
  bench::Compare(
      state, static_cast<double>(kNames), [&] { benchmark::DoNotOptimize(standin::NameList(names)); },
      [&] {
        copies = names;
        benchmark::DoNotOptimize(copies);
      });
}

BENCHMARK_CAPTURE(Find, NothingFits, "zzz")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Find, AFewFit, "Name 12345")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Find, AllWordsInAnyOrder, "unplugged 77 live")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Find, EveryNameFits, "e")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Fold)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
