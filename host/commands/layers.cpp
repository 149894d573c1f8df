// kvdm store, kvdm customer: the layers of store locations and of customer points.
#include "host/commands/groups.h"
#include "host/commands/item_add.h"
#include "host/commands/item_params.h"
#include "host/deletion.h"
#include "host/kinds.h"
#include "platform/xml/document.h"
#include "util/names.h"

namespace kvdm {
namespace {

template <class Item>
concept HasLinkField = requires(Item& item) {
  item.LinkField();
};

template <class Item>
void SetInternal(Session&, const std::shared_ptr<Item>& item, const std::string& answer) {
  if (answer != "yes" && answer != "no") {
    throw Failure(ExitCode::kUsage, "--internal takes yes or no.");
  }
  item->SetIsInternalData(answer == "yes");
}

// "" means none.
template <class Item>
void SetArea(Session& session, const std::shared_ptr<Item>& item, const std::string& name) {
  if (!name.empty()) {
    const auto areas = NamesOf<StudyAreaKind>(session);
    if (std::find(areas.begin(), areas.end(), name) == areas.end()) {
      static_cast<void>(TheOnlyOne<StudyAreaKind>({}, name));
    }
  }
  item->SetStudyAreaName(name);
}

template <class Layer>
struct Layers : CommandKind<Layer> {
  using Item = typename Layer::Item;
  using Ref = typename Layer::Ref;
  static constexpr char kNameHelp[] = "Its name, which names its layer file too";
  static constexpr char kRenameHelp[] = "Its new name; its layer file keeps the old one";

  static Record Details(const Ref& layer, Session&, Output&) {
    Record fields = {{"internal", layer->IsInternalData()},
                     {"name_field", layer->NameField()},
                     {"id_field", layer->IDField()}};
    if constexpr (HasLinkField<Item>) fields.emplace_back("link_field", layer->LinkField());
    fields.emplace_back("study_area", layer->StudyAreaName());
    fields.emplace_back("comments", WithPlainLineEnds(layer->Comments()));
    return fields;
  }

  static std::vector<SettableField<Item>> SettableFields() {
    std::vector<SettableField<Item>> fields = {
        {"--layer-file", "The path of the layer file", &SetFile<&Item::SetLayerFile>},
        {"--edited-layer-file", "The same, as a layer editor sets it", &SetEditedLayerFile},
        {"--name-field", "The field that holds the names", &SetText<&Item::SetNameField>},
        {"--id-field", "The field that holds the identifiers", &SetText<&Item::SetIDField>},
        {"--internal", "Whether its data are the application's own: yes or no", &SetInternal},
        {"--created", "When it was made", &SetCreated},
        {"--study-area", "The name of its study area", &SetArea},
        {"--guid", "Another identifier, as a layer editor sets it", &SetIdentifier}};
    if constexpr (HasLinkField<Item>) {
      fields.push_back({"--link-field", "The field that links customers to stores",
                        &SetText<&Item::SetLinkField>});
    }
    return fields;
  }

  static Ref Create(Session& session, const std::string& name, Output&) {
    RequireFreeName<Layer>(Layer::All(session), name);
    if (std::invoke(Layer::kCreate, *Layer::Collection(session), name)) {
      return Layer::Made(session, name);
    }
    throw Failure(ExitCode::kRefused,
                  fmt::format("The component did not make the {} {}.", Layer::kWord, name));
  }

  static std::string WhereItIs(const Ref& layer) {
    return fmt::format(". Its layer file is to be {}.", layer->LayerFile());
  }

  static std::string FileOf(const Ref& layer) { return layer->LayerFile(); }
  static void UseFile(Session&, const Ref& layer, const std::string& path) {
    Required(Query<IKVLayerEdit>(layer)).SetLayerFile(path);
  }

  static std::string FolderOf(Session&, const Ref&) { return ""; }
  static std::string Remark(Session&, const Ref& layer) { return Stays(layer); }

  static std::string Delete(Session& session, const Ref& layer) {
    const std::string name = layer->Name();
    const std::string stays = Stays(layer);
    RequireDeleted(DeleteThis(*Layer::Collection(session), layer));
    return fmt::format("Deleted the {} {}. {}", Layer::kWord, name, stays);
  }

  static std::string Folder(Session& session) {
    session.Component().RequireWorkingDirectory();
    return std::invoke(Layer::kFolder, *Layer::Collection(session));
  }

 private:
  static std::string Stays(const Ref& layer) {
    return fmt::format("Its layer file, {}, is left alone.", layer->LayerFile());
  }

  // By name; by identifier, where that takes no files, if the name means another one.
  template <class Collection>
  static bool DeleteThis(Collection& layers, const Ref& layer) {
    const auto namesake = std::invoke(Layer::kGet, layers, layer->Name());
    if (namesake && namesake->GUID() == layer->GUID()) {
      return std::invoke(Layer::kDelete, layers, layer->Name());
    }
    if constexpr (!Layer::kGuidTakesFolder) {
      return std::invoke(Layer::kDeleteByGuid, layers, layer->GUID());
    }
    throw Failure(ExitCode::kConflict,
                  fmt::format("Another {} is named {} and would be deleted in its place. Rename "
                              "this one first.",
                              Layer::kWord, layer->Name()));
  }
};

struct StoreLayers : Layers<StoreLayerKind> {
  static constexpr char kExample[] = "Shops";
};

struct CustLayers : Layers<CustLayerKind> {
  static constexpr char kExample[] = "Clients";
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

// The folder that the component deletes when it deletes a store layer by identifier: what the
// stored element names, else that of all layers.
std::string FolderTakenWith(Session& session, const std::string& guid) {
  xml::Document metadata;
  metadata.LoadXml(*session.Component().GetServices().platform.xml_parser,
                   ToText(session.GetProject().values.front()));
  const auto root = metadata.DocumentElement();
  const auto layers = Required(root).Child(tags::kStoreLayerCollection);
  const auto layer = layers ? layers.Child(tags::kStoreLayer, attributes::kGuid, guid) : nullptr;
  const Value name = layer ? layer.GetAttribute(attributes::kDirName) : Value();
  return StoreLayerKind::Collection(session)->StoreLayersDir() + "\\" +
         (name.IsNull() ? "" : ToText(name));
}

std::string WithoutEnd(std::string folder) {
  if (folder.ends_with('\\')) folder.pop_back();
  return folder;
}

// Deletes a store layer by identifier too, which takes the files of all.
class StoreDelete : public ItemDelete<StoreLayers> {
 public:
  using Ref = StoreLayers::Ref;

  explicit StoreDelete(Arguments arguments) : ItemDelete(arguments) {
    arguments.Flag("--exact-by-guid", exact_by_guid_,
                   "Delete by identifier, which deletes the folder of all layers' files too");
  }

 private:
  std::string FolderOf(Session& session, const Ref& layer) override {
    return exact_by_guid_ ? FolderTakenWith(session, layer->GUID()) : "";
  }

  std::string Remark(Session& session, const Ref& layer) override {
    if (!exact_by_guid_) return ItemDelete::Remark(session, layer);
    const std::string folder = FolderTakenWith(session, layer->GUID());
    const bool of_all = folder.ends_with('\\');
    const FolderContent content = ContentOf(session, WithoutEnd(folder));
    return fmt::format("This takes {} of the folder {}. {}{}",
                       of_all ? "all" : "the files, but no folder,", content.folder,
                       content.Sentence(), of_all ? " The files of the other layers go too." : "");
  }

  void Delete(Session& session, const Ref& layer, Output& out) override {
    if (!exact_by_guid_) return ItemDelete::Delete(session, layer, out);
    if (!Asks()) Output::Tell(ToAsk(session).consequence);
    const auto layers = StoreLayerKind::Collection(session);
    const Record row = RowOf<StoreLayerKind>(layer);
    const std::string guid = layer->GUID();
    const std::string folder = FolderTakenWith(session, guid);
    const FolderContent before = ContentOf(session, WithoutEnd(folder));
    const std::string sentence =
        DeleteWithFolder(session, {fmt::format("store layer {}", layer->Name()), guid, folder,
                                   [&] { return layers->DeleteStoreLayerByGUID(guid); }});
    const FolderContent after = ContentOf(session, before.folder);
    out.Done(row, after.entries.empty() ? sentence
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

  bool exact_by_guid_ = false;
};

template <class Kind, class Delete = ItemDelete<Kind>>
void AddLayerCommands(const CommandGroup& root, const char* help) {
  const CommandGroup group = root.Group(Kind::kCommand, help);
  AddListCommand<Kind>(group);
  AddCreateCommand<Kind>(group, " and reserve its file");
  AddAddCommand<Kind>(group);
  AddShowCommand<Kind>(group);
  AddSetCommand<Kind>(group, "fields", " --id-field ID --name-field NAME");
  AddRenameCommand<Kind>(group);
  AddDeleteCommand<Kind, Delete>(group, " and leave its file");
  AddParamCommands<Kind>(group);
  AddCommentCommand<Kind>(group);
  AddFolderCommand<Kind, ChangingCommand>(group, "the layer files; makes it if it is missing");
}

}  // namespace

void AddStoreCommands(const CommandGroup& root) {
  AddLayerCommands<StoreLayers, StoreDelete>(root, "Layers of store locations");
}

void AddCustomerCommands(const CommandGroup& root) {
  AddLayerCommands<CustLayers>(root, "Layers of customer points");
}

}  // namespace kvdm
