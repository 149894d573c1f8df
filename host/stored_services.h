// The services of a system whose registry keeps what it overwrites.
#pragma once

#include <memory>
#include <utility>

#include "host/services.h"
#include "util/registry_strings.h"

namespace kvdm {

// The services on `platform`, whose registry is a `Store`.
template <class Store>
[[nodiscard]] Services ServicesOn(Platform platform) {
  const auto store = std::dynamic_pointer_cast<Store>(platform.registry);
  const auto watched = std::make_shared<WatchedRegistry>(store);
  platform.registry = watched;
  return {std::move(platform), watched, [store] {
            std::vector<PreservedCatalogue> copies;
            for (const auto& copy : store->Preserved(RegistryRoot::kLocalMachine, kRegistryKey,
                                                     kStudyAreaCollectionValue)) {
              copies.push_back({copy.when, copy.value.data});
            }
            return copies;
          }};
}

}  // namespace kvdm
