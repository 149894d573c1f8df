#include "collections/kv_analysis_collection.h"

#include "items/kv_analysis.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr CollectionRules kAnalysisRules = {
    .tag = tags::kAnalysis,
    .reports = ReportStyle::kByName,
    .list_failed = messages::kAnalysesList,
    .create_failed = messages::kCreateAnalysis,
    .delete_failed = messages::kDeleteAnalysis,
    .get_failed = messages::kGetAnalysis,
};

constexpr char kLayerFileName[] = "Analysis.lyr";

}  // namespace

KVAnalysisCollection::KVAnalysisCollection(std::shared_ptr<GisCore> gis_core)
    : Collection(kAnalysisRules, std::move(gis_core)) {}

NameListRef KVAnalysisCollection::AnalysesList() { return view_.List(attributes::kName); }
NameListRef KVAnalysisCollection::AnalysesGUIDsList() { return view_.List(attributes::kGuid); }

bool KVAnalysisCollection::CreateAnalysis(std::string_view name) {
  std::string folder;
  const bool appended = guard::Reported(view_.reporter(), kAnalysisRules.create_failed, [&] {
    // The test wraps the wrapped name again, so that a name which exists does not stop creation
    // (AnalysisCollectionTest.CreatesASecondAnalysisOfTheSameName).
    if (!view_.node() || AnalysisExists(WrapName(name))) return false;
    folder = AppendAnalysis(name);
    return true;
  });
  return appended &&
         guard::Skipping(view_.log(), [&] { CreateFolderPath(*view_.services().files, folder); });
}

// Appends the analysis's element and returns the path of its folder, which is not made yet.
std::string KVAnalysisCollection::AppendAnalysis(std::string_view name) {
  const auto base =
      CurrentFolder(Required(view_.data_manager())) + sDefaultDirNames::kAnalyses + "\\";
  const auto folder = base + view_.GenerateNewDirName([&] { return base; }, name) + "\\";
  const auto analysis = view_.NewItem(WrapName(name));
  analysis.SetAttribute(attributes::kDirName, folder);
  analysis.SetAttribute(attributes::kLayerFile, folder + kLayerFileName);
  analysis.SetAttribute(attributes::kCreationTime, view_.CreationTime());
  view_.node().Append(analysis);
  return folder;
}

bool KVAnalysisCollection::DeleteAnalysis(std::string_view name) {
  return Delete(attributes::kName, WrapName(name));
}

bool KVAnalysisCollection::DeleteAnalysisByGUID(std::string_view guid) {
  return Delete(attributes::kGuid, guid);
}

bool KVAnalysisCollection::Delete(const char* attribute, std::string_view key) {
  return guard::Reported(view_.reporter(), kAnalysisRules.delete_failed, [&] {
    const auto analysis = view_.Remove(attribute, key);
    if (!analysis) return false;
    view_.DeleteFolder(ToText(analysis.GetAttribute(attributes::kDirName)));
    return true;
  });
}

std::shared_ptr<IKVAnalysis> KVAnalysisCollection::GetAnalysis(std::string_view name) {
  return Get(attributes::kName, WrapName(name));
}

std::shared_ptr<IKVAnalysis> KVAnalysisCollection::GetAnalysisByGUID(std::string_view guid) {
  return Get(attributes::kGuid, guid);
}

std::shared_ptr<IKVAnalysis> KVAnalysisCollection::Get(const char* attribute,
                                                       std::string_view key) {
  return view_.Get<IKVAnalysis>(attribute, key, [&](const xml::Element& element) {
    auto analysis = std::make_shared<KVAnalysis>(view_.gis_core());
    analysis->AttachNode(element);
    analysis->AttachDataManager(view_.data_manager());
    return analysis;
  });
}

bool KVAnalysisCollection::AnalysisExists(std::string_view name) {
  return view_.Find(attributes::kName, WrapName(name)) != nullptr;
}

bool KVAnalysisCollection::AnalysisExistsByGUID(std::string_view guid) {
  return view_.Find(attributes::kGuid, guid) != nullptr;
}

}  // namespace kvdm
