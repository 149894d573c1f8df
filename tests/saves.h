// Tells which operations save.
#pragma once

#include "tests/test_world.h"
#include "util/registry_strings.h"

namespace kvdm {

// Whether `act` writes the study area catalogue to the registry.
template <class Act>
bool Saves(TestWorld& world, Act&& act) {
  world.platform.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue,
                               RegistryType::kText, "");
  act();
  return !world.StoredCatalogue().empty();
}

}  // namespace kvdm
