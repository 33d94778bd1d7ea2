#include <benchmark/benchmark.h>

#include <chrono>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Array;

constexpr int kTitles = 10'000;

std::shared_ptr<support::TableOf> MakeObject() {
  return support::ObjectOf(
      "Bench", {Operation("Setting", {Text("section"), Text("key"), Text("fallback", "")}, Type::kText,
                          [](Args& args) { return args[2]; }),
                Operation("Titles", {}, Type::kTextList, [] {
                  Array titles;
                  for (int i = 0; i < kTitles; ++i) titles.emplace_back("Title number " + std::to_string(i));
                  return titles;
                })});
}

/// An object served by another thread over a bus of its own, beside the same object in process.
struct Bench {
  Bench() { CallOnce(*remote); }

  static void CallOnce(base::Object& object) {
    benchmark::DoNotOptimize(object.invoke("Setting", "Settings", "Volume", "50"));
  }

  support::BusDaemon daemon;
  std::shared_ptr<support::TableOf> local = MakeObject();
  support::BusPeer peer{daemon.address(), [this](bus::Connection& connection, bus::PollLoop&) {
                          connection.exportObject("/bench", local);
                        }};
  bus::PollLoop loop;
  bus::Connection connection{loop, daemon.address()};
  base::ObjectRef remote = connection.proxy(peer.uniqueName(), "/bench");
};

double MicrosecondsOfLocalCall(base::Object& object) {
  constexpr int kRounds = 20'000;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kRounds; ++i) Bench::CallOnce(object);
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() /
         kRounds;
}

void CallInProcess(benchmark::State& state) {
  const auto object = MakeObject();
  for (auto _ : state) Bench::CallOnce(*object);
}
BENCHMARK(CallInProcess)->Unit(benchmark::kMicrosecond);

/// The counter "times_local" tells how many calls in process one call over the bus costs.
void CallOverTheBus(benchmark::State& state) {
  Bench bench;
  const auto start = std::chrono::steady_clock::now();
  for (auto _ : state) Bench::CallOnce(*bench.remote);
  const std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
  const double eachCall = spent.count() / static_cast<double>(state.iterations());
  state.counters["us_per_call"] = eachCall;
  state.counters["times_local"] = eachCall / MicrosecondsOfLocalCall(*bench.local);
}
BENCHMARK(CallOverTheBus)->Unit(benchmark::kMicrosecond)->UseRealTime();

void TenThousandTitlesInProcess(benchmark::State& state) {
  const auto object = MakeObject();
  for (auto _ : state) benchmark::DoNotOptimize(object->invoke("Titles"));
  state.SetItemsProcessed(state.iterations() * kTitles);
}
BENCHMARK(TenThousandTitlesInProcess)->Unit(benchmark::kMillisecond);

void TenThousandTitlesOverTheBus(benchmark::State& state) {
  Bench bench;
  for (auto _ : state) benchmark::DoNotOptimize(bench.remote->invoke("Titles"));
  state.SetItemsProcessed(state.iterations() * kTitles);
}
BENCHMARK(TenThousandTitlesOverTheBus)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
