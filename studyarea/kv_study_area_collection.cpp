#include "studyarea/kv_study_area_collection.h"

#include "studyarea/kv_study_area.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr CollectionRules kStudyAreaRules = {
    .tag = tags::kStudyArea,
    .reports = ReportStyle::kByName,
    .list_failed = messages::kStudyAreasList,
    .create_failed = messages::kCreateStudyArea,
    .delete_failed = messages::kDeleteStudyArea,
    .get_failed = messages::kGetStudyArea,
};

constexpr char kLayerFileName[] = "StudyArea.lyr";

}  // namespace

KVStudyAreaCollection::KVStudyAreaCollection(std::shared_ptr<GisCore> gis_core)
    : Collection(kStudyAreaRules, std::move(gis_core)) {}

NameListRef KVStudyAreaCollection::StudyAreasList() {
  const auto all = view_.List(attributes::kName);
  if (!all) return nullptr;
  auto listed = std::make_shared<NameList>();
  for (const auto& name : *all) {
    if (name != Value(kUnlistedStudyArea)) listed->Add(name);
  }
  return listed;
}

NameListRef KVStudyAreaCollection::StudyAreasGUIDsList() { return view_.List(attributes::kGuid); }

bool KVStudyAreaCollection::CreateStudyArea(std::string_view name) {
  std::string folder_name;
  const bool appended = guard::Reported(view_.reporter(), kStudyAreaRules.create_failed, [&] {
    if (!view_.node() || StudyAreaExists(name)) return false;
    folder_name = AppendStudyArea(name);
    return true;
  });
  if (!appended) return false;
  auto& files = *view_.services().files;
  guard::Skipping(view_.log(), [&] { CreateFolderUnlessThere(files, StudyAreasFolder()); });
  const bool created =
      guard::Skipping(view_.log(), [&] { files.CreateFolder(FolderOf(folder_name)); });
  guard::Skipping(view_.log(), [&] { view_.data_manager()->Flush(); });
  return created;
}

// Appends the study area's element and returns the name of its folder, which is not made yet. The
// working directory is read afresh for each use: services that are called between may change it.
std::string KVStudyAreaCollection::AppendStudyArea(std::string_view name) {
  auto folder_name = view_.GenerateNewDirName([&] { return StudyAreasFolder(); }, name);
  const auto study_area = view_.NewItem(WrapName(name));
  study_area.SetAttribute(attributes::kDirName, FolderOf(folder_name));
  study_area.SetAttribute(attributes::kLayerFile, FolderOf(folder_name) + kLayerFileName);
  study_area.SetAttribute(attributes::kCreationTime, view_.CreationTime());
  view_.node().Append(study_area);
  study_area.Append(study_area.CreateNear(tags::kStudyAreaProperties));
  return folder_name;
}

std::string KVStudyAreaCollection::FolderOf(const std::string& folder_name) const {
  return StudyAreasFolder() + folder_name + "\\";
}

std::string KVStudyAreaCollection::StudyAreasFolder() const {
  return Required(view_.data_manager()).WorkingDirectory() + sDefaultDirNames::kStudyAreas + "\\";
}

bool KVStudyAreaCollection::DeleteStudyArea(std::string_view name) {
  return guard::Reported(view_.reporter(), kStudyAreaRules.delete_failed, [&] {
    if (view_.Unbound()) return false;
    CloseIfCurrent(name);
    return Delete(attributes::kName, WrapName(name), false);
  });
}

bool KVStudyAreaCollection::DeleteStudyAreaByGUID(std::string_view guid) {
  return guard::Reported(view_.reporter(), kStudyAreaRules.delete_failed,
                         [&] { return Delete(attributes::kGuid, guid, true); });
}

void KVStudyAreaCollection::CloseIfCurrent(std::string_view name) {
  const auto host = Required(view_.data_manager()).HostObject();
  const auto state = Required(host).CurrentState();
  if (ToText(Required(state).GetProperty(kStudyAreaNameProperty)) != name) return;
  state->SetProperty(kStudyAreaNameProperty, "");
}

// By name the folder is DIRNAME itself; by identifier DIRNAME is taken as a path below
// "StudyAreas", which finds nothing for the full path that creation stores
// (StudyAreaDeletionTest.DeletingByGuidLeavesTheFolder).
bool KVStudyAreaCollection::Delete(const char* attribute, std::string_view key,
                                   bool below_study_areas) {
  const auto study_area = view_.Remove(attribute, key);
  if (!study_area) return false;
  const auto folder = ToText(study_area.GetAttribute(attributes::kDirName));
  view_.DeleteFolder(below_study_areas && !folder.empty() ? StudyAreasFolder() + folder : folder);
  Required(view_.data_manager()).Flush();
  return true;
}

std::shared_ptr<IKVStudyArea> KVStudyAreaCollection::GetStudyArea(std::string_view name) {
  return Get(attributes::kName, WrapName(name));
}

std::shared_ptr<IKVStudyArea> KVStudyAreaCollection::GetStudyAreaByGUID(std::string_view guid) {
  return Get(attributes::kGuid, guid);
}

std::shared_ptr<IKVStudyArea> KVStudyAreaCollection::Get(const char* attribute,
                                                         std::string_view key) {
  return view_.Get<IKVStudyArea>(attribute, key, [&](const xml::Element& element) {
    auto study_area = std::make_shared<KVStudyArea>(view_.gis_core());
    study_area->SetNode(element);
    study_area->SetDataManager(view_.data_manager());
    if (view_.data_manager()) view_.data_manager()->Follow(KVStudyArea::Followed(study_area));
    return study_area;
  });
}

bool KVStudyAreaCollection::StudyAreaExists(std::string_view name) {
  return view_.Find(attributes::kName, WrapName(name)) != nullptr;
}

bool KVStudyAreaCollection::StudyAreaExistsByGUID(std::string_view guid) {
  return view_.Find(attributes::kGuid, guid) != nullptr;
}

}  // namespace kvdm
