// Carries an analysis's description from one project to another with the metadata of its layer
// file, and saves the metadata document in a file of its own.
#include <filesystem>
#include <iostream>
#include <string>

#include "datamanager/component.h"
#include "datamanager/interfaces.h"
#include "platform/portable/properties_host.h"
#include "platform/portable/sidecar_metadata.h"
#include "platform/portable/value_file.h"
#include "platform/posix/posix_platform.h"

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
  const auto platform = kvdm::MakePosixPlatform({});

  const auto first = Start(platform, folder + "/first");
  const auto sales = CreateSales(*first);
  sales->SetParameter("Radius", "500");
  sales->SetComments("Shops within\r\n500 metres");
  const auto metadata = std::make_shared<kvdm::SidecarMetadata>(platform.files, platform.xml_parser,
                                                                sales->LayerFile());
  kvdm::Query<kvdm::IKVMetadata>(sales)->ExportMetadata(metadata);

  const auto second = Start(platform, folder + "/second");
  const auto copy = CreateSales(*second);
  kvdm::Query<kvdm::IKVMetadata>(copy)->ImportMetadata(metadata);

  const auto saved = std::make_shared<kvdm::FileVariantStream>(platform.files, platform.xml_parser,
                                                               folder + "/second.values");
  kvdm::Query<kvdm::IPersistVariant>(second)->Save(saved);
  saved->Commit();

  std::cout << "radius " << copy->GetParameter("Radius") << ", identifier " << copy->AnalysisGUID()
            << '\n';
  return copy->AnalysisGUID() == sales->AnalysisGUID() && copy->GetParameter("Radius") == "500" ? 0
                                                                                                : 1;
}
