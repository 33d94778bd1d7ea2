#include <cstring>

#include "BenchLibrary.hpp"
#include "Ratio.hpp"
#include "web/Concatenate.hpp"
#include "web/PageForm.hpp"
#include "web/UtilityModule.hpp"

// The text tools at 100,000 entries: bytes of the result a second, and `ratio` to a plain copy of it.
namespace {

constexpr std::size_t kEntries = 100'000;

/// Measures `work`, whose result's bytes `result` holds afterwards.
template <class Work>
void AgainstCopy(benchmark::State& state, std::string& result, Work&& work) {
  work();
  std::string copy(result.size(), '\0');
  bench::Compare(state, kEntries, work, [&] {
    std::memcpy(copy.data(), result.data(), result.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  });
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * result.size()));
}

std::string Joined(const base::TextList& list) {
  std::string all;
  for (const std::string& text : list) all += text;
  return all;
}

base::TextListRef MakeList() {
  auto list = std::make_shared<base::TextList>();
  for (std::string& name : bench::Names(kEntries)) list->add(std::move(name));
  return list;
}

void SortCollection(benchmark::State& state) {
  const base::TextListRef list = MakeList();
  std::string bytes = Joined(*list);
  AgainstCopy(state, bytes, [&] {
    base::TextListRef sorted = list;
    web::SortCollection(sorted);
    benchmark::DoNotOptimize(sorted);
  });
}
BENCHMARK(SortCollection)->UseManualTime()->Unit(benchmark::kMillisecond);

void FilterString(benchmark::State& state) {
  const auto names = bench::Names(kEntries);
  std::string bytes;
  for (const std::string& name : names) bytes += name;
  AgainstCopy(state, bytes, [&] {
    for (std::string text : names) benchmark::DoNotOptimize(web::FilterString(text, "HTML", " "));
  });
}
BENCHMARK(FilterString)->UseManualTime()->Unit(benchmark::kMillisecond);

void StringAccumulator(benchmark::State& state) {
  const auto names = bench::Names(kEntries);
  std::string result;
  AgainstCopy(state, result, [&] {
    web::StringAccumulator text;
    web::ConcatInit(text);
    for (const std::string& name : names) web::ConcatAdd(text, name);
    result = web::ConcatResult(text);
    web::ConcatInit(text);
  });
}
BENCHMARK(StringAccumulator)->UseManualTime()->Unit(benchmark::kMillisecond);

void FormDropDown(benchmark::State& state) {
  const base::TextListRef list = MakeList();
  web::PageForm page("WMP_PListEdit", [](const base::Failure&, const std::string&) {});
  std::string result;
  AgainstCopy(state, result,
              [&] { result = page.FormDropDown("Album", "Album", "Albums", 10, "none", *list, ""); });
}
BENCHMARK(FormDropDown)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
