// Any bytes as the preset data file: each listed item has a file.
#include "fuzz/fuzzer.h"
#include "fuzz/world.h"

namespace kvdm::fuzz {

void Check(std::string_view bytes) {
  World world;
  world.StoreText(kPresetDataDirectoryValue, R"(D:\Presets)");
  world.memory.files->AddFile(R"(D:\Presets\PresetData.xml)", bytes);
  world.Start();
  auto& manager = *world.manager;
  for (const auto& name : Listed([&] { return manager.PDataList(); })) {
    const bool can_be_asked_for = name.find('"') == std::string::npos && !name.empty();
    const std::string file = manager.GetPDataFile(name);
    Require(!can_be_asked_for || file.starts_with(R"(D:\Presets\)"));
  }
}

}  // namespace kvdm::fuzz
