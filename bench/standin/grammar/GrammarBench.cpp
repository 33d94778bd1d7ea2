#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "Brief.hpp"
#include "catalogue/BenchLibrary.hpp"
#include "catalogue/Ratio.hpp"
#include "standin/grammar/Grammar.hpp"

// What can be said with many names in it. `ratio`: to an index of the same names as they are written, built
// or asked beside it, which knows no other way to say a name and no sentence; growth is linear where it stays
// as it is from line to line.
namespace {

using standin::Grammar;
using standin::Pattern;

std::string PatternOf(const std::vector<std::string>& names) {
  std::string all = "Play Album (";
  for (const std::string& name : names) all += (all.back() == '(' ? "" : "|") + name;
  return all + ")";
}

using Index = std::unordered_map<std::string, std::size_t>;
Index IndexOf(const std::vector<std::string>& names) {
  Index index;
  for (const std::string& name : names) index.try_emplace(standin::SaidWords(name), index.size());
  return index;
}

std::size_t NamesFor(const benchmark::State& state) {
  return static_cast<std::size_t>(bench::Amount(static_cast<int>(state.range(0)), 100));
}

void Build(benchmark::State& state) {
  const std::vector<std::string> names = bench::Names(NamesFor(state));
  const std::string text = PatternOf(names);
  bench::Compare(
      state, static_cast<double>(names.size()),
      [&] {
        const Pattern pattern(text);
        benchmark::DoNotOptimize(Grammar({{1, pattern}}, nullptr));
      },
      [&] { benchmark::DoNotOptimize(IndexOf(names)); });
}

/// A hundred sentences a round.
template <class Ask>
void Asked(benchmark::State& state, const Ask& ask) {
  constexpr std::size_t kSentences = 100;
  const std::vector<std::string> names = bench::Names(NamesFor(state));
  const Pattern pattern(PatternOf(names));
  const Grammar grammar({{1, pattern}}, nullptr);
  const Index index = IndexOf(names);
  const std::size_t step = std::max<std::size_t>(names.size() / kSentences, 1);
  const auto each = [&](auto&& body) {
    for (std::size_t i = 0; i < kSentences; ++i) body(names[i * step % names.size()]);
  };
  bench::Compare(
      state, kSentences, [&] { each([&](const std::string& name) { ask(grammar, name); }); },
      [&] {
        each(
            [&](const std::string& name) { benchmark::DoNotOptimize(index.find(standin::SaidWords(name))); });
      });
}

void Match(benchmark::State& state) {
  Asked(state, [&](const Grammar& grammar, const std::string& name) {
    if (grammar.match("play album " + name).empty()) state.SkipWithError("a name was not found");
  });
}

void NotUnderstood(benchmark::State& state) {
  Asked(state, [](const Grammar& grammar, const std::string& name) {
    benchmark::DoNotOptimize(grammar.match("play album " + name + " please"));
  });
}

void Near(benchmark::State& state) {
  Asked(state, [](const Grammar& grammar, const std::string& name) {
    benchmark::DoNotOptimize(grammar.near("play album " + name + "x", 3));
  });
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK(Build)->Apply(Sizes);
BENCHMARK(Match)->Apply(Sizes);
BENCHMARK(NotUnderstood)->Apply(Sizes);
BENCHMARK(Near)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
