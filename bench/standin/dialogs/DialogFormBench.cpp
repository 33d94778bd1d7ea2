#include <benchmark/benchmark.h>

#include "Brief.hpp"
#include "standin/dialogs/DialogForm.hpp"
#include "standin/house/HouseJson.hpp"

// The server's half: from the plug-in's text to what a page is sent, with as many names in each of four
// lists.
namespace {

using standin::DialogForm;

std::string TextOf(std::int64_t count) {
  std::string text = "Media Player Actions\t5\t12\tHelp\t\r\t\t1\t0\tAction\tNo Action\tPlay: Album";
  for (const char* label : {"PlayLists", "Albums", "Artists", "Genres"}) {
    (text += "\r\t\t1\t0\t") += label;
    text += '\t';
    for (std::int64_t i = 0; i < count; ++i) text += "\tThe Name of " + std::to_string(i * 7919 % 10'000'000);
  }
  return text;
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000);
  if (!bench::Brief()) bench->Arg(100'000);
  bench->Unit(benchmark::kMillisecond);
}

void FormFromText(benchmark::State& state) {
  const std::string text = TextOf(state.range(0));
  for ([[maybe_unused]] auto round : state) {
    const DialogForm form(standin::ReadDialogText(text), nullptr);
    benchmark::DoNotOptimize(standin::Dump(form.json("Media Player")));
  }
}
BENCHMARK(FormFromText)->Apply(Sizes);

/// The first search folds the list, the others don't.
void FirstSearch(benchmark::State& state) {
  const std::string text = TextOf(state.range(0));
  for ([[maybe_unused]] auto round : state) {
    state.PauseTiming();
    const auto form = std::make_unique<DialogForm>(standin::ReadDialogText(text), nullptr);
    state.ResumeTiming();
    benchmark::DoNotOptimize(form->options(6, 0, 100, "name 77"));
  }
}
BENCHMARK(FirstSearch)->Apply(Sizes);

void NextSearch(benchmark::State& state) {
  const DialogForm form(standin::ReadDialogText(TextOf(state.range(0))), nullptr);
  for ([[maybe_unused]] auto round : state) benchmark::DoNotOptimize(form.options(6, 0, 100, "name 77"));
}
BENCHMARK(NextSearch)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
