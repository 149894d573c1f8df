// Any bytes as a layer's side-car: an analysis takes what it can from it, and what it writes there
// can be read.
#include <kvdm/platform/portable/sidecar_metadata.h>

#include "fuzz/fuzzer.h"
#include "fuzz/world.h"
#include "items/metadata_exchange.h"

namespace kvdm::fuzz {

void Check(std::string_view bytes) {
  World world;
  world.Start();
  world.memory.files->AddFile(R"(D:\Data\a.lyr.xml)", bytes);
  const auto metadata = MakeSidecarMetadata(world.memory.Bundle(), R"(D:\Data\a.lyr)");
  world.manager->AnalysisCollection()->CreateAnalysis("Sales");
  const auto analysis = world.manager->AnalysisCollection()->GetAnalysis("Sales");
  const auto exchange = Query<IKVMetadata>(analysis);
  exchange->ImportMetadata(metadata);
  exchange->ExportMetadata(metadata);
  std::string type;
  MayFail(
      [&] { type = FirstText(Required(metadata->ReadDocument()), metadata_paths::kLayerType); });
  Require(type == "Analysis Layer");
}

}  // namespace kvdm::fuzz
