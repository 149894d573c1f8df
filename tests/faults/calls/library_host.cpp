// A program that uses the library alone: starts the component, makes a study area and an analysis,
// flushes and saves.
//
//   library_host WORKING-DIRECTORY
//
// Prints the names of the study areas and the saved document. The status is 0 when every operation
// answered that it was done and nothing was shown or noted.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/component.h>
#include <kvdm/datamanager/data_manager.h>
#include <kvdm/datamanager/study_areas.h>
#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/variant_list.h>
#include <kvdm/platform/posix/posix_platform.h>

namespace {

bool troubled = false;

void Trouble(std::string_view line) {
  troubled = true;
  std::cerr << line << '\n';
}

kvdm::Platform NoticingPlatform() {
  kvdm::PosixOptions options;
  options.message_box = [](const auto& text, const auto&...) { Trouble(text); };
  options.log = [](const auto& line) { Trouble(line); };
  return kvdm::MakePosixPlatform(options);
}

void Require(bool done, std::string_view what) {
  if (!done) Trouble(what);
}

void MakeItems(kvdm::IKVDataManager& manager, kvdm::PropertiesHost& host) {
  const auto areas = manager.StudyAreaCollection();
  Require(areas && areas->CreateStudyArea("East"), "East was not made.");
  host.CurrentState()->SetProperty("Study Area Name", "East");
  const auto analyses = manager.AnalysisCollection();
  Require(analyses && analyses->CreateAnalysis("Traffic"), "Traffic was not made.");
  const auto traffic = analyses ? analyses->GetAnalysis("Traffic") : nullptr;
  Require(traffic && traffic->SetParameter("Radius", "500"), "Radius was not set.");
}

void PrintState(kvdm::IKVDataManager& manager, const kvdm::VariantList& saved) {
  if (const auto areas = manager.StudyAreaCollection()) {
    if (const auto names = areas->StudyAreasList()) {
      for (const kvdm::Value& name : *names) std::cout << kvdm::ToText(name) << '\n';
    }
  }
  Require(!saved.Values().empty(), "Nothing was saved.");
  for (const kvdm::Value& value : saved.Values()) std::cout << kvdm::ToText(value) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::cerr << "usage: library_host WORKING-DIRECTORY\n", 2;
  try {
    const auto host = std::make_shared<kvdm::PropertiesHost>();
    host->Settings()->SetProperty("VELKKVDirectory", argv[1]);
    const auto component = kvdm::CreateObject(kvdm::kDataManagerClass, NoticingPlatform());
    kvdm::Query<kvdm::IKVDMInitialize>(component)->DMInitialize(host);
    const auto manager = kvdm::Query<kvdm::IKVDataManager>(component);

    MakeItems(*manager, *host);
    manager->Flush();
    const auto stream = std::make_shared<kvdm::VariantList>();
    kvdm::Query<kvdm::IPersistVariant>(component)->Save(stream);
    PrintState(*manager, *stream);
  } catch (const std::exception& error) {
    Trouble(error.what());
  }
  if (!std::cout.flush()) Trouble("Nothing could be printed.");
  return troubled ? EXIT_FAILURE : EXIT_SUCCESS;
}
