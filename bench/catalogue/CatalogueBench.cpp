#include <algorithm>

#include "BenchLibrary.hpp"
#include "Ratio.hpp"
#include "catalogue/MediaKey.hpp"

namespace {

using bench::BenchHouse;
using bench::BenchLibrary;

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}

/// The first read of a category, with an empty cross-reference; `ratio` to a plain sort of the same names.
void GetGroupListCold(benchmark::State& state) {
  BenchLibrary library(static_cast<std::size_t>(state.range(0)));
  BenchHouse house(library);
  base::TextListRef list;
  std::vector<std::string> sorted;
  bench::Compare(
      state, static_cast<double>(state.range(0)),
      [&] { benchmark::DoNotOptimize(house.catalogue->GetGroupList("Album", list, "")); },
      [&] {
        sorted = library.names();
        std::sort(sorted.begin(), sorted.end());
        house.forget();
      });
}
BENCHMARK(GetGroupListCold)->Apply(Sizes)->UseManualTime();

/// A read after the library's change: the names are known to the cross-reference.
void GetGroupListStale(benchmark::State& state) {
  BenchLibrary library(static_cast<std::size_t>(state.range(0)));
  BenchHouse house(library);
  base::TextListRef list;
  std::vector<std::string> sorted;
  house.catalogue->GetGroupList("Album", list, "");
  bench::Compare(
      state, static_cast<double>(state.range(0)),
      [&] {
        house.stale.markCategories();
        benchmark::DoNotOptimize(house.catalogue->GetGroupList("Album", list, ""));
      },
      [&] {
        sorted = library.names();
        std::sort(sorted.begin(), sorted.end());
      });
}
BENCHMARK(GetGroupListStale)->Apply(Sizes)->UseManualTime();

void GetGroupListWarm(benchmark::State& state) {
  BenchLibrary library(static_cast<std::size_t>(state.range(0)));
  BenchHouse house(library);
  base::TextListRef list;
  house.catalogue->GetGroupList("Album", list, "");
  for ([[maybe_unused]] auto round : state)
    benchmark::DoNotOptimize(house.catalogue->GetGroupList("Album", list, ""));
}
BENCHMARK(GetGroupListWarm)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

/// Per member that the walk registers: its counter ends it behind 32,767.
void GetGroupItemsMediaLibrary(benchmark::State& state) {
  BenchLibrary library(static_cast<std::size_t>(state.range(0)));
  BenchHouse house(library);
  player::PlaylistRef group;
  for ([[maybe_unused]] auto round : state)
    benchmark::DoNotOptimize(house.catalogue->GetGroupItems("Media Library", "", group));
  // The walk's own count: the last one counted is the one behind which the counter ends.
  const std::int64_t walked = std::min<std::int64_t>(state.range(0), 32'768);
  state.counters["s_per_member"] =
      benchmark::Counter(static_cast<double>(walked),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.SetLabel("walked " + std::to_string(walked) + " of " + std::to_string(state.range(0)));
}
BENCHMARK(GetGroupItemsMediaLibrary)->Apply(Sizes);

/// `ratio` is to forgetting the table again.
void AddNameXref(benchmark::State& state) {
  BenchLibrary library(static_cast<std::size_t>(state.range(0)));
  BenchHouse house(library);
  std::string key;
  bench::Compare(
      state, static_cast<double>(state.range(0)),
      [&] {
        for (const std::string& name : library.names()) house.xref->AddNameXref("Album", name, key);
      },
      [&] { house.forget(); });
}
BENCHMARK(AddNameXref)->Apply(Sizes)->UseManualTime();

void LoadNameTable(benchmark::State& state) {
  BenchLibrary library(1);
  BenchHouse house(library);
  std::string key;
  std::int64_t entries = 0;
  for (const std::string& name : bench::Names(static_cast<std::size_t>(state.range(0)) * 3)) {
    if (catalogue::MakeMediaKey(name, key)) continue;
    if (!house.silent->section.empty()) house.silent->section += '\0';
    house.silent->section += key + "=" + catalogue::HexEncodeName(name);
    ++entries;
  }
  // The host gives the same section four times and an old one, which holds no entries of the old form.
  for ([[maybe_unused]] auto round : state) house.xref->LoadNameTable();
  state.counters["s_per_entry"] =
      benchmark::Counter(static_cast<double>(entries) * 4,
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(LoadNameTable)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
