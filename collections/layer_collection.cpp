#include "collections/layer_collection.h"

#include "util/kvdm_utils.h"
#include "util/tags.h"

namespace kvdm {

std::string LayerCollection::Folder() const {
  return guard::Passed([&] {
    if (!view_.node()) return std::string();
    auto folder = Required(view_.data_manager()).WorkingDirectory() + folder_name_;
    auto& files = *view_.services().files;
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
    return folder;
  });
}

bool LayerCollection::Create(std::string_view name) const {
  return guard::Reported(view_.reporter(), view_.rules().create_failed, [&] {
    if (!view_.node() || Exists(name)) return false;
    const auto base_name = UniqueFileName(*view_.services().files, Folder(), name);
    const auto layer = view_.NewItem(WrapName(name));
    // The folder is asked for again, and made again if it went meanwhile.
    layer->SetAttribute(attributes::kLayerFile, Folder() + "\\" + base_name + ".lyr");
    layer->SetAttribute(attributes::kCreationTime, view_.CreationTime());
    view_.node()->Append(layer);
    return true;
  });
}

bool LayerCollection::Delete(const char* attribute, std::string_view key) const {
  return guard::Reported(view_.reporter(), view_.rules().delete_failed,
                         [&] { return view_.Remove(attribute, key) != nullptr; });
}

bool LayerCollection::Exists(std::string_view name) const {
  return view_.Find(attributes::kName, WrapName(name)) != nullptr;
}

bool LayerCollection::ExistsByGUID(std::string_view guid) const {
  return view_.Find(attributes::kGuid, guid) != nullptr;
}

}  // namespace kvdm
