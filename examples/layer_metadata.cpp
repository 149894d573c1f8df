// Carries an analysis's description from one project to another with the metadata of its layer
// file, and saves the second project's metadata document.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <kvdm/kvdm.h>
#include <kvdm/platform/posix/posix_platform.h>

namespace {

std::shared_ptr<kvdm::IKVDataManager> Start(const kvdm::Platform& platform,
                                            const std::string& directory) {
  const auto host = std::make_shared<kvdm::PropertiesHost>();
  host->Settings()->SetProperty("VELKKVDirectory", directory);
  const auto component = kvdm::CreateObject(kvdm::kDataManagerClass, platform);
  kvdm::Query<kvdm::IKVDMInitialize>(component)->DMInitialize(host);
  return kvdm::Query<kvdm::IKVDataManager>(component);
}

std::shared_ptr<kvdm::IKVAnalysis> CreateSales(kvdm::IKVDataManager& manager) {
  const auto analyses = manager.AnalysisCollection();
  analyses->CreateAnalysis("Sales");
  return analyses->GetAnalysis("Sales");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::cerr << "usage: layer_metadata FOLDER\n", 2;
  const std::string folder = argv[1];
  std::filesystem::create_directories(folder);
  const auto platform = kvdm::MakePosixPlatform({.registry_path = folder + "/registry.db"});

  const auto first = Start(platform, folder + "/first");
  const auto sales = CreateSales(*first);
  sales->SetParameter("Radius", "500");
  sales->SetComments("Shops within\r\n500 metres");
  const auto metadata = kvdm::MakeSidecarMetadata(platform, sales->LayerFile());
  kvdm::Query<kvdm::IKVMetadata>(sales)->ExportMetadata(metadata);

  const auto second = Start(platform, folder + "/second");
  const auto copy = CreateSales(*second);
  kvdm::Query<kvdm::IKVMetadata>(copy)->ImportMetadata(metadata);

  // The one value that a host keeps in its saved document.
  const auto saved = std::make_shared<kvdm::VariantList>();
  kvdm::Query<kvdm::IPersistVariant>(second)->Save(saved);
  std::ofstream(folder + "/second.xml") << kvdm::ToText(saved->Values().front());

  std::cout << "radius " << copy->GetParameter("Radius") << ", identifier " << copy->AnalysisGUID()
            << '\n';
  return copy->AnalysisGUID() == sales->AnalysisGUID() && copy->GetParameter("Radius") == "500" ? 0
                                                                                                : 1;
}
