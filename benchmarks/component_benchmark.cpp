// What do a list of names and a look-up take through the public interfaces?
#include <benchmark/benchmark.h>

#include "benchmarks/clock.h"
#include "benchmarks/peers.h"
#include "tests/test_world.h"

namespace kvdm::bench {
namespace {

class World {
 public:
  explicit World(const std::vector<Item>& items) {
    world_.LoadMetadata(TextOf(items, Form::kOwn));
    analyses_ = world_.manager->AnalysisCollection();
  }
  IKVAnalysisCollection& operator*() const { return *analyses_; }
  IKVAnalysisCollection* operator->() const { return analyses_.get(); }

 private:
  TestWorld world_;
  std::shared_ptr<IKVAnalysisCollection> analyses_;
};

void ListOurs(benchmark::State& state) {
  const World world(Items(state.range(0)));
  Timed(state, state.range(0), [&] { benchmark::DoNotOptimize(world->AnalysesList()); });
}

void ListMap(benchmark::State& state) {
  const Map map(Items(state.range(0)));
  Timed(state, state.range(0), [&] { benchmark::DoNotOptimize(map.Names()); });
}

void GetOurs(benchmark::State& state) {
  const auto items = Items(state.range(0));
  const World world(items);
  const auto guids = Guids(items);
  if (!world->GetAnalysisByGUID(guids.front())) throw std::runtime_error("find");
  Timed(state, guids.size(), [&] {
    for (const auto& guid : guids) benchmark::DoNotOptimize(world->GetAnalysisByGUID(guid));
  });
}

}  // namespace

void RegisterComponent(const std::vector<std::int64_t>& sizes) {
  for (const auto size : sizes) {
    benchmark::RegisterBenchmark("analyses_list/ours", ListOurs)->Arg(size)->UseManualTime();
    benchmark::RegisterBenchmark("analyses_list/map", ListMap)->Arg(size)->UseManualTime();
    benchmark::RegisterBenchmark("get_by_guid/ours", GetOurs)->Arg(size)->UseManualTime();
  }
}

}  // namespace kvdm::bench
