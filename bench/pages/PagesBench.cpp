#include <algorithm>
#include <cstring>

#include "BenchPages.hpp"
#include "catalogue/Ratio.hpp"

// The pages' texts, as posts are answered: `ratio` to a plain copy of the page's bytes, or of the post's
// where the post is the longer text.
namespace {

using bench::BenchPages;

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond)->UseManualTime();
}

/// Measures the answers to a post.
void Answers(benchmark::State& state, BenchPages& pages, const std::string& body) {
  std::string page = pages.editor.MyPagePut(body);
  if (page.find("</form>") == std::string::npos) state.SkipWithError("no page");
  const std::string longer = std::max(page, body, [](const std::string& left, const std::string& right) {
    return left.size() < right.size();
  });
  std::string copy(longer.size(), '\0');
  bench::Compare(
      state, static_cast<double>(state.range(0)), [&] { page = pages.editor.MyPagePut(body); },
      [&] {
        std::memcpy(copy.data(), longer.data(), longer.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
      });
  state.counters["KiB"] = static_cast<double>(longer.size()) / 1024;
}

/// The main page with so many playlists and so many items in the one that is shown.
void MainPage(benchmark::State& state) {
  BenchPages pages(static_cast<std::size_t>(state.range(0)));
  Answers(state, pages, "wmp_page=Main_Page&PlayList=x&button=Refresh");
}
BENCHMARK(MainPage)->Apply(Sizes);

/// The add page with so many albums and so many titles of the one that is chosen.
void AddPage(benchmark::State& state) {
  BenchPages pages(static_cast<std::size_t>(state.range(0)));
  Answers(state, pages, "wmp_page=Add_Page&PlayList=x&Add_from=Album&Albums=y&button=Refresh");
}
BENCHMARK(AddPage)->Apply(Sizes);

/// A form of so many pairs, of which the page knows one in two. The host's log takes the others.
void LongPost(benchmark::State& state) {
  BenchPages pages(1);
  std::string body = "wmp_page=Main_Page";
  for (std::int64_t i = 0; i < state.range(0) / 2; ++i) body += "&Title=a+title%21&unknown=1";
  Answers(state, pages, body);
}
BENCHMARK(LongPost)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
