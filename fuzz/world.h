// A data manager on services in memory, for fuzzers.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/variant_list.h>

#include "datamanager/kv_data_manager.h"
#include "fuzz/fuzzer.h"
#include "platform/memory/memory_platform.h"
#include "util/registry_strings.h"

namespace kvdm::fuzz {

// Runs an operation that may end in a run-time error, and in nothing else.
template <class Act>
void MayFail(Act&& act) {
  try {
    act();
  } catch (const RuntimeError& error) {
    Require(error.number() != 0);
  }
}

struct World {
  World() { host->Settings()->SetProperty("VELKKVDirectory", R"(D:\Data)"); }

  // Starts the data manager, on whatever was stored before.
  void Start() {
    manager = std::make_shared<KVDataManager>(memory.Bundle());
    manager->DMInitialize(host);
  }

  void StoreText(const char* value, std::string_view text) const {
    memory.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, value, RegistryType::kText,
                         text);
  }

  [[nodiscard]] std::string Saved() const {
    const auto stream = std::make_shared<VariantList>();
    manager->Save(stream);
    return ToText(stream->Read());
  }

  void Load(std::string_view text) const {
    manager->Load(std::make_shared<VariantList>(std::vector<Value>{text}));
  }

  MemoryPlatform memory;
  std::shared_ptr<PropertiesHost> host = std::make_shared<PropertiesHost>();
  std::shared_ptr<KVDataManager> manager;
};

// The texts of a list; none of Nothing and of a list that can't be made.
template <class Make>
std::vector<std::string> Listed(Make&& make) {
  std::vector<std::string> texts;
  MayFail([&] {
    const NameListRef list = make();
    if (!list) return;
    for (const Value& value : *list) texts.push_back(value.IsNull() ? "" : ToText(value));
  });
  return texts;
}

}  // namespace kvdm::fuzz
