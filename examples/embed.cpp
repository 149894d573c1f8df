// Embeds the component: a host with two property sets, a study area, and an analysis with a
// parameter.
#include <iostream>

#include <kvdm/kvdm.h>
#include <kvdm/platform/posix/posix_platform.h>

int main(int argc, char** argv) {
  if (argc != 3) return std::cerr << "usage: embed WORKING-DIRECTORY REGISTRY-FILE\n", 2;
  const auto host = std::make_shared<kvdm::PropertiesHost>();
  host->Settings()->SetProperty("VELKKVDirectory", argv[1]);

  // Without a path for it, the study areas go into the registry that all programs of the user
  // share.
  const auto platform = kvdm::MakePosixPlatform({.registry_path = argv[2]});
  const auto component = kvdm::CreateObject(kvdm::kDataManagerClass, platform);
  kvdm::Query<kvdm::IKVDMInitialize>(component)->DMInitialize(host);
  const auto manager = kvdm::Query<kvdm::IKVDataManager>(component);

  manager->StudyAreaCollection()->CreateStudyArea("North");
  host->CurrentState()->SetProperty("Study Area Name", "North");
  const auto analyses = manager->AnalysisCollection();
  analyses->CreateAnalysis("Sales");
  const auto sales = analyses->GetAnalysis("Sales");
  sales->SetParameter("Radius", "500");
  std::cout << sales->Name() << " goes to " << sales->LayerFile() << '\n';
  return sales->GetParameter("Radius") == "500" ? 0 : 1;
}
