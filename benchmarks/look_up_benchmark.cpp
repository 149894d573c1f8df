// What does a look-up by name cost, and creating and deleting an item, as a collection grows?
#include <benchmark/benchmark.h>

#include <string>

#include "platform/xml/node.h"

namespace kvdm::xml {
namespace {

std::shared_ptr<Element> Item(std::int64_t number) {
  auto item = Element::Create("ANALYSIS");
  item->SetAttribute("NAME", "_Item " + std::to_string(number) + "_");
  return item;
}

std::shared_ptr<Element> Collection(std::int64_t size) {
  auto collection = Element::Create("ANALYSISCOLLECTION");
  for (std::int64_t i = 0; i < size; ++i) collection->Append(Item(i));
  return collection;
}

void LookUp(benchmark::State& state) {
  const auto collection = Collection(state.range(0));
  const std::string name = "_Item " + std::to_string(state.range(0) / 2) + "_";
  for (auto _ : state) benchmark::DoNotOptimize(collection->Child("ANALYSIS", "NAME", name));
}
BENCHMARK(LookUp)->RangeMultiplier(10)->Range(100, 100000);

void AppendAndRemove(benchmark::State& state) {
  const auto collection = Collection(state.range(0));
  benchmark::DoNotOptimize(collection->Child("ANALYSIS", "NAME", "none"));
  for (auto _ : state) {
    const auto item = Item(-1);
    collection->Append(item);
    collection->Remove(item);
  }
}
BENCHMARK(AppendAndRemove)->RangeMultiplier(10)->Range(100, 100000);

}  // namespace
}  // namespace kvdm::xml

BENCHMARK_MAIN();
