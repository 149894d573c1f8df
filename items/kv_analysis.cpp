#include "items/kv_analysis.h"

#include "items/metadata_exchange.h"
#include "util/kvdm_utils.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr ItemReports kAnalysisReports = {ReportStyle::kByName, messages::kSetParameter};
constexpr LayerEditMessages kLayerEditMessages = {messages::kAnalysisLayerFile,
                                                  messages::kAnalysisGuid};

// The names under which a property set holds what is no parameter.
constexpr char kNameEntry[] = "Name";
constexpr char kCommentsEntry[] = "Comments";

}  // namespace

KVAnalysis::KVAnalysis(std::shared_ptr<GisCore> gis_core)
    : ParameterizedItem(kAnalysisReports),
      gis_core_(std::move(gis_core)),
      layer_edit_(*this, view(), kLayerEditMessages) {}

std::string KVAnalysis::Name() { return UnwrapName(view().Text(attributes::kName)); }

void KVAnalysis::SetName(std::string_view name) {
  guard::Reported(view().reporter(), messages::kRenameAnalysis, [&] {
    if (!view().FullyBound()) return;
    const auto analyses = view().data_manager()->AnalysisCollection();
    if (!Required(analyses).AnalysisExists(name)) view().Set(attributes::kName, WrapName(name));
  });
}

std::string KVAnalysis::LayerFile() { return view().TextOrNothing(attributes::kLayerFile); }

void KVAnalysis::SetLayerFile(std::string_view path) {
  view().SetAndFlush(attributes::kLayerFile, path);
}

std::string KVAnalysis::Comments() {
  return guard::Quiet(view().log(), [&] { return view().Comments(); });
}

void KVAnalysis::SetComments(std::string_view comments) { view().SetComments(comments); }
std::string KVAnalysis::CreationTime() { return view().TextOrNothing(attributes::kCreationTime); }

void KVAnalysis::SetCreationTime(std::string_view time) {
  guard::Quiet(view().log(), [&] { view().Set(attributes::kCreationTime, time); });
}

std::string KVAnalysis::AnalysisDir() { return view().TextOrNothing(attributes::kDirName); }
std::string KVAnalysis::AnalysisGUID() { return view().TextOrNothing(attributes::kGuid); }

bool KVAnalysis::WriteToPropertySet(std::shared_ptr<NamedValueSet>& set) {
  return guard::Quiet(view().log(), [&] {
    if (!set) set = gis_core_->CreateNamedValueSet();
    if (view().node()) {
      for (const auto& parameter : view().node().Children(tags::kParameter)) {
        Required(set).PutValue(ToText(parameter.GetAttribute(attributes::kName)),
                               parameter.GetAttribute(attributes::kValue));
      }
    }
    Required(set).PutValue(kNameEntry, Name());
    set->PutValue(kCommentsEntry, Comments());
    return true;
  });
}

bool KVAnalysis::ReadFromPropertySet(const std::shared_ptr<NamedValueSet>& set) {
  return guard::Quiet(view().log(), [&] {
    if (!set) return false;
    const auto entries = set->ListAll();
    const int count = set->EntryCount();
    for (int i = 0; i < count; ++i) {
      guard::Skipping(view().log(), [&] { ApplyEntry(entries.names.at(i), entries.values.at(i)); });
    }
    return true;
  });
}

void KVAnalysis::ApplyEntry(const std::string& name, const Value& value) {
  if (name == kNameEntry) {
    SetName(ToText(value));
  } else if (name == kCommentsEntry) {
    SetComments(ToText(value));
  } else {
    SetParameter(name, guard::Quiet(view().log(), [&] { return ToText(value); }));
  }
}

void KVAnalysis::ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  ExportDocument(metadata, *gis_core_, view().log(), [&](NamedValueSet& document) {
    document.PutValue(metadata_paths::kLayerType, layer_types::kAnalysis);
    document.PutValue(metadata_paths::kName, Name());
    document.PutValue(metadata_paths::kGuid, AnalysisGUID());
    document.PutValue(metadata_paths::kComments, Comments());
    if (!view().node()) return;
    for (const auto& parameter : view().node().Children(tags::kParameter)) {
      const auto name = ToText(parameter.GetAttribute(attributes::kName));
      document.PutValue(metadata_paths::kAnalysisParameters + name,
                        parameter.GetAttribute(attributes::kValue));
    }
  });
}

void KVAnalysis::ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  std::shared_ptr<NamedValueSet> document;
  guard::Skipping(view().log(),
                  [&] { document = ReadDocumentOf(metadata, layer_types::kAnalysis); });
  if (!document) return;
  guard::Skipping(view().log(),
                  [&] { layer_edit_.SetGUID(FirstText(*document, metadata_paths::kGuid)); });
  guard::Skipping(view().log(),
                  [&] { SetComments(FirstText(*document, metadata_paths::kComments)); });
  guard::Skipping(view().log(), [&] { ImportParameters(*document); });
}

void KVAnalysis::ImportParameters(NamedValueSet& document) {
  constexpr std::string_view kPrefix = metadata_paths::kAnalysisParameters;
  const auto entries = document.ListAll();
  for (std::size_t i = 0; i < entries.names.size(); ++i) {
    const std::string_view path = entries.names[i];
    if (!path.starts_with(kPrefix)) continue;
    guard::Skipping(view().log(), [&] {
      SetParameter(path.substr(kPrefix.size()), ToText(entries.values.at(i)));
    });
  }
}

}  // namespace kvdm
