// kvdm store, kvdm customer: the layers of store locations and of customer points.
#include "host/layers.h"

#include "host/commands/groups.h"
#include "host/commands/item_comment.h"
#include "host/commands/item_params.h"
#include "host/commands/item_set.h"
#include "host/deletion.h"
#include "platform/xml/document.h"
#include "util/kvdm_utils.h"
#include "util/names.h"

namespace kvdm {
namespace {

template <class Item>
concept HasLinkField = requires(Item& item) {
  item.LinkField();
};

template <class Item>
void SetInternal(const std::shared_ptr<Item>& item, const std::string& answer) {
  if (answer != "yes" && answer != "no") {
    throw Failure(ExitCode::kUsage, "--internal takes yes or no.");
  }
  item->SetIsInternalData(answer == "yes");
}

// A kind of layer with what the commands that all kinds of items have need of it.
template <class Layer>
struct LayerItems : Layer {
  using Item = typename Layer::Item;

  static std::shared_ptr<Item> Find(Session& session, const std::string& selector) {
    return FindItem(Layers<Layer>(session), selector);
  }

  static std::vector<SettableField<Item>> SettableFields() {
    std::vector<SettableField<Item>> fields = {
        {"--layer-file", "The path of the layer file", &SetText<&Item::SetLayerFile>},
        {"--edited-layer-file", "The same, as a layer editor sets it", &SetEditedLayerFile},
        {"--name-field", "The field that holds the names", &SetText<&Item::SetNameField>},
        {"--id-field", "The field that holds the identifiers", &SetText<&Item::SetIDField>},
        {"--internal", "Whether its data are the application's own: yes or no", &SetInternal},
        {"--created", "When it was made, as a text", &SetText<&Item::SetCreationTime>},
        {"--study-area", "The name of its study area", &SetText<&Item::SetStudyAreaName>},
        {"--guid", "Another identifier, as a layer editor sets it", &SetIdentifier}};
    if constexpr (HasLinkField<Item>) {
      fields.push_back({"--link-field", "The field that links customers to stores",
                        &SetText<&Item::SetLinkField>});
    }
    return fields;
  }
};

template <class Kind>
class LayerList : public ReadingCommand {
 public:
  explicit LayerList(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Layers<Kind>(session);
    out.Items(Descriptions(source, AllItems(source)),
              fmt::format("There are no {}s.", Kind::kWord));
  }
};

template <class Kind>
class LayerCreate : public ChangingCommand {
 public:
  explicit LayerCreate(Arguments arguments) {
    arguments.Required("NAME", name_, "Its name, which names its layer file too", RequireNewName);
  }

 private:
  void Run(Session& session, Output& out) override {
    RequireFreeName(Layers<Kind>(session), name_);
    if (!std::invoke(Kind::kCreate, *LayerCollection<Kind>(session), name_)) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The component did not make the {} {}.", Kind::kWord, name_));
    }
    const auto source = Layers<Kind>(session);
    const auto layer = FindItem(source, name_);
    out.Done(source.describe(*layer), fmt::format("Created the {} {}. Its layer file is to be {}.",
                                                  Kind::kWord, name_, layer->LayerFile()));
  }

  std::string name_;
};

template <class Kind>
class LayerShow : public ReadingCommand {
 public:
  explicit LayerShow(Arguments arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Layers<Kind>(session);
    const auto layer = FindItem(source, name_);
    Record record = source.describe(*layer);
    record.emplace_back("internal", layer->IsInternalData());
    record.emplace_back("name_field", layer->NameField());
    record.emplace_back("id_field", layer->IDField());
    if constexpr (HasLinkField<typename Kind::Item>) {
      record.emplace_back("link_field", layer->LinkField());
    }
    record.emplace_back("study_area", layer->StudyAreaName());
    record.emplace_back("comments", WithPlainLineEnds(layer->Comments()));
    out.Fields(std::move(record));
  }

  std::string name_;
};

template <class Kind>
class LayerRename : public ChangingCommand {
 public:
  explicit LayerRename(Arguments arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
    arguments.Required("NEW", new_name_, "Its new name; its layer file keeps the old one",
                       RequireKey);
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Layers<Kind>(session);
    const auto layer = FindItem(source, name_);
    const std::string old_name = layer->Name();
    RequireFreeName(source, new_name_, layer->GUID());
    layer->SetName(new_name_);
    RequireRenamed(*layer, new_name_);
    out.Done(source.describe(*layer),
             fmt::format("Renamed the {} {} to {}.", Kind::kWord, old_name, layer->Name()));
  }

  std::string name_;
  std::string new_name_;
};

// The folder of the layer files, as the operation that deletes by identifier leaves it or not.
struct FolderContent {
  std::string folder;
  std::vector<std::string> entries;

  [[nodiscard]] std::string Sentence() const {
    return entries.empty() ? "It is empty." : fmt::format("In it: {}.", fmt::join(entries, ", "));
  }
};

FolderContent ContentOf(Session& session, std::string folder) {
  FileSystem& files = *session.Component().GetServices().platform.files;
  auto entries = files.FolderExists(folder) ? files.OpenFolder(files.FullPath(folder))->Entries()
                                            : std::vector<std::string>();
  std::sort(entries.begin(), entries.end());
  return {std::move(folder), std::move(entries)};
}

// The folder that the component deletes when it deletes a layer by identifier: what the stored
// element names, else that of all layers.
template <class Kind>
std::string FolderTakenWith(Session& session, const std::string& guid) {
  xml::Document metadata;
  metadata.LoadXml(*session.Component().GetServices().platform.xml_parser,
                   ToText(session.GetProject().values.front()));
  const auto root = metadata.DocumentElement();
  const auto layers = Required(root).Child(tags::kStoreLayerCollection);
  const auto layer = layers ? layers->Child(tags::kStoreLayer, attributes::kGuid, guid) : nullptr;
  const Value name = layer ? layer->GetAttribute(attributes::kDirName) : Value();
  return std::invoke(Kind::kFolder, *LayerCollection<Kind>(session)) + "\\" +
         (name.IsNull() ? "" : ToText(name));
}

template <class Kind>
class LayerDelete : public DeletingCommand {
 public:
  explicit LayerDelete(Arguments arguments) : DeletingCommand(arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
    if constexpr (Kind::kGuidTakesFolder) {
      arguments.Flag("--exact-by-guid", exact_by_guid_,
                     "Delete by identifier, which deletes the folder of all layers' files too");
    }
  }

 private:
  Question ToAsk(Session& session) override {
    const auto layer = FindItem(Layers<Kind>(session), name_);
    const Record record = Layers<Kind>(session).describe(*layer);
    if (exact_by_guid_) return {FolderGoes(session, *layer), record};
    return {fmt::format("This deletes the {} {} with its parameters and comments. {}", Kind::kWord,
                        layer->Name(), Stays(*layer)),
            record};
  }

  void Run(Session& session, Output& out) override {
    const auto layer = FindItem(Layers<Kind>(session), name_);
    if (exact_by_guid_) {
      DeleteWithItsFolder(session, *layer, out);
    } else {
      DeleteAlone(session, *layer, out);
    }
  }

  static std::string Stays(typename Kind::Item& layer) {
    return fmt::format("Its layer file, {}, is left alone.", layer.LayerFile());
  }

  static std::string FolderGoes(Session& session, typename Kind::Item& layer) {
    const std::string folder = FolderTakenWith<Kind>(session, layer.GUID());
    const bool of_all = folder.ends_with('\\');
    const FolderContent content = ContentOf(session, of_all ? Unclosed(folder) : folder);
    return fmt::format(
        "This deletes the {} {} and the folder {} with {}. {}{}", Kind::kWord, layer.Name(),
        content.folder,
        of_all ? "all that is in it" : "the files in it; folders in it stay, and it with them",
        content.Sentence(), of_all ? " The files of the other layers go too." : "");
  }

  static std::string Unclosed(std::string folder) {
    folder.pop_back();
    return folder;
  }

  void DeleteAlone(Session& session, typename Kind::Item& layer, Output& out) const {
    const Record record = Layers<Kind>(session).describe(layer);
    const std::string name = layer.Name();
    const std::string stays = Stays(layer);
    RequireDeleted(DeleteThis(*LayerCollection<Kind>(session), layer));
    out.Done(record, fmt::format("Deleted the {} {}. {}", Kind::kWord, name, stays));
  }

  // By name; by identifier, where that takes no files, if the name means another one.
  static bool DeleteThis(typename Kind::Collection& layers, typename Kind::Item& layer) {
    const auto namesake = std::invoke(Kind::kGet, layers, layer.Name());
    if (namesake && namesake->GUID() == layer.GUID()) {
      return std::invoke(Kind::kDelete, layers, layer.Name());
    }
    if constexpr (!Kind::kGuidTakesFolder) {
      return std::invoke(Kind::kDeleteByGuid, layers, layer.GUID());
    }
    throw Failure(ExitCode::kConflict,
                  fmt::format("Another {} is named {} and would be deleted in its place. Rename "
                              "this one first.",
                              Kind::kWord, layer.Name()));
  }

  void DeleteWithItsFolder(Session& session, typename Kind::Item& layer, Output& out) const {
    const auto layers = LayerCollection<Kind>(session);
    const Record record = Layers<Kind>(session).describe(layer);
    const std::string what = fmt::format("{} {}", Kind::kWord, layer.Name());
    const std::string guid = layer.GUID();
    const std::string folder = FolderTakenWith<Kind>(session, guid);
    if (!Asks()) Output::Tell(FolderGoes(session, layer));
    const FolderContent before =
        ContentOf(session, folder.ends_with('\\') ? Unclosed(folder) : folder);
    const std::string sentence = DeleteWithFolder(
        session,
        {what, guid, folder, [&] { return std::invoke(Kind::kDeleteByGuid, *layers, guid); }});
    const FolderContent after = ContentOf(session, before.folder);
    out.Done(record, after.entries.empty() ? sentence
                                           : fmt::format("{} Left in it: {}.", sentence,
                                                         fmt::join(after.entries, ", ")));
    out.Section("deleted", Missing(before, after));
  }

  static std::vector<Record> Missing(const FolderContent& before, const FolderContent& after) {
    std::vector<Record> rows;
    for (const std::string& entry : before.entries) {
      if (std::binary_search(after.entries.begin(), after.entries.end(), entry)) continue;
      rows.push_back({{"file", before.folder + "\\" + entry}});
    }
    return rows;
  }

  std::string name_;
  bool exact_by_guid_ = false;
};

template <class Kind>
class LayerFolder : public ReadingCommand {
 public:
  explicit LayerFolder(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    session.Component().RequireWorkingDirectory();
    const std::string folder = std::invoke(Kind::kFolder, *LayerCollection<Kind>(session));
    out.Text({{"folder", folder}}, folder);
  }
};

// `example` is the name of a layer in the examples.
template <class Kind>
void AddLayerCommands(const CommandGroup& root, const char* help, std::string_view example) {
  const CommandGroup group = root.Group(Kind::kCommand, help);
  const auto line = [example](std::string_view command, std::string_view rest = "") {
    return fmt::format("kvdm {} {} {}{}", Kind::kCommand, command, example, rest);
  };
  const std::string word = Kind::kWord;
  group.Add<LayerList<Kind>>("list", fmt::format("List the {}s", word),
                             fmt::format("kvdm {0} list\nkvdm {0} list --json", Kind::kCommand));
  group.Add<LayerCreate<Kind>>("create", fmt::format("Make a {} and reserve its file", word),
                               line("create"));
  group.Add<LayerShow<Kind>>("show", fmt::format("Show one {}", word), line("show"));
  group.Add<ItemSet<LayerItems<Kind>>>("set", fmt::format("Set fields of a {}", word),
                                       line("set", " --id-field ID --name-field NAME"));
  group.Add<LayerRename<Kind>>("rename", fmt::format("Rename a {}", word),
                               line("rename", " \"New name\""));
  group.Add<LayerDelete<Kind>>("delete", fmt::format("Delete a {} and leave its file", word),
                               line("delete") + "\n" + line("delete", " --yes"));
  AddParamCommands<LayerItems<Kind>>(group, example);
  AddCommentCommand<&Layers<Kind>>(
      group, line("comment", " \"Checked in May\"") + "\n" + line("comment", " - < notes.txt"));
  group.Add<LayerFolder<Kind>>("dir", "Show the folder of the layer files",
                               fmt::format("kvdm {} dir", Kind::kCommand));
}

}  // namespace

void AddStoreCommands(const CommandGroup& root) {
  AddLayerCommands<StoreLayerKind>(root, "Layers of store locations", "Shops");
}

void AddCustomerCommands(const CommandGroup& root) {
  AddLayerCommands<CustLayerKind>(root, "Layers of customer points", "Clients");
}

}  // namespace kvdm
