#include "studyarea/kv_study_area.h"

#include <array>

#include "collections/collection_view.h"
#include "items/metadata_exchange.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr LayerEditMessages kLayerEditMessages = {messages::kSetStudyAreaLayerFile,
                                                  messages::kSetStudyAreaGuid};

constexpr char kComponentName[] = "KVDM";
constexpr char kTableBaseName[] = "Table";
constexpr char kMissingPropertiesText[] = "102";

// The properties that travel with the layer's metadata.
struct ExchangedProperty {
  const char* path;
  const char* property;
};
constexpr std::array kExchangedProperties = {
    ExchangedProperty{metadata_paths::kType, "TYPE"},
    ExchangedProperty{metadata_paths::kMainLayer, "MAINLAYER"},
    ExchangedProperty{metadata_paths::kFeaturesList, "FEATURESLIST"},
};

}  // namespace

KVStudyArea::KVStudyArea(std::shared_ptr<GisCore> gis_core)
    : gis_core_(std::move(gis_core)),
      view_(ReportStyle::kShownIfBound),
      layer_edit_(*this, view_, kLayerEditMessages) {}

std::string KVStudyArea::Name() { return UnwrapName(view_.Text(attributes::kName)); }

void KVStudyArea::SetName(std::string_view name) {
  guard::Reported(view_.reporter(), messages::kRenameStudyArea, [&] {
    if (!view_.FullyBound()) return;
    const auto study_areas = view_.data_manager()->StudyAreaCollection();
    if (Required(study_areas).StudyAreaExists(name)) return;
    view_.SetAndFlush(attributes::kName, WrapName(name));
  });
}

std::string KVStudyArea::LayerFile() {
  return view_.FullyBound() ? view_.TextOrNothing(attributes::kLayerFile) : std::string();
}

std::string KVStudyArea::StudyAreaDir() { return view_.TextOrNothing(attributes::kDirName); }

void KVStudyArea::SetStudyAreaDir(std::string_view folder) {
  view_.Change(attributes::kDirName, folder, messages::kSetStudyAreaDir);
}

std::string KVStudyArea::Comments() {
  return guard::Quiet(view_.log(), [&] { return view_.Comments(); });
}

void KVStudyArea::SetComments(std::string_view comments) {
  guard::Handled(
      view_.log(), [&](const RuntimeError& error) { ShowPlain(error.what()); },
      [&] { view_.SetComments(comments); });
}

std::string KVStudyArea::Dataset() {
  return guard::Reported(view_.reporter(), messages::kStudyAreaDataset,
                         [&] { return UnwrapName(view_.Text(attributes::kDataset)); });
}

void KVStudyArea::SetDataset(std::string_view dataset) {
  view_.Change(attributes::kDataset, WrapName(dataset), messages::kSetStudyAreaDataset);
}

std::string KVStudyArea::GUID() {
  return guard::Reported(view_.reporter(), messages::kStudyAreaGuid,
                         [&] { return view_.Text(attributes::kGuid); });
}

Value KVStudyArea::GetProperty(std::string_view name) {
  const Value nothing("");
  const auto value = guard::Quiet(view_.log(), [&]() -> Value {
    if (!view_.node()) return nothing;
    const auto properties = Properties();
    if (!properties) {
      view_.reporter().Report(messages::kCannotFindProperty + std::string(name) +
                              messages::kPropertyEnd);
      return nothing;
    }
    const auto property = properties.Child(tags::kProperty, attributes::kName, name);
    return property ? property.GetAttribute(attributes::kValue) : nothing;
  });
  return value.IsEmpty() ? nothing : value;
}

bool KVStudyArea::SetProperty(std::string_view name, const Value& value) {
  return guard::Quiet(view_.log(), [&] {
    if (!view_.node()) return false;
    const auto properties = Properties();
    if (!properties) return ReportMissingProperties(name);
    auto property = properties.Child(tags::kProperty, attributes::kName, name);
    if (property) {
      // A changed value is saved by whatever saves next
      // (StudyAreaPropertiesTest.ChangingAPropertyDoesNotSave).
      property.SetAttribute(attributes::kValue, value);
      return true;
    }
    property = properties.CreateNear(tags::kProperty);
    property.SetAttribute(attributes::kName, name);
    property.SetAttribute(attributes::kValue, value);
    properties.Append(property);
    view_.Flush();
    return true;
  });
}

xml::Element KVStudyArea::Properties() const {
  return view_.node().Child(tags::kStudyAreaProperties);
}

bool KVStudyArea::ReportMissingProperties(std::string_view name) {
  const auto resources = Required(view_.data_manager()).Resources();
  ShowPlain(Required(resources).FindString(kMissingPropertiesText));
  view_.reporter().Report(messages::kCannotSetProperty + std::string(name) +
                          messages::kPropertyEnd);
  return false;
}

void KVStudyArea::ShowPlain(std::string_view text) {
  if (!view_.data_manager()) return;
  guard::Quiet(view_.log(), [&] {
    view_.data_manager()->Services().message_box->Show(text, kComponentName, MessageStyle::kPlain);
  });
}

std::string KVStudyArea::TablesDir() {
  return guard::Reported(view_.reporter(), messages::kStudyAreaTablesDir, [&] {
    return view_.node() ? StudyAreaDir() + sDefaultDirNames::kTables + "\\" : std::string();
  });
}

std::string KVStudyArea::FreeTablePath() {
  return guard::Reported(view_.reporter(), messages::kFreeTablePath, [&] {
    const auto folder = TablesDir();
    auto& files = *Required(view_.data_manager()).Services().files;
    return CollapseBackslashes(folder + "\\" + files.FreeFileName(folder, kTableBaseName));
  });
}

void KVStudyArea::ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  guard::Quiet(view_.log(), [&] {
    const auto document = ReadDocumentOf(metadata, layer_types::kStudyArea);
    if (!document) return;
    for (const auto& [path, property] : kExchangedProperties) {
      SetProperty(property, FirstValue(*document, path));
    }
    layer_edit_.SetGUID(FirstText(*document, metadata_paths::kGuid));
  });
}

void KVStudyArea::ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  ExportDocument(metadata, *gis_core_, view_.log(), [&](NamedValueSet& document) {
    document.PutValue(metadata_paths::kLayerType, layer_types::kStudyArea);
    document.PutValue(metadata_paths::kName, Name());
    document.PutValue(metadata_paths::kGuid, GUID());
    for (const auto& [path, property] : kExchangedProperties) {
      document.PutValue(path, GetProperty(property));
    }
  });
}

std::string KVTablesManager::TablesDir() {
  return guard::Passed([&] {
    return data_manager_ ? CurrentFolder(*data_manager_) + sDefaultDirNames::kTables
                         : std::string();
  });
}

// The folder is looked up afresh at each step.
std::string KVTablesManager::FreeTablePath() {
  return guard::Reported(Reporter{ReportStyle::kByName, data_manager_.get()},
                         messages::kFreeTablePath, [&] {
                           auto& files = *Required(data_manager_).Services().files;
                           CreateFolderPath(files, TablesDir());
                           const auto name = files.FreeFileName(TablesDir(), kTableBaseName);
                           return CollapseBackslashes(TablesDir() + "\\" + name);
                         });
}

}  // namespace kvdm
