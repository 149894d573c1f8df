// Opens the metadata document in a file with the DLL, changes it if asked to, and saves it to the
// file.
//
//   through_dll FILE WORKING_DIRECTORY [NAME]
//
// Prints the names of the analyses that it finds; then creates an analysis and a customer layer
// called NAME.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <kvdm/kvdm.h>

#include "platform/windows/text.h"
#include "tests/boundary/client/dll.h"
#include "tests/boundary/client/pinned_system.h"
#include "tests/boundary/client/sibling_classes.h"
#include "tests/platform/windows/registry_sandbox.h"

namespace kvdm {
namespace {

std::string ContentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Create(IKVDataManager& manager, const std::string& name) {
  manager.AnalysisCollection()->CreateAnalysis(name);
  const auto analysis = manager.AnalysisCollection()->GetAnalysis(name);
  analysis->SetComments("made by the DLL\r\n\u5927");
  analysis->SetParameter("radius", "5 <km>");
  manager.CustLayerCollection()->CreateCustLayer(name);
  manager.CustLayerCollection()->GetCustLayer(name)->SetNameField("\u00DCber \"x\"");
}

// Creates nothing when `name` is "".
void Rewrite(const char* path, const std::string& working_directory, const std::string& name) {
  const auto host = std::make_shared<PropertiesHost>();
  host->Settings()->SetProperty("VELKKVDirectory", working_directory);
  const auto manager = Query<IKVDataManager>(CreateObject(kDataManagerClass, {}));
  Query<IKVDMInitialize>(manager)->DMInitialize(host);
  const auto persistence = Query<IPersistVariant>(manager);
  persistence->Load(std::make_shared<VariantList>(std::vector<Value>{ContentOf(path)}));
  const NameListRef names = manager->AnalysisCollection()->AnalysesList();
  for (const Value& found : *names) std::cout << ToText(found) << "\n";
  if (!name.empty()) Create(*manager, name);
  const auto saved = std::make_shared<VariantList>();
  persistence->Save(saved);
  std::ofstream(path, std::ios::binary) << ToText(saved->Values().at(0));
}

}  // namespace
}  // namespace kvdm

int main(int count, char** arguments) {
  using namespace kvdm;
  if (count < 3) return EXIT_FAILURE;
  const client::Apartment apartment;
  const client::SiblingClasses siblings([](const std::string& number) { return number; });
  const RegistrySandbox registry;
  const client::PinnedSystem pinned([](const std::string& text, const std::string&, int) {
    std::cout << "message: " << text << "\n";
  });
  Rewrite(arguments[1], FromAnsi(arguments[2]), count > 3 ? FromAnsi(arguments[3]) : "");
  return EXIT_SUCCESS;
}
