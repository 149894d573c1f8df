// kvdm data: the data items of a project.
#include <algorithm>

#include <kvdm/platform/document_tree.h>

#include "host/commands/groups.h"
#include "host/commands/item_add.h"
#include "host/commands/item_params.h"
#include "platform/xml/document.h"
#include "util/names.h"

namespace kvdm {
namespace {

// "collection" is where new items stand: the component finds them by name. "group" is the
// collection's group of listed items: the component lists them, finds them by identifier and
// deletes them there.
enum class DataPlace { kCollection, kGroup };

struct DataEntry {
  std::string name;
  std::string guid;
  DataPlace place;
  std::shared_ptr<IKVDataItem> item;  // Nothing for one that the component can't reach

  IKVDataItem* operator->() const { return item.get(); }
  operator const std::shared_ptr<IKVDataItem>&() const { return item; }
};

std::shared_ptr<IKVDataCollection> DataCollection(Session& session) {
  if (auto collection = session.Manager().DataCollection()) return collection;
  throw Failure(ExitCode::kRefused,
                "The data item list can't be reached. 'kvdm status' tells more.");
}

std::string AttributeText(const xml::Element& element, const char* name) {
  const Value value = element.GetAttribute(name);
  return value.IsNull() ? "" : ToText(value);
}

// The collection's element in the project as it was opened; Nothing when there is none. The
// component itself has no list of the items in the collection.
xml::Element CollectionElement(Session& session) {
  const auto& values = session.GetProject().values;
  if (values.empty()) return nullptr;
  xml::Document document;
  XmlParser& parser = *session.Component().GetServices().platform.xml_parser;
  if (!document.LoadXml(parser, ToText(values.front()))) return nullptr;
  const auto root = document.DocumentElement();
  return root.Child(tags::kDataCollection);
}

bool HasGroup(Session& session) {
  const auto collection = CollectionElement(session);
  return collection && collection.Child(tags::kDataGroup);
}

// A name that holds a double quote can't be looked for.
std::shared_ptr<IKVDataItem> Reached(IKVDataCollection& collection, const std::string& name,
                                     const std::string& guid) {
  if (name.find('"') != name.npos) return nullptr;
  auto item = collection.GetDataItem(name);
  return item && item->GUID() == guid ? item : nullptr;
}

std::vector<DataEntry> CollectionEntries(Session& session) {
  std::vector<DataEntry> entries;
  const auto element = CollectionElement(session);
  const auto collection = DataCollection(session);
  if (!element) return entries;
  for (const auto& child : element.Children(tags::kDataItem)) {
    const std::string name = AttributeText(child, attributes::kName);
    const std::string guid = AttributeText(child, attributes::kGuid);
    entries.push_back({name, guid, DataPlace::kCollection, Reached(*collection, name, guid)});
  }
  return entries;
}

// The component reports a missing group; to people it is an empty one.
std::vector<DataEntry> GroupEntries(Session& session) {
  std::vector<DataEntry> entries;
  if (!HasGroup(session)) return entries;
  const auto collection = DataCollection(session);
  const auto names = collection->DataItemsList();
  const auto guids = collection->DataItemsGUIDsList();
  for (int i = 1; names && guids && i <= guids->Count(); ++i) {
    const auto text = [i](const NameListRef& list) {
      return list->Item(i).IsNull() ? "" : ToText(list->Item(i));
    };
    auto item = collection->GetDataItemByGUID(text(guids));
    if (item && item->Name() != text(names)) item = nullptr;
    entries.push_back({text(names), text(guids), DataPlace::kGroup, std::move(item)});
  }
  return entries;
}

std::vector<DataEntry> EntriesIn(Session& session, DataPlace place) {
  return place == DataPlace::kCollection ? CollectionEntries(session) : GroupEntries(session);
}

struct DataItemKind : ItemKind<IKVDataItem> {
  using Ref = DataEntry;
  static constexpr char kWord[] = "data item";
  static constexpr char kCommand[] = "data";
  static constexpr char kChosenBy[] = "its {GUID}";

  static std::string NameOf(const Ref& entry) { return entry.item ? entry->Name() : entry.name; }
  static std::string GuidOf(const Ref& entry) { return entry.guid; }
  static Record Columns(const Ref& entry) {
    return {{"place", entry.place == DataPlace::kCollection ? "collection" : "group"},
            {"layer_file", entry.item ? Field(entry->LayerFile()) : Field()}};
  }

  // The items of the collection, as the project was opened, then those of the group.
  static std::vector<Ref> All(Session& session) {
    auto entries = CollectionEntries(session);
    for (auto& entry : GroupEntries(session)) entries.push_back(std::move(entry));
    return entries;
  }

  // The items of a place that can be reached and that `selector` means.
  static std::vector<Ref> Meant(Session& session, DataPlace place, const std::string& selector) {
    auto entries = EntriesIn(session, place);
    std::erase_if(entries, [](const Ref& entry) { return !entry.item; });
    return ItemsMeant<DataItemKind>(std::move(entries), selector);
  }

  // A "{GUID}" is looked for in the group first, a name in the collection first.
  static Ref Find(Session& session, const std::string& selector) {
    const auto first = IsGuid(selector) ? DataPlace::kGroup : DataPlace::kCollection;
    const auto second = IsGuid(selector) ? DataPlace::kCollection : DataPlace::kGroup;
    auto found = Meant(session, first, selector);
    if (found.empty()) found = Meant(session, second, selector);
    return TheOnlyOne<DataItemKind>(found, selector,
                                    found.empty() ? NamesOf<DataItemKind>(session) : Names());
  }
};

struct DataItems : CommandKind<DataItemKind> {
  static constexpr char kExample[] = "Streets";
  static constexpr char kNameHelp[] = "Its name, which names its file too";
  static constexpr char kRenameHelp[] = "Its new name; its file keeps the old one";

  // The component finds only the first item of a name in each place.
  static std::vector<Ref> Peers(Session& session, const Ref& entry) {
    return EntriesIn(session, entry.place);
  }

  static Record Details(const Ref& entry, Session&, Output&) {
    return {{"info", entry->AdditionalInfo()}};
  }

  static std::vector<SettableField<Item>> SettableFields() {
    return {{"--layer-file", "The path of the layer file", &SetFile<&Item::SetLayerFile>},
            {"--info", "Additional information, as a text", &SetText<&Item::SetAdditionalInfo>}};
  }

  static Ref Create(Session& session, const std::string& name, Output&) {
    const auto collection = DataCollection(session);
    if (!collection->CreateDataItem(name)) NameIsTaken<DataItems>(name);
    const auto item = collection->GetDataItem(name);
    if (!item->LayerFile().empty()) return {name, item->GUID(), DataPlace::kCollection, item};
    throw Failure(ExitCode::kRefused,
                  fmt::format("The folder for the file of the data item {} can't be made or "
                              "looked at, so there is no new data item. Is there a file in its "
                              "place, and may you write there?",
                              name));
  }

  static std::string WhereItIs(const Ref& entry) {
    return fmt::format(". Its file is to be {}, with an extension.", entry->LayerFile());
  }

  static std::string FileOf(const Ref& entry) { return entry.item ? entry->LayerFile() : ""; }
  static void UseFile(Session&, const Ref& entry, const std::string& path) {
    entry->SetLayerFile(path);
  }

  static std::string FolderOf(Session&, const Ref&) { return ""; }
  static std::string Remark(Session&, const Ref& entry) { return Stays(entry); }

  static std::string Delete(Session& session, const Ref& entry) {
    const std::string stays = Stays(entry);
    RequireDeleted(DeleteThis(session, entry));
    return fmt::format("Deleted the data item {}. {}", entry.name, stays);
  }

  static std::string Folder(Session& session) {
    session.Component().RequireWorkingDirectory();
    return DataCollection(session)->DataItemsDir();
  }

 private:
  static std::string Stays(const Ref& entry) {
    return fmt::format("Its file, {}, is left alone.", entry->LayerFile());
  }

  // By name, unless the first of that name is another one.
  static bool DeleteThis(Session& session, const Ref& entry) {
    const auto collection = DataCollection(session);
    const auto namesakes = ItemsNamed<DataItems>(GroupEntries(session), entry.name);
    return !namesakes.empty() && namesakes.front().guid == entry.guid
               ? collection->DeleteDataItem(entry.name)
               : collection->DeleteDataItemByGUID(entry.guid);
  }
};

class DataList : public ReadingCommand {
 public:
  explicit DataList(Arguments arguments) {
    arguments.Flag("--all", all_, "Those of both places, which are listed anyway");
  }

 private:
  void Run(Session& session, Output& out) override {
    out.Items(RowsOf<DataItems>(DataItems::All(session)), "There are no data items.");
  }

  bool all_ = false;
};

// A name is looked for in the group first, where the component itself deletes.
class DataDelete : public ItemDelete<DataItems> {
 public:
  using ItemDelete::ItemDelete;

 private:
  DataEntry Found(Session& session, const std::string& name) override {
    const auto found = DataItems::Meant(session, DataPlace::kGroup, name);
    return found.empty() ? DataItems::Find(session, name) : TheOnlyOne<DataItems>(found, name);
  }

  void Delete(Session& session, const DataEntry& entry, Output& out) override {
    if (entry.place == DataPlace::kGroup) return ItemDelete::Delete(session, entry, out);
    const Record row = RowOf<DataItems>(entry);
    const std::string remark = Remark(session, entry);
    session.Component().EditMetadata([&](DocumentNode& root) { Remove(root, entry); }, out);
    out.Done(row, fmt::format("Deleted the data item {}. {}", entry.name, remark));
  }

  // The component has no operation that deletes an item directly in the collection.
  static void Remove(DocumentNode& root, const DataEntry& entry) {
    for (DocumentNode& collection : root.children) {
      if (collection.name != tags::kDataCollection) continue;
      auto& items = collection.children;
      const auto item = std::ranges::find_if(items, [&](const DocumentNode& child) {
        return child.name == tags::kDataItem && child.Attribute(attributes::kGuid) == entry.guid &&
               child.Attribute(attributes::kName) == entry.name;
      });
      RequireDeleted(item != items.end());
      items.erase(item);
      return;
    }
    RequireDeleted(false);
  }
};

}  // namespace

void AddDataCommands(const CommandGroup& root) {
  const CommandGroup group = root.Group("data", "Data items: named references to data files");
  group.Add<DataList>("list", "List the data items of both places",
                      "kvdm data list\nkvdm data list --json");
  AddCreateCommand<DataItems>(group, " and reserve its file");
  AddAddCommand<DataItems>(group);
  AddShowCommand<DataItems>(group);
  AddSetCommand<DataItems>(group, "fields", " --layer-file 'D:\\Maps\\Streets.shp'");
  AddRenameCommand<DataItems>(group);
  AddDeleteCommand<DataItems, DataDelete>(group, " and leave its file");
  AddParamCommands<DataItems>(group);
  AddFolderCommand<DataItems, ChangingCommand>(group, "the data files; makes it if it is missing");
}

}  // namespace kvdm
