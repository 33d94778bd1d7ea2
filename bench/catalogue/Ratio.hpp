#pragma once
#include <benchmark/benchmark.h>

#include <chrono>

namespace bench {

/// Runs a piece of work and something to compare it with in turn, so that both meet the same machine. The
/// iteration's time is the work's alone.
template <class Work, class Yardstick>
void Compare(benchmark::State& state, double items, Work&& work, Yardstick&& yardstick) {
  using Clock = std::chrono::steady_clock;
  const auto timed = [](auto&& body) {
    const auto start = Clock::now();
    body();
    return std::chrono::duration<double>(Clock::now() - start).count();
  };
  double spent = 0;
  double compared = 0;
  for ([[maybe_unused]] auto round : state) {
    const double now = timed(work);
    state.SetIterationTime(now);
    spent += now;
    compared += timed(yardstick);
  }
  state.counters["ns_per_item"] = spent * 1e9 / (static_cast<double>(state.iterations()) * items);
  state.counters["ratio"] = spent / compared;
}

}  // namespace bench
