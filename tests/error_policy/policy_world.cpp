#include "tests/error_policy/policy_world.h"

#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/variant_list.h>

#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"
#include "platform/portable/value_set.h"
#include "platform/xml/limits.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

std::string Items(const std::string& tag, const std::string& name_of_whole) {
  return "<" + tag + " NAME=\"" + name_of_whole +
         "\" GUID=\"{whole}\" DIRNAME=\"D:\\Data\\Some\\Whole\\\"" +
         " LAYERFILE=\"D:\\Data\\Some\\Whole\\x.lyr\"><SAPROPERTIES/><PARAM NAME=\"a\" "
         "VALUE=\"1\"/></" +
         tag + "><" + tag + " NAME=\"_Bare_\"/><" + tag + " GUID=\"{nameless}\"/>";
}

std::string MetadataText() {
  return "<KVDATACOLLECTION><CUSTLAYERCOLLECTION>" + Items("CUSTLAYER", "_Whole_") +
         "</CUSTLAYERCOLLECTION><STORELAYERCOLLECTION>" + Items("STORELAYER", "_Whole_") +
         "</STORELAYERCOLLECTION><ANALYSISCOLLECTION>" + Items("ANALYSIS", "_Whole_") +
         "</ANALYSISCOLLECTION><DATACOLLECTION>" + Items("DATAITEM", "Whole") +
         "<SADATACOLLECTION>" + Items("DATAITEM", "Whole") +
         "</SADATACOLLECTION></DATACOLLECTION></KVDATACOLLECTION>";
}

// A registry that fails where it should only refuse.
class BrokenRegistry : public MemoryRegistry {
 public:
  bool WriteText(RegistryRoot, std::string_view, std::string_view, std::string_view) override {
    throw RuntimeError(kPermissionDenied);
  }
};

// A file system that fails where it should only answer no.
class BrokenFiles : public MemoryFileSystem {
 public:
  bool FolderExists(std::string_view) override { throw RuntimeError(kDeviceUnavailable); }
};

std::string CatalogueText() {
  return "<STUDYAREACOLLECTION>" + Items("STUDYAREA", "_Whole_") + "</STUDYAREACOLLECTION>";
}

}  // namespace

const std::string& TooLong() {
  static const std::string text(xml::kMaxValueBytes + 1, 'x');
  return text;
}

PolicyWorld::PolicyWorld(bool box_too) : platform(Failing(memory.Bundle(), counter)) {
  if (!box_too) platform.message_box = memory.box;
  const auto properties = std::make_shared<PropertiesHost>();
  properties->Settings()->SetProperty("VELKKVDirectory", "D:\\Data");
  properties->CurrentState()->SetProperty("Study Area Name", "Whole");
  host = std::make_shared<FailingHost>(properties, counter);
  memory.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue,
                       RegistryType::kText, CatalogueText());
  memory.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kPresetDataDirectoryValue,
                       RegistryType::kText, "D:\\Presets");
  memory.files->AddFile("D:\\Presets\\PresetData.xml",
                        "<P><DATAITEM NAME=\"Streets\">s.shp</DATAITEM></P>");
  memory.files->AddFile("D:\\Data\\KelvaroTemp\\old.tmp");
  manager = std::make_shared<KVDataManager>(platform);
  manager->DMInitialize(host);
  stream = std::make_shared<FailingVariantStream>(
      std::make_shared<VariantList>(std::vector<Value>{MetadataText()}), counter);
  manager->Load(stream);
  stream = std::make_shared<FailingVariantStream>(std::make_shared<VariantList>(), counter);

  study_areas = manager->StudyAreaCollection();
  analyses = manager->AnalysisCollection();
  store_layers = manager->StoreLayerCollection();
  cust_layers = manager->CustLayerCollection();
  data_items = manager->DataCollection();
  tables = manager->TablesManager();
  whole_area = study_areas->GetStudyArea("Whole");
  bare_area = study_areas->GetStudyArea("Bare");
  nameless_area = study_areas->GetStudyAreaByGUID("{nameless}");
  whole_analysis = analyses->GetAnalysis("Whole");
  bare_analysis = analyses->GetAnalysis("Bare");
  nameless_analysis = analyses->GetAnalysisByGUID("{nameless}");
  whole_store = store_layers->GetStoreLayer("Whole");
  bare_store = store_layers->GetStoreLayer("Bare");
  nameless_store = store_layers->GetStoreLayerByGUID("{nameless}");
  whole_cust = cust_layers->GetCustLayer("Whole");
  bare_cust = cust_layers->GetCustLayer("Bare");
  nameless_cust = cust_layers->GetCustLayerByGUID("{nameless}");
  whole_item = data_items->GetDataItem("Whole");
  bare_item = data_items->GetDataItem("_Bare_");
  nameless_item = data_items->GetDataItemByGUID("{nameless}");
  memory.box->Clear();
}

void PolicyWorld::FailAt(int n) {
  counter->calls = 0;
  counter->fail_at = n;
}

bool PolicyWorld::DocumentsAreSound() {
  FailAt(0);
  const auto saved = std::make_shared<VariantList>();
  manager->Save(saved);
  const auto text = ToText(saved->Read());
  xml::Document metadata;
  xml::Document catalogue;
  const auto stored = ReadRegistryString(*memory.registry, RegistryRoot::kLocalMachine,
                                         kRegistryKey, kStudyAreaCollectionValue);
  return (text.empty() || metadata.LoadXml(*memory.xml_parser, text)) &&
         catalogue.LoadXml(*memory.xml_parser, ToText(stored));
}

void PolicyWorld::SetDirectoryOnBrokenDisk() {
  auto broken = platform;
  broken.files = std::make_shared<BrokenFiles>();
  KVDataManager(broken).SetWorkingDirectory("D:\\Data");
}

bool PolicyWorld::FlushIntoBrokenRegistry() {
  auto broken = platform;
  broken.registry = std::make_shared<BrokenRegistry>();
  return KVDataManager(broken).Flush();
}

void PolicyWorld::LoseMetadata() {
  manager->Load(std::make_shared<VariantList>(std::vector<Value>{"no XML"}));
}

std::shared_ptr<NamedValueSet> PolicyWorld::Entries() const {
  const auto entries = std::make_shared<ValueSet>();
  entries->PutValue("Comments", "from a set");
  entries->PutValue("b", "2");
  return std::make_shared<FailingNamedValueSet>(entries, counter);
}

std::shared_ptr<LayerMetadata> PolicyWorld::Metadata(const char* layer_type) const {
  ValueSet document;
  document.PutValue("Velk/Kelvaro8/LayerType", layer_type);
  document.PutValue("Velk/Kelvaro8/GUID", "{imported}");
  return std::make_shared<FailingLayerMetadata>(std::make_shared<MemoryLayerMetadata>(document),
                                                counter);
}

std::string ResultText(bool result) { return result ? "True" : "False"; }
std::string ResultText(int result) { return std::to_string(result); }
std::string ResultText(const std::string& result) { return "'" + result + "'"; }
std::string ResultText(const Value& result) { return "'" + ToText(result) + "'"; }
std::string ResultText(const NameListRef& result) {
  return result ? "list of " + std::to_string(result->Count()) : "Nothing";
}

}  // namespace kvdm
