#pragma once
#include <cstdlib>

namespace bench {

/// Whether the programs are only to show that they still run (VANTORIX_BENCH_BRIEF is set): a little of
/// everything, no judgement of times.
inline bool Brief() { return std::getenv("VANTORIX_BENCH_BRIEF") != nullptr; }

/// How much of something is measured: `whole`, or `little` in a brief run.
inline int Amount(int whole, int little) { return Brief() ? little : whole; }

}  // namespace bench
