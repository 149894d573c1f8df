// Processor time of the measuring thread.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <cstddef>

namespace kvdm::bench {

[[nodiscard]] inline double ThreadSeconds() {
  constexpr double kNanoseconds = 1e-9;
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * kNanoseconds;
}

// Measures `work`, which is `operations` operations; `prepare` is not measured.
template <class Body, class Prepare>
void Timed(benchmark::State& state, std::size_t operations, const Body& work,
           const Prepare& prepare) {
  state.counters["ops"] = static_cast<double>(operations);
  for (auto _ : state) {
    prepare();
    const double start = ThreadSeconds();
    work();
    state.SetIterationTime(ThreadSeconds() - start);
  }
}

template <class Body>
void Timed(benchmark::State& state, std::size_t operations, const Body& work) {
  Timed(state, operations, work, [] {});
}

}  // namespace kvdm::bench
