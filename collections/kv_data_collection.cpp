#include "collections/kv_data_collection.h"

#include "items/kv_data_item.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr CollectionRules kDataItemRules = {
    .tag = tags::kDataItem,
    .reports = ReportStyle::kByNameIfBound,
    .list_failed = messages::kDataList,
    .create_failed = messages::kCreateDataItem,
    .delete_failed = messages::kDeleteDataItem,
    .get_failed = messages::kGetDataItem,
};

constexpr char kFolderName[] = "Data\\";

}  // namespace

KVDataCollection::KVDataCollection(std::shared_ptr<GisCore> gis_core)
    : Collection(kDataItemRules, std::move(gis_core)) {}

std::string KVDataCollection::DataItemsDir() {
  return guard::Reported(view_.reporter(), messages::kDataDir, [&] {
    const auto folder = Required(view_.data_manager()).WorkingDirectory() + kFolderName;
    auto& files = *view_.services().files;
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
    return folder;
  });
}

NameListRef KVDataCollection::DataItemsList() { return List(attributes::kName); }
NameListRef KVDataCollection::DataItemsGUIDsList() { return List(attributes::kGuid); }

NameListRef KVDataCollection::List(const char* attribute) {
  return guard::Reported(view_.reporter(), kDataItemRules.list_failed, [&]() -> NameListRef {
    const auto group = Group(kDataItemRules.list_failed);
    if (!group) return nullptr;
    auto list = std::make_shared<NameList>();
    for (const auto& item : group.Children(kDataItemRules.tag))
      list->Add(item.GetAttribute(attribute));
    return list;
  });
}

bool KVDataCollection::CreateDataItem(std::string_view name) {
  return guard::Reported(view_.reporter(), kDataItemRules.create_failed, [&] {
    if (!view_.node() || view_.Find(attributes::kName, name)) return false;
    const auto item = view_.NewItem(name);
    const auto file = view_.services().files->FreeFileName(DataItemsDir(), name);
    item.SetAttribute(attributes::kFile, file);
    item.SetAttribute(attributes::kPathType, path_types::kRelative);
    view_.node().Append(item);
    view_.data_manager()->Flush();
    return true;
  });
}

bool KVDataCollection::DeleteDataItem(std::string_view name) {
  return Delete(attributes::kName, name);
}

bool KVDataCollection::DeleteDataItemByGUID(std::string_view guid) {
  return Delete(attributes::kGuid, guid);
}

bool KVDataCollection::Delete(const char* attribute, std::string_view key) {
  return guard::Reported(view_.reporter(), kDataItemRules.delete_failed, [&] {
    const auto group = Group(kDataItemRules.delete_failed);
    const auto item = group ? group.Child(kDataItemRules.tag, attribute, key) : nullptr;
    if (!item) return false;
    group.Remove(item);
    if (view_.data_manager()) view_.data_manager()->Flush();
    return true;
  });
}

std::shared_ptr<IKVDataItem> KVDataCollection::GetDataItem(std::string_view name) {
  return view_.Get<IKVDataItem>(attributes::kName, name,
                                [&](const xml::Element& element) { return View(element); });
}

std::shared_ptr<IKVDataItem> KVDataCollection::GetDataItemByGUID(std::string_view guid) {
  return guard::Reported(
      view_.reporter(), kDataItemRules.get_failed, [&]() -> std::shared_ptr<IKVDataItem> {
        const auto group = Group(kDataItemRules.get_failed);
        const auto item =
            group ? group.Child(kDataItemRules.tag, attributes::kGuid, guid) : nullptr;
        return item ? View(item) : nullptr;
      });
}

xml::Element KVDataCollection::Group(const char* message) const {
  if (!view_.node()) return nullptr;
  auto group = view_.node().Child(tags::kDataGroup);
  if (!group) view_.reporter().Report(message);
  return group;
}

std::shared_ptr<IKVDataItem> KVDataCollection::View(const xml::Element& element) {
  auto item = std::make_shared<KVDataItem>();
  item->AttachDataManager(view_.data_manager());
  item->AttachOwner(std::dynamic_pointer_cast<IKVDataCollection>(shared_from_this()));
  item->AttachNode(element);
  return item;
}

// The name is wrapped although data items' names are not stored so
// (DataCollectionTest.ExistsLooksForTheWrappedName).
bool KVDataCollection::DataItemExists(std::string_view name) {
  return view_.Find(attributes::kName, WrapName(name)) != nullptr;
}

bool KVDataCollection::DataItemExistsByGUID(std::string_view guid) {
  return view_.Find(attributes::kGuid, guid) != nullptr;
}

}  // namespace kvdm
