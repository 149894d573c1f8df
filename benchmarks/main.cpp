// Runs the benchmarks, with the numbers of items that come after the options.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

namespace kvdm::bench {

void RegisterTree(const std::vector<std::int64_t>& sizes);
void RegisterComponent(const std::vector<std::int64_t>& sizes);

}  // namespace kvdm::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::vector<std::int64_t> sizes;
  for (int i = 1; i < argc; ++i) sizes.push_back(std::strtol(argv[i], nullptr, 10));
  kvdm::bench::RegisterTree(sizes);
  kvdm::bench::RegisterComponent(sizes);
  return benchmark::RunSpecifiedBenchmarks() == 0 ? 1 : 0;
}
