// What the tree does, for callgrind to count its instructions; instruction_costs.py compares them.
//
// The work between two requests to callgrind is one case, of 1,000 items.
#include <valgrind/callgrind.h>

#include <memory>
#include <string>
#include <vector>

#include "benchmarks/ours.h"
#include "benchmarks/workload.h"

namespace kvdm::bench {
namespace {

constexpr std::size_t kItems = 1000;

template <class Work>
void Counted(const char* name, const Work& work) {
  CALLGRIND_ZERO_STATS;
  work();
  CALLGRIND_DUMP_STATS_AT(name);
}

// Each key is found, or none is.
void Find(const Ours& ours, const std::vector<std::string>& keys, bool expected) {
  for (const auto& key : keys) {
    if (static_cast<bool>(ours.FindGuid(key)) != expected) throw std::runtime_error("find");
  }
}

void LookUp(const std::vector<Item>& items) {
  const Ours ours(items);
  const auto guids = Guids(items);
  const auto missing = MissingGuids(kItems);
  Counted("index", [&] { Find(ours, {guids.front()}, true); });
  Counted("find", [&] { Find(ours, guids, true); });
  Counted("find-missing", [&] { Find(ours, missing, false); });
}

void Change(const std::vector<Item>& items) {
  Ours ours(items);
  const auto guids = Guids(items);
  Find(ours, {guids.front()}, true);
  std::vector<Ours::Handle> handles;
  for (const auto& guid : guids) handles.push_back(ours.FindGuid(guid));
  Counted("set", [&] {
    for (const auto& handle : handles) Ours::Set(handle, "D:\\Data\\Elsewhere\\Item.lyr");
  });
  handles.clear();
  std::vector<Item> more;
  for (std::size_t i = 0; i < kItems / 10; ++i) more.push_back(ItemOf(kItems + i));
  Counted("append", [&] {
    for (const Item& item : more) ours.Append(item);
  });
  Counted("remove", [&] {
    for (const auto& guid : guids) ours.Remove(guid);
  });
}

void LoadAndSave(const std::vector<Item>& items) {
  const std::string own = TextOf(items, Form::kOwn);
  const std::string other = TextOf(items, Form::kOther);
  const Ours built(items);
  Counted("save-built", [&] { static_cast<void>(built.Save()); });
  std::unique_ptr<Ours> ours;
  Counted("parse-any", [&] { ours = std::make_unique<Ours>(other); });
  Counted("parse-own", [&] { ours = std::make_unique<Ours>(own); });
  for (std::size_t i = 0; i < kItems; i += 100) Ours::Set(ours->FindGuid(items[i].guid), "other");
  Counted("save-changed", [&] { static_cast<void>(ours->Save()); });
}

}  // namespace
}  // namespace kvdm::bench

int main() {
  const auto items = kvdm::bench::Items(kvdm::bench::kItems);
  kvdm::bench::LookUp(items);
  kvdm::bench::Change(items);
  kvdm::bench::LoadAndSave(items);
}
