// What a script's steps cost: starting one, asking the house 10,000 times, printing.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "standin/scripts/ScriptRunner.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

/// Answers at once, so that only the way to it is measured.
class Quick : public base::Object {
 public:
  using Object::call;
  base::Value call(std::string_view, base::Args&) override { return std::int32_t{1}; }
  base::Value get(std::string_view) override { return std::int32_t{7}; }
  void put(std::string_view, const base::Value&) override {}
};

struct Stage {
  support::BusDaemon bus;
  support::TempFolder folder;
  bus::PollLoop loop;
  bus::Connection connection{loop, bus.address()};
  standin::House house{folder.path() / "data"};
  standin::PluginKeeper plugin{loop, connection, house, nullptr};
  standin::ScriptRunner runner{
      loop, connection, house, plugin, std::make_shared<Quick>(), {.program = SCRIPT_PROGRAM}};

  std::string run(const std::string& text) {
    runner.start("bench", text);
    while (runner.running()) loop.turn(std::chrono::seconds(1));
    return runner.report(0)->outcome.error;
  }
};

void Run(benchmark::State& state, const std::string& text) {
  Stage stage;
  for (auto each : state) {
    const std::string error = stage.run(text);
    if (!error.empty()) state.SkipWithError(error.c_str());
  }
}

void AnEmptyScript(benchmark::State& state) { Run(state, ""); }
void TenThousandGets(benchmark::State& state) {
  Run(state, "for i = 1, 10000 do house.get(host, 'Volume') end");
}
void TenThousandCalls(benchmark::State& state) {
  Run(state, "for i = 1, 10000 do house.call(host, 'Play', 'Album', i) end");
}
void TenThousandLines(benchmark::State& state) { Run(state, "for i = 1, 10000 do print(i) end"); }

BENCHMARK(AnEmptyScript)->Unit(benchmark::kMillisecond);
BENCHMARK(TenThousandGets)->Unit(benchmark::kMillisecond);
BENCHMARK(TenThousandCalls)->Unit(benchmark::kMillisecond);
BENCHMARK(TenThousandLines)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
