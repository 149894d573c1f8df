// What does the tree take for its work, beside what one would use instead?
//
// Each row is WORK/PEER/ITEMS; `ops` is how many operations one iteration has. Times are processor
// time of the measuring thread.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "benchmarks/clock.h"
#include "benchmarks/ours.h"
#include "benchmarks/peers.h"

namespace kvdm::bench {
namespace {

template <class Peer>
void Find(benchmark::State& state, const std::vector<std::string>& keys, const Peer& peer,
          typename Peer::Handle (Peer::*find)(const std::string&) const, bool expected) {
  if (static_cast<bool>((peer.*find)(keys.front())) != expected) throw std::runtime_error("find");
  Timed(state, keys.size(), [&] {
    for (const auto& key : keys) benchmark::DoNotOptimize((peer.*find)(key));
  });
}

template <class Peer>
void FindGuid(benchmark::State& state) {
  const auto items = Items(state.range(0));
  Find(state, Guids(items), Peer(items), &Peer::FindGuid, true);
}

template <class Peer>
void FindName(benchmark::State& state) {
  const auto items = Items(state.range(0));
  Find(state, Names(items), Peer(items), &Peer::FindName, true);
}

template <class Peer>
void FindMissing(benchmark::State& state) {
  const auto items = Items(state.range(0));
  Find(state, MissingGuids(items.size()), Peer(items), &Peer::FindGuid, false);
}

template <class Peer, Form form>
void Parse(benchmark::State& state) {
  const std::string text = TextOf(Items(state.range(0)), form);
  state.counters["bytes"] = static_cast<double>(text.size());
  Timed(state, 1, [&] { benchmark::DoNotOptimize(std::make_unique<Peer>(text)); });
}

template <Form form>
void Pass(benchmark::State& state) {
  const std::string text = TextOf(Items(state.range(0)), form);
  Timed(state, 1, [&] { Libxml::Pass(text); });
}

void SaveBuilt(benchmark::State& state) {
  const auto items = Items(state.range(0));
  const std::string value = items.front().layer_file;
  std::unique_ptr<Ours> ours;
  Timed(
      state, 1, [&] { benchmark::DoNotOptimize(ours->Save()); },
      [&] { ours = std::make_unique<Ours>(items); });
}

void SaveBuiltPugi(benchmark::State& state) {
  const Pugi pugi(TextOf(Items(state.range(0)), Form::kOwn));
  Timed(state, 1, [&] { benchmark::DoNotOptimize(pugi.Save()); });
}

// One item in a hundred has another value each time.
void SaveChanged(benchmark::State& state) {
  const auto items = Items(state.range(0));
  const auto guids = Guids(items);
  const Ours ours(TextOf(items, Form::kOwn));
  std::size_t round = 0;
  Timed(
      state, 1, [&] { benchmark::DoNotOptimize(ours.Save()); },
      [&] {
        ++round;
        for (std::size_t i = round % 100; i < guids.size(); i += 100) {
          Ours::Set(ours.FindGuid(guids[i]), "D:\\Data\\" + std::to_string(round));
        }
      });
}

// A tenth of the items comes to those that are there.
template <class Peer>
void Append(benchmark::State& state) {
  const auto items = Items(state.range(0));
  std::vector<Item> more;
  for (std::size_t i = 0; i < items.size() / 10; ++i) more.push_back(ItemOf(items.size() + i));
  std::unique_ptr<Peer> peer;
  Timed(
      state, more.size(),
      [&] {
        for (const Item& item : more) peer->Append(item);
      },
      [&] {
        peer = std::make_unique<Peer>(items);
        benchmark::DoNotOptimize(peer->FindGuid(items.front().guid));
        benchmark::DoNotOptimize(peer->FindName(items.front().name));
      });
}

// A tenth of the items goes, each looked up.
template <class Peer>
void Remove(benchmark::State& state) {
  const auto items = Items(state.range(0));
  auto guids = Guids(items);
  guids.resize(std::max<std::size_t>(1, guids.size() / 10));
  std::unique_ptr<Peer> peer;
  Timed(
      state, guids.size(),
      [&] {
        for (const auto& guid : guids) peer->Remove(guid);
      },
      [&] {
        peer = std::make_unique<Peer>(items);
        benchmark::DoNotOptimize(peer->FindGuid(items.front().guid));
        benchmark::DoNotOptimize(peer->FindName(items.front().name));
      });
}

void Set(benchmark::State& state) {
  const auto items = Items(state.range(0));
  const Ours ours(items);
  std::vector<Ours::Handle> handles;
  for (const auto& guid : Guids(items)) handles.push_back(ours.FindGuid(guid));
  const std::string values[] = {"D:\\Data\\Elsewhere\\Item.lyr", "D:\\Data\\Item.lyr"};
  std::size_t round = 0;
  Timed(state, handles.size(), [&] {
    ++round;
    for (const auto& handle : handles) Ours::Set(handle, values[round % 2]);
  });
}

using Work = void (*)(benchmark::State&);

struct Row {
  const char* name;
  Work work;
};

constexpr Row kRows[] = {
    {"find_guid/ours", FindGuid<Ours>},
    {"find_guid/map", FindGuid<Map>},
    {"find_name/ours", FindName<Ours>},
    {"find_name/map", FindName<Map>},
    {"find_missing/ours", FindMissing<Ours>},
    {"find_missing/map", FindMissing<Map>},
    {"parse_any/ours", Parse<Ours, Form::kOther>},
    {"parse_any/libxml2", Parse<Libxml, Form::kOther>},
    {"parse_any/sax2", Pass<Form::kOther>},
    {"parse_own/ours", Parse<Ours, Form::kOwn>},
    {"parse_own/libxml2", Parse<Libxml, Form::kOwn>},
    {"parse_own/pugixml", Parse<Pugi, Form::kOwn>},
    {"save_built/ours", SaveBuilt},
    {"save_built/pugixml", SaveBuiltPugi},
    {"save_changed/ours", SaveChanged},
    {"append/ours", Append<Ours>},
    {"append/map", Append<Map>},
    {"remove/ours", Remove<Ours>},
    {"remove/map", Remove<Map>},
    {"set/ours", Set},
};

}  // namespace

void RegisterTree(const std::vector<std::int64_t>& sizes) {
  for (const Row& row : kRows) {
    for (const auto size : sizes) {
      benchmark::RegisterBenchmark(row.name, row.work)->Arg(size)->UseManualTime();
    }
  }
}

}  // namespace kvdm::bench
