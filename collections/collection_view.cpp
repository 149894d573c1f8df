#include "collections/collection_view.h"

#include <kvdm/datamanager/study_areas.h>

#include "platform/file_names.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {

NameListRef CollectionView::List(std::string_view attribute) const {
  return guard::Reported(reporter(), rules_.list_failed, [&]() -> NameListRef {
    if (!node_) return nullptr;
    auto list = std::make_shared<NameList>();
    for (const auto& item : node_.Children(rules_.tag)) {
      list->Add(UnwrapName(ToText(item.GetAttribute(attribute))));
    }
    return list;
  });
}

xml::Element CollectionView::Find(const char* attribute, std::string_view key) const {
  return node_ ? node_.Child(rules_.tag, attribute, key) : nullptr;
}

xml::Element CollectionView::Remove(const char* attribute, std::string_view key) const {
  auto element = Find(attribute, key);
  if (element) node_.Remove(element);
  return element;
}

xml::Element CollectionView::NewItem(std::string_view stored_name) const {
  auto item = node_.CreateNear(rules_.tag);
  item.SetAttribute(attributes::kName, stored_name);
  item.SetAttribute(attributes::kGuid, NewGuidString(*gis_core_));
  return item;
}

std::string CollectionView::GenerateNewDirName(const std::function<std::string()>& parent_folder,
                                               std::string_view base) const {
  return guard::Reported(reporter(), messages::kNewDirName, [&] {
    if (!data_manager_) return std::string();
    // Nearly all names are free, or taken once; a listing is for the others.
    for (const int number : {0, 1}) {
      const std::string candidate = Numbered(base, number);
      if (!services().files->FolderExists(parent_folder() + candidate)) return candidate;
    }
    return services().files->FreeFolderName(parent_folder(), base);
  });
}

void CollectionView::DeleteFolder(const std::string& folder) const {
  if (!folder.empty()) DeleteFolderTree(*services().files, folder, log());
}

std::string CurrentFolder(DataManagerFriend& data_manager) {
  const auto state = Required(data_manager.HostObject()).CurrentState();
  const auto name = ToText(Required(state).GetProperty(kStudyAreaNameProperty));
  if (name.empty()) return data_manager.WorkingDirectory();
  const auto study_area = Required(data_manager.StudyAreaCollection()).GetStudyArea(name);
  return study_area ? study_area->StudyAreaDir() : data_manager.WorkingDirectory();
}

}  // namespace kvdm
