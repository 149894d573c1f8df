// Any text as the stored catalogue: a new study area is added to what it lists, and both are there
// at the next start.
#include <algorithm>

#include "fuzz/fuzzer.h"
#include "fuzz/world.h"

namespace kvdm::fuzz {
namespace {

std::vector<std::string> Identifiers(World& world) {
  const auto areas = world.manager->StudyAreaCollection();
  return areas ? Listed([&] { return areas->StudyAreasGUIDsList(); }) : std::vector<std::string>();
}

}  // namespace

void Check(std::string_view bytes) {
  World world;
  world.StoreText(kStudyAreaCollectionValue, bytes);
  world.Start();
  const auto before = Identifiers(world);
  const auto areas = world.manager->StudyAreaCollection();
  if (!areas) return;
  bool created = false;
  MayFail([&] { created = areas->CreateStudyArea("New"); });
  for (const auto& name : Listed([&] { return areas->StudyAreasList(); })) {
    MayFail([&] { static_cast<void>(areas->GetStudyArea(name)); });
  }
  if (!created) return;
  world.Start();
  const auto after = Identifiers(world);
  for (const auto& identifier : before) Require(std::ranges::count(after, identifier) > 0);
  Require(world.manager->StudyAreaCollection()->StudyAreaExists("New"));
}

}  // namespace kvdm::fuzz
