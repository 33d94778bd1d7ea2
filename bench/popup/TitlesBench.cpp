// The menu of a group's titles, as it is made: what a title costs must not grow with their number.
#include <algorithm>

#include "catalogue/Ratio.hpp"
#include "pages/BenchPages.hpp"
#include "ui/popup/PopupLists.hpp"
#include "ui/popup/WindowlessPopup.hpp"

namespace {

/// `ratio` to a plain sort of the same titles.
void BuildMediaListMenu(benchmark::State& state) {
  bench::BenchPages house(static_cast<std::size_t>(state.range(0)));
  ui::WindowlessPopup window;
  ui::PopupMenus menus;
  plugin::LibraryCalls library;
  plugin::MediaEvents events;
  ui::PopupLists lists({window, menus, *house.house.catalogue, house.house.progress, house.calls, library,
                        events, house.house.host});
  std::vector<std::string> sorted;
  bench::Compare(
      state, static_cast<double>(state.range(0)),
      [&] { lists.BuildMediaListMenu("Media Library", "Media Library"); },
      [&] {
        sorted = house.library.names();
        std::sort(sorted.begin(), sorted.end());
      });
  if (menus.list(ui::PopupMenus::kMedia).upperBound() != state.range(0) + 3)
    state.SkipWithError("the menu does not hold the titles");
}
BENCHMARK(BuildMediaListMenu)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(32'000)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace

BENCHMARK_MAIN();
