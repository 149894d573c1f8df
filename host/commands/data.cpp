// kvdm data: the data items of a project.
#include "host/commands/groups.h"
#include "host/commands/item_params.h"
#include "host/commands/item_set.h"
#include "host/data_items.h"

namespace kvdm {
namespace {

// What the commands that all kinds of items have need of data items.
struct DataItems {
  using Item = IKVDataItem;
  static constexpr char kWord[] = "data item";
  static constexpr char kCommand[] = "data";

  static std::shared_ptr<Item> Find(Session& session, const std::string& selector) {
    return FindDataEntry(session, selector).item;
  }

  static std::vector<SettableField<Item>> SettableFields() {
    return {{"--layer-file", "The full path of the layer file", &SetText<&Item::SetLayerFile>},
            {"--info", "Additional information, as a text", &SetText<&Item::SetAdditionalInfo>}};
  }
};

class DataList : public ReadingCommand {
 public:
  explicit DataList(Arguments arguments) {
    arguments.Flag("--all", all_,
                   "Those that stand directly in the collection too, as new ones do");
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto entries = all_ ? DataEntries(session) : DataEntries(session, DataPlace::kGroup);
    out.Items(Descriptions(entries),
              all_ ? "There are no data items."
                   : "There are no data items in the group of listed ones. 'kvdm data list --all' "
                     "shows those directly in the collection too.");
  }

  bool all_ = false;
};

class DataCreate : public ChangingCommand {
 public:
  explicit DataCreate(Arguments arguments) {
    arguments.Required("NAME", name_, "Its name, which names its file too", RequireNewName);
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto collection = DataCollection(session);
    if (!collection->CreateDataItem(name_)) {
      throw Failure(ExitCode::kConflict,
                    fmt::format("Another data item is named {}. Choose another name, or rename "
                                "that one.",
                                name_));
    }
    const auto item = collection->GetDataItem(name_);
    const std::string file = item->LayerFile();
    if (file.empty()) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The folder for the file of the data item {} can't be made or "
                                "looked at, so there is no new data item. Is there a file in its "
                                "place, and may you write there?",
                                name_));
    }
    const DataEntry entry = {name_, item->GUID(), DataPlace::kCollection, item};
    out.Done(Description(entry), fmt::format("Created the data item {}. Its file is to be {}, with "
                                             "an extension.",
                                             name_, file));
  }

  std::string name_;
};

class DataShow : public ReadingCommand {
 public:
  explicit DataShow(Arguments arguments) {
    arguments.Required("NAME", name_, SelectorHelp(DataItems::kWord));
  }

 private:
  void Run(Session& session, Output& out) override {
    const DataEntry entry = FindDataEntry(session, name_);
    Record record = Description(entry);
    record.emplace_back("info", entry.item->AdditionalInfo());
    out.Fields(std::move(record));
  }

  std::string name_;
};

class DataRename : public ChangingCommand {
 public:
  explicit DataRename(Arguments arguments) {
    arguments.Required("NAME", name_, SelectorHelp(DataItems::kWord));
    arguments.Required("NEW", new_name_, "Its new name; its file keeps the old one", RequireKey);
  }

 private:
  void Run(Session& session, Output& out) override {
    DataEntry entry = FindDataEntry(session, name_);
    RequireFree(session, entry);
    const std::string old_name = entry.name;
    entry.item->SetName(new_name_);
    entry.name = entry.item->Name();
    out.Done(Description(entry),
             fmt::format("Renamed the data item {} to {}.", old_name, entry.name));
  }

  // The component takes any name, but finds only the first item of a name.
  void RequireFree(Session& session, const DataEntry& renamed) const {
    for (const DataEntry& entry : DataEntries(session, renamed.place)) {
      if (entry.name != new_name_ || entry.guid == renamed.guid) continue;
      throw Failure(ExitCode::kConflict,
                    fmt::format("Another data item is named {}. Choose another name, or rename "
                                "that one.",
                                new_name_));
    }
  }

  std::string name_;
  std::string new_name_;
};

class DataDelete : public DeletingCommand {
 public:
  explicit DataDelete(Arguments arguments) : DeletingCommand(arguments) {
    arguments.Required("NAME", name_, SelectorHelp(DataItems::kWord));
  }

 private:
  Question ToAsk(Session& session) override {
    const DataEntry entry = FindInGroup(session);
    return {fmt::format("This deletes the data item {} with its parameters. {}", entry.name,
                        Stays(entry)),
            Description(entry)};
  }

  void Run(Session& session, Output& out) override {
    const DataEntry entry = FindInGroup(session);
    const Record record = Description(entry);
    const std::string stays = Stays(entry);
    RequireDeleted(Delete(session, entry));
    out.Done(record, fmt::format("Deleted the data item {}. {}", entry.name, stays));
  }

  static std::string Stays(const DataEntry& entry) {
    return fmt::format("Its file, {}, is left alone.", entry.item->LayerFile());
  }

  [[nodiscard]] DataEntry FindInGroup(Session& session) const {
    if (const auto entry = FindDataEntry(session, DataPlace::kGroup, name_)) return *entry;
    throw Failure(ExitCode::kRefused,
                  fmt::format("The data item {} stays: the component deletes only items in the "
                              "group of listed ones, and this one stands directly in the "
                              "collection.",
                              FindDataEntry(session, name_).name));
  }

  // By name, unless the first of that name is another one.
  static bool Delete(Session& session, const DataEntry& entry) {
    const auto collection = DataCollection(session);
    for (const DataEntry& namesake : DataEntries(session, DataPlace::kGroup)) {
      if (namesake.name != entry.name) continue;
      if (namesake.guid == entry.guid) return collection->DeleteDataItem(entry.name);
      break;
    }
    return collection->DeleteDataItemByGUID(entry.guid);
  }

  std::string name_;
};

class DataFolder : public ReadingCommand {
 public:
  explicit DataFolder(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    session.Component().RequireWorkingDirectory();
    const std::string folder = DataCollection(session)->DataItemsDir();
    out.Text({{"folder", folder}}, folder);
  }
};

}  // namespace

void AddDataCommands(const CommandGroup& root) {
  const CommandGroup data = root.Group("data", "Data items: named references to data files");
  data.Add<DataList>("list", "List the data items in the group of listed ones",
                     "kvdm data list\nkvdm data list --all");
  data.Add<DataCreate>("create", "Make a data item and reserve its file",
                       "kvdm data create Streets");
  data.Add<DataShow>("show", "Show one data item", "kvdm data show Streets");
  data.Add<ItemSet<DataItems>>("set", "Set fields of a data item",
                               "kvdm data set Streets --layer-file 'D:\\Maps\\Streets.shp'");
  data.Add<DataRename>("rename", "Rename a data item", "kvdm data rename Streets Roads");
  data.Add<DataDelete>("delete", "Delete a listed data item and leave its file",
                       "kvdm data delete Streets\nkvdm data delete Streets --yes");
  AddParamCommands<DataItems>(data, "Streets");
  data.Add<DataFolder>("dir", "Show the folder of the data files", "kvdm data dir");
}

}  // namespace kvdm
